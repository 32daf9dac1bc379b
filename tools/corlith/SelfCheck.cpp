#include "SelfCheck.h"

#include "Commands.h"

#include <corlith/Corlith.h>

#include <unistd.h>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <iostream>
#include <nlohmann/json.hpp>

namespace corlith::cli {
namespace {

using Bytes = std::vector<BYTE>;

std::string Hex(const Bytes& bytes) {
  std::string out;
  for (std::size_t i = 0; i < bytes.size() && i < 16; ++i) out += FormatText("%02X ", bytes[i]);
  if (bytes.size() > 16) out += FormatText("... (%zu bytes)", bytes.size());
  return out;
}

Bytes Stored(const std::function<void(CArchive&)>& store) {
  CMemFile file;
  {
    CArchive ar(&file, CArchive::store);
    store(ar);
    ar.Close();
  }
  const auto data = file.GetData();
  return Bytes(data.begin(), data.end());
}

std::string ExpectBytes(const Bytes& actual, const Bytes& expected) {
  if (actual == expected) return {};
  return "wrote " + Hex(actual) + "expected " + Hex(expected);
}

Bytes WithText(Bytes prefix, std::size_t length) {
  prefix.insert(prefix.end(), length, 'x');
  return prefix;
}

std::string CheckStringForms() {
  const struct {
    std::size_t length;
    Bytes prefix;
  } rows[] = {
      {3, {0x03}},
      {254, {0xFE}},
      {255, {0xFF, 0xFF, 0x00}},
      {300, {0xFF, 0x2C, 0x01}},
      {0xFFFE, {0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0x00, 0x00}},
      {70000, {0xFF, 0xFF, 0xFF, 0x70, 0x11, 0x01, 0x00}},
  };
  for (const auto& row : rows) {
    const CString text('x', static_cast<int>(row.length));
    if (auto error = ExpectBytes(Stored([&](CArchive& ar) { ar << text; }), WithText(row.prefix, row.length));
        !error.empty()) {
      return FormatText("length %zu: ", row.length) + error;
    }
  }
  return {};
}

std::string CheckCountForms() {
  const struct {
    DWORD_PTR count;
    Bytes bytes;
  } rows[] = {
      {0xFFFE, {0xFE, 0xFF}},
      {0xFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00}},
      {0xFFFFFFFF, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    if (auto error = ExpectBytes(Stored([&](CArchive& ar) { ar.WriteCount(row.count); }), row.bytes);
        !error.empty()) {
      return FormatText("count %zu: ", static_cast<std::size_t>(row.count)) + error;
    }
  }
  return {};
}

std::string CheckPrimitives() {
  const Bytes expected = {0x01, 0x02, 0x00, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                          0x00, 0x00, 0x00, 0xF0, 0x3F, 0x00, 0x00, 0x80, 0x3F};
  return ExpectBytes(Stored([](CArchive& ar) { ar << BYTE{1} << WORD{2} << 4 << 1.0 << 1.0f; }), expected);
}

std::string CheckWideStringLoad() {
  BYTE bytes[] = {0xFF, 0xFE, 0xFF, 0x02, 0x61, 0x00, 0xE9, 0x00};
  CMemFile file(bytes, sizeof bytes);
  CArchive ar(&file, CArchive::load);
  CString text;
  ar >> text;
  return text == "a\xC3\xA9" ? std::string() : "loaded \"" + std::string(text.GetString()) + "\"";
}

std::string CheckArraysRoundTrip(const std::string& folder) {
  const std::string path = folder + "/corlith-self-check-" + std::to_string(::getpid()) + ".bin";
  CStringArray strings;
  strings.Add("GND");
  strings.Add(CString('n', 400));
  CDWordArray values;
  for (DWORD v : {0u, 1u, 0xFFFFFFFFu}) values.Add(v);
  {
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    CArchive ar(&file, CArchive::store);
    strings.Serialize(ar);
    values.Serialize(ar);
    ar.Close();
    file.Close();
  }
  CStringArray loadedStrings;
  CDWordArray loadedValues;
  std::string error;
  {
    CFile file(path.c_str(), CFile::modeRead);
    CArchive ar(&file, CArchive::load);
    loadedStrings.Serialize(ar);
    loadedValues.Serialize(ar);
    if (file.GetLength() != 2 + 4 + 3 + 400 + 2 + 12)
      error = FormatText("file has %llu bytes", file.GetLength());
  }
  CFile::Remove(path.c_str());
  if (!error.empty()) return error;
  if (loadedStrings.GetSize() != 2 || loadedStrings[0] != strings[0] || loadedStrings[1] != strings[1]) {
    return "string array differs after loading";
  }
  if (loadedValues.GetSize() != 3 || loadedValues[2] != 0xFFFFFFFF)
    return "value array differs after loading";
  return {};
}

std::string CheckHostileCount() {
  BYTE bytes[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x7F, 0x01};
  CMemFile file(bytes, sizeof bytes);
  CArchive ar(&file, CArchive::load);
  CDWordArray values;
  try {
    values.Serialize(ar);
  } catch (const CArchiveException& e) {
    if (e.m_cause == CArchiveException::endOfFile) return {};
    return FormatText("cause %d instead of end of file", e.m_cause);
  }
  return "a count of 2^63 loaded without error";
}

std::string CheckMisuse() {
  CMemFile file;
  CArchive ar(&file, CArchive::store);
  int value = 0;
  try {
    ar >> value;
  } catch (const CArchiveException& e) {
    if (e.m_cause == CArchiveException::writeOnly) return {};
    return FormatText("cause %d instead of write-only", e.m_cause);
  }
  return "loading from a storing archive did not throw";
}

}  // namespace

std::vector<CheckResult> RunSelfCheck(const std::string& scratchFolder) {
  const std::pair<const char*, std::function<std::string()>> checks[] = {
      {"string length prefixes", CheckStringForms},
      {"count forms", CheckCountForms},
      {"little-endian primitives", CheckPrimitives},
      {"wide string load", CheckWideStringLoad},
      {"string and value arrays through a file", [&] { return CheckArraysRoundTrip(scratchFolder); }},
      {"hostile count ends in end of file", CheckHostileCount},
      {"loading from a storing archive", CheckMisuse},
  };
  std::vector<CheckResult> results;
  for (const auto& [name, check] : checks) {
    CheckResult result{name, false, {}};
    try {
      result.detail = check();
    } catch (const std::exception& e) {
      result.detail = std::string("exception: ") + e.what();
    }
    result.passed = result.detail.empty();
    results.push_back(std::move(result));
  }
  return results;
}

namespace {

int PrintSelfCheck(bool json, const std::string& scratch) {
  const auto results = RunSelfCheck(scratch);
  int passed = 0;
  for (const auto& r : results) passed += r.passed ? 1 : 0;
  const int failed = static_cast<int>(results.size()) - passed;
  if (json) {
    nlohmann::json out;
    out["version"] = kVersionText;
    out["passed"] = passed;
    out["failed"] = failed;
    for (const auto& r : results) {
      nlohmann::json check{{"name", r.name}, {"passed", r.passed}};
      if (!r.passed) check["detail"] = r.detail;
      out["checks"].push_back(std::move(check));
    }
    std::cout << out.dump(2) << '\n';
  } else {
    std::cout << "Corlith " << kVersionText << " archive self-check\n";
    for (const auto& r : results) {
      std::cout << (r.passed ? "  ok      " : "  FAILED  ") << r.name;
      if (!r.passed) std::cout << ": " << r.detail;
      std::cout << '\n';
    }
    std::cout << "self-check: " << passed << " passed, " << failed << " failed\n";
  }
  return failed == 0 ? 0 : 1;
}

}  // namespace

void AddSelfCheckCommand(CLI::App& app, CommandContext& context) {
  struct Options {
    bool json = false;
    std::string scratch = std::filesystem::temp_directory_path().string();
  };
  auto options = std::make_shared<Options>();
  auto* command =
      app.add_subcommand("self-check", "Check the archive layer against the original's byte forms");
  command->add_flag("--json", options->json, "Print the results as JSON");
  command->add_option("--scratch", options->scratch, "Folder for the temporary archive file")
      ->check(CLI::ExistingDirectory);
  command->callback(
      [options, &context] { context.exitStatus = PrintSelfCheck(options->json, options->scratch); });
}

}  // namespace corlith::cli
