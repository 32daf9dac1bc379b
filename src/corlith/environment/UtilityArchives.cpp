// KTUtility: the archive members. tar, gzip, 7zr and TesselZip run as hidden children
// with the original's command lines (ToolCommandLine.h); ZIP extraction is ZipExtract.h.
#include <corlith/environment/ToolCommandLine.h>
#include <corlith/environment/Utility.h>
#include <corlith/environment/ZipExtract.h>

#include <corlith/platform/FileSystem.h>
#include <corlith/platform/Path.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <system_error>

namespace {

namespace platform = corlith::platform;

bool HasNul(const CString& text) { return text.view().find('\0') != std::string_view::npos; }

std::filesystem::path NativePath(const CString& path) {
  return std::filesystem::path(platform::ToNativeSeparators(path.view()));
}

// Copies a file over `to`, unless both name the same file already.
bool CopyOver(const CString& from, const CString& to) {
  std::error_code error;
  if (std::filesystem::equivalent(NativePath(from), NativePath(to), error)) return true;
  return std::filesystem::copy_file(NativePath(from), NativePath(to),
                                    std::filesystem::copy_options::overwrite_existing, error) &&
         !error;
}

// The path made absolute from the host's current folder; empty when that fails.
CString Absolute(const CString& path) {
  std::error_code error;
  const std::filesystem::path absolute = std::filesystem::absolute(NativePath(path), error);
  return error ? CString() : CString(absolute.string());
}

// True when `folder` is `path` itself or a folder above it (links resolved where they exist).
bool HoldsOrIs(const CString& folder, const CString& path) {
  std::error_code error;
  const std::filesystem::path outer = std::filesystem::weakly_canonical(NativePath(folder), error);
  if (error) return true;  // undecidable: treated as unsafe
  const std::filesystem::path inner = std::filesystem::weakly_canonical(NativePath(path), error);
  if (error) return true;
  auto [outerAt, innerAt] = std::mismatch(outer.begin(), outer.end(), inner.begin(), inner.end());
  // A trailing separator gives a last empty part, which any path holds.
  return outerAt == outer.end() || (std::next(outerAt) == outer.end() && outerAt->empty());
}

// Moves a file as a file move does, also onto another file system: there it is copied to
// a temporary name beside `to`, renamed, and only then removed, so no partial file ever
// stands under `to`.
bool MoveFileOver(const CString& from, const CString& to) {
  const int renamed = platform::RenamePath(from.view(), to.view());
  if (renamed != EXDEV) return renamed == 0;
  const std::filesystem::path target = NativePath(to);
  std::filesystem::path temporary = target;
  temporary += ".corlith-move";
  std::error_code error;
  const bool copied = std::filesystem::copy_file(NativePath(from), temporary,
                                                 std::filesystem::copy_options::overwrite_existing, error) &&
                      !error;
  if (!copied || platform::RenamePath(temporary.string(), target.string()) != 0) {
    platform::RemoveFilePath(temporary.string());
    return false;
  }
  platform::RemoveFilePath(from.view());
  return true;
}

// Starts `tool` with `commandLine` in `workingFolder`; true when it could be started.
bool Started(const CString& tool, const CString& commandLine, const CString& workingFolder = CString()) {
  return corlith::RunTool(tool.view(), commandLine.view(), workingFolder.view()).has_value();
}

// The command line after the tool's own path: the tool is started by that path, never
// split at its blanks, as the original platform's search for the program found it.
CString AfterTool(const CString& commandLine, const CString& tool) {
  return commandLine.Mid(tool.GetLength());
}

// ExtractTgzFile and ExtractTarGzFile: one algorithm for both names.
int ExtractGzippedTar(KTUtility& utility, const CString& givenArchive, const CString& destination,
                      const CString& gzip) {
  // gzip works in the work folder: a relative name would be read from there.
  const CString archive = Absolute(givenArchive);
  if (archive.IsEmpty()) return 0;
  // The work folder: the archive's path without ".tgz", or without ".tar.gz".
  CString work = utility.GetSegmntFromFilePath(archive, 0);
  if (utility.GetSegmntFromFilePath(archive, 4).CompareNoCase("gz") == 0 &&
      utility.GetSegmntFromFilePath(work, 4).CompareNoCase("tar") == 0) {
    work = utility.GetSegmntFromFilePath(work, 0);
  }
  if (work.IsEmpty()) return 0;
  if (!utility.DoesFileExist(work, "KTUtility", __LINE__)) utility.MakeDirectory(work);

  const CString copy =
      utility.KTPathCombine(work, utility.GetSegmntFromFilePath(archive, 2), "KTUtility", __LINE__);
  if (!CopyOver(archive, copy)) return 0;
  CString command;
  command.Format(" -df \"%s\"", copy.GetString());
  Started(gzip, command, work);

  // gzip drops the last extension, and turns ".tgz" into ".tar".
  CString tarFile = utility.GetSegmntFromFilePath(copy, 0);
  if (utility.GetSegmntFromFilePath(tarFile, 4).CompareNoCase("tar") != 0) tarFile += ".tar";
  if (!utility.DoesFileExist(tarFile, "KTUtility", __LINE__)) return 0;
  return utility.ExtractTarFile(tarFile, destination);
}

}  // namespace

int KTUtility::CompressedTGZ(const CString& archiveBase, const CString& source, BOOL useTgz) {
  if (HasNul(archiveBase) || !DoesFileExist(source, "KTUtility", __LINE__)) return 0;
  const CString tar = GetTarExeFilePathUtility();
  const CString gzip = GetGZipExeFilePathUtility();
  if (!DoesFileExist(tar, "KTUtility", __LINE__) || !DoesFileExist(gzip, "KTUtility", __LINE__)) return 0;

  // The tools work in the source's folder with relative names; the host's current
  // folder stays as it is.
  const CString folder = GetSegmntFromFilePath(source, 1);
  const CString baseName = GetSegmntFromFilePath(archiveBase, 2);
  const CString sourceName = GetSegmntFromFilePath(source, 2);

  const CString tarFile = KTPathCombine(folder, baseName, "KTUtility", __LINE__) + ".tar";
  if (DoesFileExist(tarFile, "KTUtility", __LINE__)) platform::RemoveFilePath(tarFile.view());
  CString command;
  command.Format(" -cf %s.tar %s", baseName.GetString(), sourceName.GetString());
  Started(tar, command, folder);

  const CString gzFile = KTPathCombine(folder, baseName, "KTUtility", __LINE__) + ".tar.gz";
  if (DoesFileExist(gzFile, "KTUtility", __LINE__)) platform::RemoveFilePath(gzFile.view());
  command.Format(" %s.tar", baseName.GetString());
  Started(gzip, command, folder);

  if (!DoesFileExist(gzFile, "KTUtility", __LINE__)) return 0;
  const CString final = archiveBase + (useTgz ? ".tgz" : ".tar.gz");
  MakeDirectory(GetSegmntFromFilePath(final, 1));
  // A move that fails leaves no archive under the final name: reported as 0.
  return MoveFileOver(gzFile, final) ? 1 : 0;
}

int KTUtility::ExtractTarFile(const CString& archive, const CString& destination) {
  if (destination.IsEmpty() || HasNul(destination) || !DoesFileExist(archive, "KTUtility", __LINE__))
    return 0;
  const CString tar = GetTarExeFilePathUtility();
  if (!DoesFileExist(tar, "KTUtility", __LINE__)) return 0;
  if (!DoesFileExist(destination, "KTUtility", __LINE__)) MakeDirectory(destination);

  const CString name = GetSegmntFromFilePath(archive, 2);
  if (!CopyOver(archive, KTPathCombine(destination, name, "KTUtility", __LINE__))) return 0;
  // Taken before the folder changes: a relative name is the host's current folder's.
  const CString folder = Absolute(destination);
  if (folder.IsEmpty()) return 0;
  // Deliberately left current afterwards: hosts of the original rely on it.
  std::error_code error;
  std::filesystem::current_path(NativePath(folder), error);
  if (error) return 0;
  CString command;
  command.Format(" -xf \"%s\"", name.GetString());
  const auto status = corlith::RunTool(tar.view(), command.view(), folder.view());
  return status && status->Succeeded() ? 1 : 0;
}

int KTUtility::ExtractTgzFile(const CString& archive, const CString& destination) {
  if (HasNul(archive) || !DoesFileExist(archive, "KTUtility", __LINE__)) return 0;
  const CString gzip = GetGZipExeFilePathUtility();
  if (!DoesFileExist(gzip, "KTUtility", __LINE__)) return 0;
  return ExtractGzippedTar(*this, archive, destination, gzip);
}

int KTUtility::ExtractTarGzFile(const CString& archive, const CString& destination) {
  if (HasNul(archive) || !DoesFileExist(archive, "KTUtility", __LINE__)) return 0;
  const CString gzip = GetGZipExeFilePathUtility();
  if (!DoesFileExist(gzip, "KTUtility", __LINE__)) return 0;
  return ExtractGzippedTar(*this, archive, destination, gzip);
}

int KTUtility::GDecompress(const CString& path) {
  const std::string_view text = path.view();
  if (!text.ends_with(".Z") || HasNul(path)) return 0;
  // Beside the executable only: this member never used the locators.
  const CString gzip = GetCurModuleDir() + platform::kNativeSeparator + "gzip";
  if (!DoesFileExist(gzip, "KTUtility", __LINE__) || !DoesFileExist(path, "KTUtility", __LINE__)) return 0;
  Started(gzip, CString(" -df \"") + path + "\"");
  return DoesFileExist(CString(text.substr(0, text.size() - 2)), "KTUtility", __LINE__) ? 1 : 0;
}

int KTUtility::DeCompressed7z(const CString& archive, const CString& destinationRoot) {
  if (HasNul(archive) || HasNul(destinationRoot) || !DoesFileExist(archive, "KTUtility", __LINE__)) return 0;
  const CString tool = Get7zExeFilePathUtility();
  if (!DoesFileExist(tool, "KTUtility", __LINE__)) return 0;
  // The target is deleted first, so a target that would not be a folder of its own is
  // refused with 0 before anything is deleted (deliberately unlike the original): no
  // title (".7z"), a name without extension when the path's last dot lies in a folder's
  // name, and a target that is the archive itself or a folder holding it.
  const CString title = GetSegmntFromFilePath(archive, 3);
  if (title.IsEmpty()) return 0;
  CString target;
  if (destinationRoot.IsEmpty()) {
    if (title == GetSegmntFromFilePath(archive, 2)) return 0;
    target = GetSegmntFromFilePath(archive, 0);
  } else {
    target = KTPathCombine(destinationRoot, title, "KTUtility", __LINE__);
  }
  if (target.IsEmpty() || HoldsOrIs(target, archive)) return 0;
  if (DoesFileExist(target, "KTUtility", __LINE__)) DeleteDirectory(target);
  MakeDirectory(target);
  CString command;
  command.Format("%s x \"%s\" -o\"%s\"", tool.GetString(), archive.GetString(), target.GetString());
  return Started(tool, AfterTool(command, tool)) ? 1 : 0;
}

int KTUtility::CompressedUnicodeZip(const CString& zipPath, const CString& source) {
  if (HasNul(zipPath) || !DoesFileExist(source, "KTUtility", __LINE__)) return 0;
  const CString tool = GetTesselZipExeFilePathUtility();
  if (!DoesFileExist(tool, "KTUtility", __LINE__)) return 0;
  CString command;
  command.Format("%s m \"%s\" \"%s\"", tool.GetString(), source.GetString(), zipPath.GetString());
  return Started(tool, AfterTool(command, tool)) ? 1 : 0;
}

int KTUtility::DecompressedUnicodeZip(const CString& zipPath, const CString& destination) {
  if (HasNul(destination) || !DoesFileExist(zipPath, "KTUtility", __LINE__)) return 0;
  const CString tool = GetTesselZipExeFilePathUtility();
  if (!DoesFileExist(tool, "KTUtility", __LINE__)) return 0;
  CString command;
  command.Format("%s e \"%s\" \"%s\"", tool.GetString(), zipPath.GetString(), destination.GetString());
  return Started(tool, AfterTool(command, tool)) ? 1 : 0;
}

int KTUtility::ExtractZipFile(const CString& zipPath, const CString& destination) {
  if (HasNul(zipPath) || !DoesFileExist(zipPath, "KTUtility", __LINE__)) return 0;
  const CString target = destination.IsEmpty() ? GetSegmntFromFilePath(zipPath, 0) : destination;
  if (target.IsEmpty()) return 0;
  return corlith::ExtractZip(zipPath.view(), target.view()).Succeeded() ? 1 : 0;
}

CString KTUtility::GetCompressedDirInTar(const CString& /*archive*/) { return {}; }
