// The FFT solver's exchange-file reader on arbitrary bytes: it accepts or refuses with
// a one-line message; what it accepts is consistent (every column as long as the axis,
// an "(Output" offset that points at such a line), and written out again in the
// library's layout with exact numbers it reads back as the same job.
#include "Exchange.h"

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

void AppendNumber(std::string& text, double value) {
  char number[32];
  text += ' ';
  text.append(number, std::to_chars(number, number + sizeof number, value).ptr);
}

std::string Rewrite(const fftsolver::ExchangeJob& job) {
  const bool frequency = job.input == fftsolver::Domain::Frequency;
  std::string text = "(File\n\t(Unit " + job.timeUnit + " " + job.frequencyUnit + ")\n)\n(Input\n\t(Type " +
                     (frequency ? "Frequency" : "Time") + ")\n\t(Size " + std::to_string(job.axis.size()) +
                     (job.multiNode ? " " + std::to_string(job.NodeCount()) : "") + ")\n";
  for (std::size_t i = 0; i < job.axis.size(); ++i) {
    text += '\t';
    AppendNumber(text, job.axis[i]);
    for (std::size_t node = 0; node < job.NodeCount(); ++node) {
      AppendNumber(text, job.first[node][i]);
      if (frequency) AppendNumber(text, job.second[node][i]);
    }
    text += '\n';
  }
  return text + ")\n";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  fftsolver::ExchangeJob job;
  std::string message;
  if (!fftsolver::ParseExchange(text, job, message)) {
    if (message.empty() || message.find('\n') != std::string::npos) std::abort();
    return 0;
  }
  const bool frequency = job.input == fftsolver::Domain::Frequency;
  if (job.NodeCount() == 0 || (!job.multiNode && job.NodeCount() != 1)) std::abort();
  if (job.second.size() != (frequency ? job.NodeCount() : 0)) std::abort();
  for (std::size_t node = 0; node < job.NodeCount(); ++node) {
    if (job.first[node].size() != job.axis.size()) std::abort();
    if (frequency && job.second[node].size() != job.axis.size()) std::abort();
  }
  if (job.outputOffset != std::string::npos) {
    if (job.outputOffset > size) std::abort();
    const std::string_view rest = text.substr(job.outputOffset);
    const std::size_t start = rest.find_first_not_of(" \t\r\v\f");
    if (start == std::string_view::npos || rest.substr(start, 7) != "(Output") std::abort();
  }
  fftsolver::ExchangeJob again;
  if (!fftsolver::ParseExchange(Rewrite(job), again, message)) std::abort();
  if (again.input != job.input || again.multiNode != job.multiNode || again.axis != job.axis ||
      again.first != job.first || again.second != job.second || again.timeUnit != job.timeUnit ||
      again.frequencyUnit != job.frequencyUnit) {
    std::abort();
  }
  return 0;
}
