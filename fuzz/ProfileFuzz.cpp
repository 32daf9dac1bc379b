// The INI reader of the application profile on arbitrary bytes: every visible entry reads
// back through Get, the re-written text re-reads to the same entries and re-writes to the
// same bytes, and edits (in another case, a new section, a deletion) do exactly what they
// say to the re-read text.
#include <corlith/framework/Ascii.h>
#include <corlith/framework/Profile.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

void Check(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using corlith::IniDocument;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  IniDocument doc = IniDocument::Parse(bytes);
  const std::vector<IniDocument::Entry> entries = doc.Entries();
  for (const IniDocument::Entry& entry : entries) {
    const auto value = doc.Get(entry.section, entry.key);
    Check(value && *value == entry.value);
  }
  const std::string text = doc.Serialize();
  const IniDocument again = IniDocument::Parse(text);
  Check(again.Entries() == entries);
  Check(again.Serialize() == text);

  if (!entries.empty()) {
    // Set through other-case names when they can be written: the spelling stays.
    const IniDocument::Entry& first = entries.front();
    const std::string section = corlith::ascii::UpperCopy(first.section);
    const std::string key = corlith::ascii::LowerCopy(first.key);
    IniDocument edited = IniDocument::Parse(text);
    if (edited.Set(section, key, "fuzz")) {
      const IniDocument reread = IniDocument::Parse(edited.Serialize());
      const auto value = reread.Get(first.section, first.key);
      Check(value && *value == "fuzz");
      std::vector<IniDocument::Entry> expected = entries;
      expected.front().value = "fuzz";
      Check(reread.Entries() == expected);
    }
    IniDocument without = IniDocument::Parse(text);
    Check(without.DeleteSection(first.section));
    const IniDocument reread = IniDocument::Parse(without.Serialize());
    Check(!reread.Get(first.section, first.key));
    const std::string gone = corlith::ascii::LowerCopy(first.section);
    for (const IniDocument::Entry& entry : reread.Entries())
      Check(corlith::ascii::LowerCopy(entry.section) != gone);
  }

  IniDocument added = IniDocument::Parse(text);
  Check(added.Set("Fuzz Added Section", "Key", "value = kept "));
  const IniDocument reread = IniDocument::Parse(added.Serialize());
  const auto value = reread.Get("fuzz added section", "KEY");
  Check(value && *value == "value = kept ");
  return 0;
}
