#include "Exchange.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace fftsolver {

namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";

std::string_view Trim(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(kBlanks);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool StartsWith(std::string_view text, std::string_view prefix) {
  return text.substr(0, prefix.size()) == prefix;
}

// The fields of a row or an item, split at runs of blanks. Stops after `limit` + 1
// fields: the caller only needs to know there are too many.
std::size_t SplitFields(std::string_view text, std::vector<std::string_view>& fields, std::size_t limit) {
  fields.clear();
  std::size_t pos = 0;
  while (fields.size() <= limit) {
    pos = text.find_first_not_of(kBlanks, pos);
    if (pos == std::string_view::npos) break;
    const std::size_t end = std::min(text.find_first_of(kBlanks, pos), text.size());
    fields.push_back(text.substr(pos, end - pos));
    pos = end;
  }
  return fields.size();
}

bool ParseDouble(std::string_view field, double& value) {
  if (!field.empty() && field.front() == '+') field.remove_prefix(1);
  const char* end = field.data() + field.size();
  const auto [ptr, error] = std::from_chars(field.data(), end, value);
  return error == std::errc() && ptr == end && std::isfinite(value);
}

bool ParseCount(std::string_view field, std::size_t& value) {
  const char* end = field.data() + field.size();
  const auto [ptr, error] = std::from_chars(field.data(), end, value);
  return error == std::errc() && ptr == end && !field.empty();
}

// An item line "(Key rest)": its rest, trimmed; false when the line is no such item.
bool ItemRest(std::string_view line, std::string_view key, std::string_view& rest) {
  if (!StartsWith(line, key) || line.back() != ')') return false;
  const std::string_view inner = line.substr(key.size(), line.size() - key.size() - 1);
  if (!inner.empty() && kBlanks.find(inner.front()) == std::string_view::npos) return false;  // "(Sizes"
  rest = Trim(inner);
  return true;
}

class Parser {
 public:
  Parser(ExchangeJob& job, std::string& message) : m_job(job), m_message(message) {}

  bool Run(std::string_view text) {
    std::size_t pos = 0;
    while (pos < text.size()) {
      const std::size_t end = std::min(text.find('\n', pos), text.size());
      const std::string_view line = Trim(text.substr(pos, end - pos));
      ++m_lineNumber;
      if (!line.empty()) {
        if (m_section == Section::None && StartsWith(line, "(Output")) {
          m_job.outputOffset = pos;
          break;
        }
        if (!Line(line)) return false;
      }
      pos = end + 1;
    }
    if (m_section != Section::None) return FailFile("the file ends inside a section");
    if (!m_inputSeen) return FailFile("the file has no (Input section");
    return true;
  }

 private:
  enum class Section { None, File, Analysis, Input };

  bool Fail(const std::string& what) {
    m_message = "line " + std::to_string(m_lineNumber) + ": " + what;
    return false;
  }

  // A fault of the file as a whole, found at its end.
  bool FailFile(const std::string& what) {
    m_message = what;
    return false;
  }

  bool Line(std::string_view line) {
    switch (m_section) {
      case Section::None:
        return TopLevel(line);
      case Section::File:
      case Section::Analysis:
        return HeaderItem(line);
      case Section::Input:
        return InputLine(line);
    }
    return false;
  }

  bool TopLevel(std::string_view line) {
    if (line == "(File") {
      m_section = Section::File;
    } else if (line == "(AnalysisParameters") {
      m_section = Section::Analysis;
    } else if (line == "(Input") {
      if (m_inputSeen) return Fail("a second (Input section");
      m_inputSeen = true;
      m_section = Section::Input;
    } else {
      return Fail("expected a section such as (Input, found \"" + Shorten(line) + "\"");
    }
    return true;
  }

  bool HeaderItem(std::string_view line) {
    if (line == ")") {
      m_section = Section::None;
      return true;
    }
    if (line.front() != '(' || line.back() != ')') return Fail("expected an item \"(Key ...)\"");
    std::string_view rest;
    if (m_section == Section::File && ItemRest(line, "(Unit", rest)) {
      std::vector<std::string_view> fields;
      if (SplitFields(rest, fields, 2) != 2) return Fail("expected \"(Unit time frequency)\"");
      m_job.timeUnit = std::string(fields[0]);
      m_job.frequencyUnit = std::string(fields[1]);
    }
    return true;
  }

  bool InputLine(std::string_view line) {
    if (line == ")") {
      if (!m_typeSeen) return Fail("the (Input section has no (Type line");
      if (!m_sizeSeen) return Fail("the (Input section has no (Size line");
      if (m_job.axis.size() != m_rows) {
        return Fail("the size line announces " + std::to_string(m_rows) + " rows, the section holds " +
                    std::to_string(m_job.axis.size()));
      }
      m_section = Section::None;
      return true;
    }
    std::string_view rest;
    if (ItemRest(line, "(Type", rest)) return TypeItem(rest);
    if (ItemRest(line, "(Size", rest)) return SizeItem(rest);
    if (line.front() == '(') return Fail("unexpected item in the (Input section");
    return Row(line);
  }

  bool TypeItem(std::string_view rest) {
    if (m_typeSeen) return Fail("a second (Type line");
    if (rest == "Time") {
      m_job.input = Domain::Time;
    } else if (rest == "Frequency") {
      m_job.input = Domain::Frequency;
    } else {
      return Fail("the input type is \"" + Shorten(rest) + "\", not Time or Frequency");
    }
    m_typeSeen = true;
    return true;
  }

  bool SizeItem(std::string_view rest) {
    if (m_sizeSeen) return Fail("a second (Size line");
    if (!m_typeSeen) return Fail("the (Size line comes before the (Type line");
    std::vector<std::string_view> fields;
    const std::size_t count = SplitFields(rest, fields, 2);
    std::size_t nodes = 1;
    if ((count != 1 && count != 2) || !ParseCount(fields[0], m_rows) ||
        (count == 2 && !ParseCount(fields[1], nodes))) {
      return Fail("expected \"(Size samples)\" or \"(Size samples nodes)\"");
    }
    if (m_rows > kMaxSamples) return Fail("more than " + std::to_string(kMaxSamples) + " samples");
    if (nodes == 0 || nodes > kMaxNodes)
      return Fail("the node count must be 1 to " + std::to_string(kMaxNodes));
    m_sizeSeen = true;
    m_job.multiNode = count == 2;
    m_job.first.assign(nodes, {});
    m_job.second.assign(m_job.input == Domain::Frequency ? nodes : 0, {});
    m_perNode = m_job.input == Domain::Frequency ? 2 : 1;
    return true;
  }

  bool Row(std::string_view line) {
    if (!m_sizeSeen) return Fail("a data row before the (Size line");
    if (m_job.axis.size() == m_rows) {
      return Fail("more rows than the " + std::to_string(m_rows) + " the size line announces");
    }
    const std::size_t expected = 1 + m_perNode * m_job.NodeCount();
    if (SplitFields(line, m_fields, expected) != expected) {
      return Fail("expected " + std::to_string(expected) + " numbers in the row");
    }
    m_values.resize(expected);
    for (std::size_t i = 0; i < expected; ++i) {
      if (!ParseDouble(m_fields[i], m_values[i])) {
        return Fail("\"" + Shorten(m_fields[i]) + "\" is not a finite number");
      }
    }
    m_job.axis.push_back(m_values[0]);
    for (std::size_t node = 0; node < m_job.NodeCount(); ++node) {
      m_job.first[node].push_back(m_values[1 + m_perNode * node]);
      if (m_perNode == 2) m_job.second[node].push_back(m_values[2 + 2 * node]);
    }
    return true;
  }

  // Quoted input in a message stays short and on one line.
  static std::string Shorten(std::string_view text) {
    std::string shown(text.substr(0, 40));
    for (char& c : shown) {
      if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    }
    return text.size() > 40 ? shown + "..." : shown;
  }

  ExchangeJob& m_job;
  std::string& m_message;
  Section m_section = Section::None;
  std::size_t m_lineNumber = 0;
  bool m_inputSeen = false;
  bool m_typeSeen = false;
  bool m_sizeSeen = false;
  std::size_t m_rows = 0;
  std::size_t m_perNode = 1;
  std::vector<std::string_view> m_fields;
  std::vector<double> m_values;
};

}  // namespace

bool ParseExchange(std::string_view text, ExchangeJob& job, std::string& message) {
  job = ExchangeJob();
  return Parser(job, message).Run(text);
}

std::string MultiNodeResultPath(std::string_view exchangePath) {
  std::string path(exchangePath);
  for (char& c : path) {
    if (c == '\\') c = '/';
  }
  const std::size_t dot = path.rfind('.');
  return (dot == std::string::npos ? std::string() : path.substr(0, dot)) + "_out.txt";
}

}  // namespace fftsolver
