// TesselZip, the ZIP helper tool that KTUtility::CompressedUnicodeZip and
// DecompressedUnicodeZip start: "m" packs a file or a folder (Pack.h), "e" extracts with
// exactly the library's rules (<corlith/environment/ZipExtract.h>, the same code).
#include "Pack.h"

#include <corlith/environment/ZipExtract.h>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include <iostream>
#include <string>
#include <string_view>

namespace {

constexpr const char* kUsage =
    "Usage: TesselZip m SOURCE ZIP   pack a file or a folder (recursively) into a new ZIP archive\n"
    "       TesselZip e ZIP DEST     extract every entry of ZIP below the folder DEST\n"
    "\n"
    "Names are stored and read as UTF-8; hidden files are included; a symbolic link is\n"
    "packed as the file it points to when that file lies inside SOURCE, else left out.\n"
    "Extraction refuses the whole archive, before writing anything, when an entry's name\n"
    "is absolute, has a drive letter, a backslash or a \"..\" part, or an entry is a\n"
    "symbolic link; each file appears under its name only complete, with a good checksum.\n"
    "Exit status: 0 on success, 1 when packing or extracting failed, 2 on wrong usage.\n";

int Fail(int status, std::string_view message) {
  std::cerr << "TesselZip: " << message << '\n';
  return status;
}

}  // namespace

int main(int argc, char** argv) {
#if defined(__GLIBC__)
  // libzip sets up a deflate state of about 300 KB for every entry it packs. By default
  // glibc hands that memory back to the system after each entry and faults it in again
  // for the next, which for many small files costs more than the compression itself:
  // keep it instead.
  mallopt(M_MMAP_THRESHOLD, 4 << 20);
  mallopt(M_TRIM_THRESHOLD, 64 << 20);
#endif
  if (argc == 2 && (std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "-h")) {
    std::cout << kUsage;
    return 0;
  }
  if (argc != 4) return Fail(2, "expected m SOURCE ZIP or e ZIP DEST (see --help)");
  const std::string_view command = argv[1];
  if (command == "m") {
    std::string message;
    if (tesselzip::Pack(argv[2], argv[3], message) != 0) return Fail(1, message);
    return 0;
  }
  if (command == "e") {
    const corlith::ZipExtractResult result = corlith::ExtractZip(argv[2], argv[3]);
    if (!result.Succeeded()) return Fail(1, result.message);
    return 0;
  }
  return Fail(2, "unknown command \"" + std::string(command) + "\" (see --help)");
}
