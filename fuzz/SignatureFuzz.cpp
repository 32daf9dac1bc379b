// The code-signature reader over arbitrary bytes taken as a PE file: from memory, and
// from a temporary file through the platform layer, which must give the same report.
// Whatever the bytes, the report is consistent: a complete report names its signer,
// a failed one carries a code and prints exactly one failure line at its end. Inputs
// that start like a DER SEQUENCE also go through the program-name decoder.
#include <corlith/environment/Authenticode.h>

#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>

namespace {

namespace fs = std::filesystem;

void Check(bool condition) {
  if (!condition) std::abort();
}

// One file for the whole run, removed at exit.
const fs::path& InputFile() {
  static const fs::path* const file = [] {
    auto* path = new fs::path(fs::temp_directory_path() / ("corlith-sigfuzz-" + std::to_string(::getpid())));
    std::atexit([] {
      std::error_code ignored;
      fs::remove(InputFile(), ignored);
    });
    return path;
  }();
  return *file;
}

std::size_t CountFailureLines(const std::string& text) {
  std::size_t count = 0;
  for (const char* marker : {"failed with ", "Unable to "}) {
    for (std::size_t at = text.find(marker); at != std::string::npos; at = text.find(marker, at + 1)) ++count;
  }
  return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  const corlith::SignatureReport report = corlith::ReadSignatureReport(bytes);
  const std::string text = corlith::FormatSignatureReport(report);

  Check(report.failedStage != corlith::SignatureStage::Convert);
  if (report.failedStage == corlith::SignatureStage::None) {
    Check(report.signer.has_value() && report.errorCode == 0);
    Check(text.starts_with("Program Name : ") || text.starts_with("Publisher Link : ") ||
          text.starts_with("MoreInfo Link : ") || text.starts_with("Signer Certificate:\n\n"));
  } else {
    Check(report.errorCode != 0 && !text.empty() && text.back() == '\n');
    // Names and serial numbers are one line each, so the failure line is the last one.
    const std::size_t lastLine = text.rfind('\n', text.size() - 2);
    Check(text.find(" failed with ", lastLine == std::string::npos ? 0 : lastLine) != std::string::npos);
  }
  if (report.timeStampTime) Check(report.timeStampSigner.has_value());
  if (report.timeStampSigner) Check(report.timeStampKind != corlith::TimeStampKind::None);
  if (report.opus.programName) Check(text.starts_with("Program Name : "));
  // Names from the input may hold anything; with none of them the text is ours alone.
  if (!report.opus.programName && !report.opus.publisherLink && !report.opus.moreInfoLink && !report.signer) {
    Check(CountFailureLines(text) == (report.failedStage == corlith::SignatureStage::None ? 0u : 1u));
  }

  {
    std::ofstream out(InputFile(), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  Check(corlith::FormatSignatureReport(corlith::ReadSignatureReport(InputFile())) == text);

  if (size > 0 && data[0] == 0x30) {
    corlith::OpusInfo info;
    corlith::DecodeOpusInfo(bytes, info);
  }
  return 0;
}
