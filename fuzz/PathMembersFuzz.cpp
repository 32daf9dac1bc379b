// KTUtility's path-text members (no file system) and CLPath's on arbitrary text: the
// segments fit back together, corrected names pass the check, both encodings leave no
// unsafe character and give the text back when it held no code already, and the rules
// that answer 0 or 1 answer nothing else. The first byte picks an extra segment mode.
#include <corlith/environment/LPath.h>
#include <corlith/environment/Utility.h>
#include <corlith/platform/Path.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

namespace platform = corlith::platform;

void Check(bool condition) {
  if (!condition) std::abort();
}

bool HasAny(std::string_view text, std::string_view characters) {
  return text.find_first_of(characters) != std::string_view::npos;
}

void CheckSegments(KTUtility& utility, const CString& path, int extraMode) {
  const std::string native = platform::ToNativeSeparators(path.view());
  const std::string withoutExtension = utility.GetSegmntFromFilePath(path, 0).str();
  const std::string folder = utility.GetSegmntFromFilePath(path, 1).str();
  const std::string name = utility.GetSegmntFromFilePath(path, 2).str();
  const std::string title = utility.GetSegmntFromFilePath(path, 3).str();
  const std::string extension = utility.GetSegmntFromFilePath(path, 4).str();

  if (native.find('.') != std::string::npos) {
    Check(withoutExtension + "." + extension == native);
  } else {
    Check(withoutExtension.empty() && extension.empty());
  }
  if (platform::FindLastSeparator(native) != std::string::npos) {
    Check(folder + platform::kNativeSeparator + name == native);
  } else {
    Check(folder.empty() && name == native);
  }
  Check(platform::FindLastSeparator(name) == std::string::npos);
  Check(name.compare(0, title.size(), title) == 0);
  Check(title == name || name[title.size()] == '.');
  if (extraMode < 0 || extraMode > 4) Check(utility.GetSegmntFromFilePath(path, extraMode).IsEmpty());
}

void CheckNames(KTUtility& utility, const CString& text) {
  const CString corrected = utility.GetCorretedFileName(text);
  Check(corrected.GetLength() == text.GetLength());
  Check(!HasAny(corrected.view(), "\\/:*?<> |~"));
  Check(utility.IsCorretedFileName(corrected) == 1);
  Check(utility.IsCorretedFileName(text) == (HasAny(text.view(), "\\/:*?<>|") ? 0 : 1));
  Check(utility.IsPureFileName(text) == (platform::FindLastSeparator(text.view()) == std::string_view::npos));

  CString folderName(text);
  utility.ConvertStringForVaildFolderName(folderName);
  Check(!HasAny(folderName.view(), "\\/:*?\"<>|"));
  utility.ConvertStringForOriginalFolderName(folderName);
  if (text.view().find('^') == std::string_view::npos) Check(folderName == text);

  const CString encoded = utility.EncodeEntityCode(text);
  Check(!HasAny(encoded.view(), "\\/:*?\"<>|"));
  if (text.view().find("&#") == std::string_view::npos) Check(utility.DecodeEntityCode(encoded) == text);

  const int absolute = utility.IsAbsolutePath(text);
  Check(absolute == 0 || absolute == 1);
  Check(CLPath::IsAbsolutePath(text) == absolute);

  const CString parent = CLPath::GetParentPath(text);
  Check(text.view().substr(0, static_cast<std::size_t>(parent.GetLength())) == parent.view());
  Check(parent.GetLength() < text.GetLength() || text.IsEmpty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const int extraMode = static_cast<int>(data[0] % 8) - 1;
  const CString text(std::string_view(reinterpret_cast<const char*>(data) + 1, size - 1));
  KTUtility& utility = *KTUtility::GetInstance();
  CheckSegments(utility, text, extraMode);
  CheckNames(utility, text);
  return 0;
}
