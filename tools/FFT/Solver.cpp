#include "Solver.h"

#include <kissfft/kissfft.hh>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <optional>
#include <utility>

namespace fftsolver {

namespace {

using Complex = std::complex<double>;

// KissFFT's generic butterfly costs O(n p) for a prime factor p; above this, Bluestein.
constexpr std::size_t kLargestDirectPrime = 61;

std::size_t LargestPrimeFactor(std::size_t n) {
  std::size_t largest = 1;
  for (std::size_t p = 2; p * p <= n; ++p) {
    while (n % p == 0) {
      largest = p;
      n /= p;
    }
  }
  return n > 1 ? n : largest;
}

}  // namespace

struct Dft::Plan {
  std::optional<kissfft<double>> direct;
  // Bluestein: out[k] = chirp[k] * (a * b)[k], a[n] = in[n] chirp[n], b[m] = conj(chirp[|m|]),
  // the convolution done as a cyclic one of a power-of-two length.
  std::optional<kissfft<double>> forward;
  std::optional<kissfft<double>> backward;
  std::vector<Complex> chirp;
  std::vector<Complex> filter;  ///< the transform of b, divided by the padded length
};

Dft::Dft(std::size_t length, bool inverse) : m_length(length), m_plan(std::make_unique<Plan>()) {
  if (length == 0) return;
  if (LargestPrimeFactor(length) <= kLargestDirectPrime) {
    m_plan->direct.emplace(length, inverse);
    return;
  }
  std::size_t padded = 1;
  while (padded < 2 * length - 1) padded *= 2;
  m_plan->forward.emplace(padded, false);
  m_plan->backward.emplace(padded, true);
  m_plan->chirp.resize(length);
  const double sign = inverse ? 1.0 : -1.0;
  for (std::size_t n = 0; n < length; ++n) {
    // n^2 mod 2 length keeps the angle small, so it loses no precision for large n
    // (lengths stay far below 2^32, so n^2 fits).
    const std::uint64_t square = (std::uint64_t{n} * n) % (2 * std::uint64_t{length});
    m_plan->chirp[n] =
        std::polar(1.0, sign * std::numbers::pi * static_cast<double>(square) / static_cast<double>(length));
  }
  std::vector<Complex> b(padded);
  b[0] = std::conj(m_plan->chirp[0]);
  for (std::size_t m = 1; m < length; ++m) b[m] = b[padded - m] = std::conj(m_plan->chirp[m]);
  m_plan->filter.resize(padded);
  m_plan->forward->transform(b.data(), m_plan->filter.data());
  for (Complex& value : m_plan->filter) value /= static_cast<double>(padded);
}

Dft::~Dft() = default;
Dft::Dft(Dft&&) noexcept = default;
Dft& Dft::operator=(Dft&&) noexcept = default;

void Dft::Transform(const Complex* in, Complex* out) const {
  if (m_length == 0) return;
  if (m_plan->direct) {
    m_plan->direct->transform(in, out);
    return;
  }
  const std::size_t padded = m_plan->filter.size();
  std::vector<Complex> a(padded);
  for (std::size_t n = 0; n < m_length; ++n) a[n] = in[n] * m_plan->chirp[n];
  std::vector<Complex> spectrum(padded);
  m_plan->forward->transform(a.data(), spectrum.data());
  for (std::size_t k = 0; k < padded; ++k) spectrum[k] *= m_plan->filter[k];
  m_plan->backward->transform(spectrum.data(), a.data());
  for (std::size_t k = 0; k < m_length; ++k) out[k] = a[k] * m_plan->chirp[k];
}

std::vector<Complex> OneSidedSpectrum(const std::vector<double>& samples) {
  const std::size_t n = samples.size();
  if (n == 0) return {};
  const std::vector<Complex> in(samples.begin(), samples.end());
  std::vector<Complex> full(n);
  Dft(n, false).Transform(in.data(), full.data());
  std::vector<Complex> bins(n / 2 + 1);
  const double scale = 1.0 / static_cast<double>(n);
  for (std::size_t k = 0; k < bins.size(); ++k) {
    const bool edge = k == 0 || 2 * k == n;
    bins[k] = full[k] * (edge ? scale : 2.0 * scale);
    if (edge) bins[k].imag(0.0);
  }
  return bins;
}

std::vector<double> FromOneSidedSpectrum(const std::vector<Complex>& spectrum, std::size_t n) {
  if (n == 0) return {};
  std::vector<Complex> full(n);
  const std::size_t bins = std::min(spectrum.size(), n / 2 + 1);
  for (std::size_t k = 0; k < bins; ++k) {
    if (k == 0 || 2 * k == n) {
      full[k] = spectrum[k].real();
    } else {
      full[k] = spectrum[k] / 2.0;
      full[n - k] = std::conj(spectrum[k]) / 2.0;
    }
  }
  std::vector<Complex> out(n);
  Dft(n, true).Transform(full.data(), out.data());
  std::vector<double> samples(n);
  for (std::size_t i = 0; i < n; ++i) samples[i] = out[i].real();
  return samples;
}

std::size_t InverseLength(const ExchangeJob& job) {
  const std::size_t bins = job.axis.size();
  if (bins <= 1) return bins;
  for (const std::vector<double>& imaginary : job.second) {
    if (!imaginary.empty() && imaginary.back() != 0.0) return 2 * bins - 1;
  }
  return 2 * bins - 2;
}

bool Solve(const ExchangeJob& job, std::size_t length, Result& result, std::string& message) {
  result = Result();
  const std::size_t rows = job.axis.size();
  const bool time = job.input == Domain::Time;
  const std::size_t n = time ? rows : (length != 0 ? length : InverseLength(job));
  // The spacing of the input axis, from its ends: %g keeps six digits, so neighbouring
  // values of a long axis may be equal while its ends stay accurate.
  double spacing = 0.0;
  if (rows >= 2) {
    spacing = (job.axis.back() - job.axis.front()) / static_cast<double>(rows - 1);
    if (!(spacing > 0.0)) {
      message = std::string("the ") + (time ? "time" : "frequency") +
                " axis does not increase from its first row to its last";
      return false;
    }
  } else if (!time && n > 1) {
    message = "a spectrum of fewer than two bins has no frequency step for a waveform of " +
              std::to_string(n) + " samples";
    return false;
  }
  // Time -> bins k / (n step); Frequency -> times i / (n df).
  const std::size_t outputRows = time ? (n == 0 ? 0 : n / 2 + 1) : n;
  const double unit = rows >= 2 ? 1.0 / (static_cast<double>(n) * spacing) : 0.0;
  if (!std::isfinite(unit)) {
    message = "the axis step is too small to give a finite step in the other domain";
    return false;
  }
  result.output = time ? Domain::Frequency : Domain::Time;
  result.axis.resize(outputRows);
  for (std::size_t i = 0; i < outputRows; ++i) result.axis[i] = static_cast<double>(i) * unit;
  for (std::size_t node = 0; node < job.NodeCount(); ++node) {
    if (time) {
      const std::vector<Complex> bins = OneSidedSpectrum(job.first[node]);
      std::vector<double> real(bins.size());
      std::vector<double> imaginary(bins.size());
      for (std::size_t k = 0; k < bins.size(); ++k) {
        real[k] = bins[k].real();
        imaginary[k] = bins[k].imag();
      }
      result.columns.push_back(std::move(real));
      result.columns.push_back(std::move(imaginary));
    } else {
      std::vector<Complex> bins(rows);
      for (std::size_t k = 0; k < rows; ++k) bins[k] = Complex(job.first[node][k], job.second[node][k]);
      result.columns.push_back(FromOneSidedSpectrum(bins, n));
    }
  }
  return true;
}

std::string FormatOutput(const Result& result, bool multiNode) {
  const bool frequency = result.output == Domain::Frequency;
  const std::size_t nodes = result.columns.size() / (frequency ? 2 : 1);
  std::string text = std::string("(Output\n\t(Type ") + (frequency ? "Frequency" : "Time") + ")\n\t(Size " +
                     std::to_string(result.axis.size()) + (multiNode ? " " + std::to_string(nodes) : "") +
                     ")\n";
  text.reserve(text.size() + result.axis.size() * (1 + result.columns.size()) * 25 + 4);
  char number[32];
  const auto append = [&](char lead, double value) {
    text += lead;
    text.append(number, std::to_chars(number, number + sizeof number, value).ptr);
  };
  for (std::size_t i = 0; i < result.axis.size(); ++i) {
    append('\t', result.axis[i]);
    for (const std::vector<double>& column : result.columns) append(' ', column[i]);
    text += '\n';
  }
  text += ")\n";
  return text;
}

}  // namespace fftsolver
