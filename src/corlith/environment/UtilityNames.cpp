// KTUtility: path segments, folder names, and the name conversions that make a text
// safe as a file or folder name and give it back.
#include <corlith/environment/Utility.h>

#include <corlith/platform/Path.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace {

namespace platform = corlith::platform;

using Replacement = std::pair<const char*, const char*>;

// The folder-name codes, in the order they are applied.
constexpr std::array<Replacement, 9> kFolderNameCodes{{
    {"\\", "1^"},
    {"/", "2^"},
    {":", "3^"},
    {"*", "4^"},
    {"?", "5^"},
    {"\"", "6^"},
    {"<", "7^"},
    {">", "8^"},
    {"|", "9^"},
}};

// The entity codes, in the order they are applied.
constexpr std::array<Replacement, 9> kEntityCodes{{
    {"\\", "&#92;"},
    {"/", "&#47;"},
    {":", "&#58;"},
    {"*", "&#42;"},
    {"?", "&#63;"},
    {"\"", "&#34;"},
    {"<", "&#60;"},
    {">", "&#62;"},
    {"|", "&#124;"},
}};

void ReplaceAll(CString& text, const std::array<Replacement, 9>& codes, bool encode) {
  for (const auto& [character, code] : codes) {
    if (encode) {
      text.Replace(character, code);
    } else {
      text.Replace(code, character);
    }
  }
}

std::string_view AfterLastSeparator(std::string_view text) {
  const std::size_t last = platform::FindLastSeparator(text);
  return last == std::string_view::npos ? text : text.substr(last + 1);
}

}  // namespace

CString KTUtility::GetSegmntFromFilePath(const CString& path, int segment) {
  const std::string text = platform::ToNativeSeparators(path.view());
  const std::string_view view = text;
  const std::size_t lastDot = view.rfind('.');
  const std::size_t lastSeparator = platform::FindLastSeparator(view);
  switch (segment) {
    case 0:
      // The last dot of the whole path, also one in a folder's name (deliberately kept).
      return lastDot == std::string_view::npos ? CString() : CString(view.substr(0, lastDot));
    case 1:
      return lastSeparator == std::string_view::npos ? CString() : CString(view.substr(0, lastSeparator));
    case 2:
      return CString(AfterLastSeparator(view));
    case 3: {
      const std::string_view name = AfterLastSeparator(view);
      const std::size_t dot = name.rfind('.');
      return CString(dot == std::string_view::npos ? name : name.substr(0, dot));
    }
    case 4:
      return lastDot == std::string_view::npos ? CString() : CString(view.substr(lastDot + 1));
    default:
      return {};
  }
}

CString KTUtility::GetFolderName(const CString& path) {
  const std::string_view view = path.view();
  if (IsDir(path)) {
    const std::size_t last = platform::FindLastSeparator(view);
    return last == std::string_view::npos ? CString() : CString(view.substr(last + 1));
  }
  if (IsFile(path)) {
    // Cut one character short of the last separator, which drops the last character of
    // the containing folder's name: deliberately kept.
    const std::size_t last = platform::FindLastSeparator(view);
    const std::size_t keep = last == std::string_view::npos || last == 0 ? 0 : last - 1;
    return CString(AfterLastSeparator(view.substr(0, keep)));
  }
  return {};
}

CString KTUtility::GetCorretedFileName(const CString& name) {
  std::string text(name.view());
  for (char& c : text) {
    if (std::string_view("\\/:*?<> |~").find(c) != std::string_view::npos) c = '$';
  }
  return CString(std::move(text));
}

int KTUtility::IsCorretedFileName(const CString& name) {
  return name.view().find_first_of("\\/:*?<>|") == std::string_view::npos ? 1 : 0;
}

void KTUtility::ConvertStringForVaildFolderName(CString& text) { ReplaceAll(text, kFolderNameCodes, true); }

void KTUtility::ConvertStringForOriginalFolderName(CString& text) {
  ReplaceAll(text, kFolderNameCodes, false);
}

CString KTUtility::EncodeEntityCode(const CString& text) {
  CString result(text);
  ReplaceAll(result, kEntityCodes, true);
  return result;
}

CString KTUtility::DecodeEntityCode(const CString& text) {
  CString result(text);
  ReplaceAll(result, kEntityCodes, false);
  return result;
}
