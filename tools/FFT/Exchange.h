// The FFT solver's reader of the exchange file the library writes: the job's input
// type, its form (one waveform, or one per node on a shared axis), the axis and the
// samples, and where an "(Output" section from an earlier run begins. Standard library
// only, so that the fuzz target and the solver share it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace fftsolver {

/// Bounds on what a file may ask for; a larger count is a malformed file, not an
/// allocation (storage grows with the rows actually read, never from a size line).
inline constexpr std::size_t kMaxSamples = std::size_t{1} << 24;
inline constexpr std::size_t kMaxNodes = 4096;

enum class Domain { Time, Frequency };

/// One job as read from an exchange file.
struct ExchangeJob {
  /// The input type: Time rows hold one value per node, Frequency rows two (real and
  /// imaginary part of a one-sided spectrum).
  Domain input = Domain::Time;
  /// "(Size N M)": the multi-node form, whose results go to a file of their own.
  bool multiNode = false;
  /// The "(Unit time frequency)" texts; "s" and "Hz" when the file has no unit line.
  std::string timeUnit = "s";
  std::string frequencyUnit = "Hz";
  /// The sample positions, one per row.
  std::vector<double> axis;
  /// Per node (in column order) its first values (Time samples, or real parts) and,
  /// for Frequency input, its second values (imaginary parts); each as long as axis.
  std::vector<std::vector<double>> first;
  std::vector<std::vector<double>> second;
  /// Byte offset of the line starting an "(Output" section already in the file, or
  /// std::string::npos: a rerun replaces that section rather than adding a second one.
  std::size_t outputOffset = std::string::npos;

  std::size_t NodeCount() const { return first.size(); }
};

/// Reads an exchange file's text. Lines are trimmed of surrounding blanks (tabs, "\r"
/// included) and empty ones skipped. The sections "(File", "(AnalysisParameters" and
/// "(Input" hold items "(Key ...)" and end with a line ")"; the "(Input" section must
/// be there with "(Type Time)" or "(Type Frequency)", then "(Size N)" or "(Size N M)"
/// (M >= 1 nodes), then exactly N rows of 1 + M (Time) or 1 + 2M (Frequency) finite
/// numbers separated by blanks. Reading ends at a line beginning with "(Output".
/// Returns false with a one-line `message` (naming the line) for anything else.
bool ParseExchange(std::string_view text, ExchangeJob& job, std::string& message);

/// The multi-node result file for an exchange path, as the library names it: the path
/// (backslashes read as "/") cut before its last "." (also a dot in a folder's name),
/// then "_out.txt"; a path without any dot gives "_out.txt" alone (kept so, as the
/// library does: that file is then found in the current folder).
std::string MultiNodeResultPath(std::string_view exchangePath);

}  // namespace fftsolver
