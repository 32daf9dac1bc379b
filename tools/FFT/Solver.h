// The FFT solver's transforms: a complex DFT of any length on KissFFT (double
// precision; lengths with a large prime factor go through Bluestein's chirp so that
// they cost O(n log n) too), the one-sided spectrum of a real waveform and its inverse,
// and the "(Output" section that carries a job's results back to the library.
#pragma once

#include "Exchange.h"

#include <complex>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace fftsolver {

/// A complex DFT of one length and direction: out[k] = sum_n in[n] e^(-+2 pi i n k / n),
/// minus for forward, plus for inverse, never scaled. Move-only (it owns its plans).
/// Lengths stay below 2^32 (the solver's bounds keep them far below).
class Dft {
 public:
  Dft(std::size_t length, bool inverse);
  ~Dft();
  Dft(Dft&&) noexcept;
  Dft& operator=(Dft&&) noexcept;
  Dft(const Dft&) = delete;
  Dft& operator=(const Dft&) = delete;

  /// in and out hold Length() values each and must not overlap.
  void Transform(const std::complex<double>* in, std::complex<double>* out) const;
  std::size_t Length() const { return m_length; }

 private:
  struct Plan;
  std::size_t m_length = 0;
  std::unique_ptr<Plan> m_plan;
};

/// The one-sided spectrum of n real samples: bins 0 to n / 2, bin k being c_k = X_k / n
/// for k = 0 and (n even) k = n / 2, and 2 X_k / n for the bins between, so that a
/// cosine or sine of amplitude A on bin k shows magnitude A there. The imaginary part of
/// bin 0 and of an even length's bin n / 2 is exactly 0.
std::vector<std::complex<double>> OneSidedSpectrum(const std::vector<double>& samples);

/// The n real samples whose one-sided spectrum is `spectrum` (n is 2K - 2 or 2K - 1 for
/// K bins; for other n, bins above n / 2 are left out and missing ones count as 0). The
/// imaginary parts of bin 0 and of an even length's bin n / 2 are ignored, as no real
/// waveform has them.
std::vector<double> FromOneSidedSpectrum(const std::vector<std::complex<double>>& spectrum, std::size_t n);

/// The length a one-sided spectrum of K bins came from: 2K - 1 when any node's last bin
/// has a non-zero imaginary part (an even length's last bin is real), else 2K - 2; 1 for
/// K = 1 and 0 for K = 0.
std::size_t InverseLength(const ExchangeJob& job);

/// A job's results: the axis and per node one column (Time output) or two (Frequency).
struct Result {
  Domain output = Domain::Frequency;
  std::vector<double> axis;
  std::vector<std::vector<double>> columns;  ///< node 0's columns first, then node 1's...
};

/// Transforms every node of a job. Time input gives the one-sided spectrum on the axis
/// k / (n step), step = (last time - first time) / (n - 1); Frequency input gives the
/// waveform of `length` samples (0: InverseLength) on the axis i / (length df), df the
/// mean bin spacing. False with a one-line message when the axis does not increase.
bool Solve(const ExchangeJob& job, std::size_t length, Result& result, std::string& message);

/// The "(Output" section: "(Output", "\t(Type Frequency)" or "\t(Type Time)",
/// "\t(Size K)" (single-node) or "\t(Size K M)" (M nodes), one "\t..." row per axis
/// value with the numbers separated by single blanks, each the shortest text that reads
/// back as the same double, then ")". Lines end in "\n".
std::string FormatOutput(const Result& result, bool multiNode);

}  // namespace fftsolver
