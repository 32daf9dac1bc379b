// corlith signature: the code-signature report of a PE file, as the utility prints it
// (program name and links, the signer's certificate, the time-stamp's certificate and
// local date), or its fields as JSON. Exit status 0 when the file names a signer whose
// certificate it carries, 1 otherwise. No signature is verified.
#include "Commands.h"

#include <corlith/environment/Authenticode.h>

#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>

namespace corlith::cli {

namespace {

struct SignatureOptions {
  std::string file;
  bool json = false;
};

const char* StageName(SignatureStage stage) {
  switch (stage) {
    case SignatureStage::None:
      return "none";
    case SignatureStage::Convert:
      return "convert";
    case SignatureStage::Query:
      return "query";
    case SignatureStage::SignerInfo:
      return "signer-info";
    case SignatureStage::OpusInfo:
      return "opus-info";
    case SignatureStage::SignerCertificate:
      return "signer-certificate";
    case SignatureStage::TimeStamp:
      return "time-stamp";
    case SignatureStage::TimeStampCertificate:
      return "time-stamp-certificate";
  }
  return "unknown";
}

nlohmann::json Optional(const std::optional<std::string>& text) {
  return text ? nlohmann::json(*text) : nlohmann::json(nullptr);
}

nlohmann::json Certificate(const std::optional<CertificateDetails>& details) {
  if (!details) return nullptr;
  return {{"serialNumber", details->serialNumber},
          {"issuerName", details->issuerName},
          {"subjectName", details->subjectName}};
}

// "2023-11-14T22:13:20Z"
std::string UtcText(std::int64_t seconds) {
  const std::chrono::sys_seconds time{std::chrono::seconds(seconds)};
  const auto days = std::chrono::floor<std::chrono::days>(time);
  const std::chrono::year_month_day date{days};
  const std::chrono::hh_mm_ss clock{time - days};
  char text[40];
  std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", static_cast<int>(date.year()),
                static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()),
                static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                static_cast<int>(clock.seconds().count()));
  return text;
}

nlohmann::json ToJson(const std::string& file, const SignatureReport& report) {
  nlohmann::json out;
  out["file"] = file;
  out["signed"] = report.Signed();
  if (report.failedStage == SignatureStage::None) {
    out["failure"] = nullptr;
  } else {
    // The failure line alone: the report of a failure with nothing found before it.
    SignatureReport failure;
    failure.failedStage = report.failedStage;
    failure.errorCode = report.errorCode;
    std::string message = FormatSignatureReport(failure);
    if (!message.empty() && message.back() == '\n') message.pop_back();
    out["failure"] = {
        {"stage", StageName(report.failedStage)}, {"code", report.errorCode}, {"message", message}};
  }
  out["programName"] = Optional(report.opus.programName);
  out["publisherLink"] = Optional(report.opus.publisherLink);
  out["moreInfoLink"] = Optional(report.opus.moreInfoLink);
  out["signer"] = Certificate(report.signer);
  if (report.timeStampKind == TimeStampKind::None) {
    out["timeStamp"] = nullptr;
  } else {
    nlohmann::json stamp;
    stamp["kind"] = report.timeStampKind == TimeStampKind::Rfc3161 ? "rfc3161" : "counter-signature";
    stamp["signer"] = Certificate(report.timeStampSigner);
    stamp["time"] =
        report.timeStampTime ? nlohmann::json(UtcText(*report.timeStampTime)) : nlohmann::json(nullptr);
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    if (LocalTimeStampDate(report, year, month, day, hour, minute)) {
      char text[32];
      std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d", year, month, day, hour, minute);
      stamp["localTime"] = text;
    } else {
      stamp["localTime"] = nullptr;
    }
    out["timeStamp"] = stamp;
  }
  return out;
}

int RunSignature(const SignatureOptions& options, std::ostream& out) {
  const SignatureReport report = ReadSignatureReport(std::filesystem::path(options.file));
  if (options.json) {
    out << ToJson(options.file, report).dump(2) << '\n';
  } else {
    out << FormatSignatureReport(report);
  }
  out.flush();
  return report.Signed() ? 0 : 1;
}

}  // namespace

void AddSignatureCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<SignatureOptions>();
  auto* command = app.add_subcommand(
      "signature", "Print the code-signature report of a PE file (exit status 0 when it is signed)");
  command->add_option("FILE", options->file, "The PE file")->required();
  command->add_flag("--json", options->json, "Print the report's fields as JSON");
  command->callback([options, &context] { context.exitStatus = RunSignature(*options, std::cout); });
}

}  // namespace corlith::cli
