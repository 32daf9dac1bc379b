// corlith dump: loads a file as the archive of a named value class and prints what it
// holds as JSON, or the archive error and the byte offset where loading stopped. The
// classes are found by name in one table of load-and-describe functions.
#include "Commands.h"

#include <corlith/framework/Archive.h>
#include <corlith/framework/MemFile.h>
#include <corlith/services/Property.h>
#include <corlith/values/Values.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace corlith::cli {

namespace {

using nlohmann::json;

template <class T>
json Describe(const T& value);

// The fields of each value class, by the names its header gives them.
json Fields(const CString& s) { return s.str(); }
json Fields(const CPoint& p) { return {{"x", p.x}, {"y", p.y}}; }
json Fields(const CPointD& p) { return {{"x", p.x}, {"y", p.y}}; }
json Fields(const CPoint3D& p) { return {{"x", p.x}, {"y", p.y}, {"z", p.z}}; }
json Fields(const CPointN& p) { return {{"x", p.x}, {"y", p.y}}; }
json Fields(const C2PointD& p) { return {{"pt1", Fields(p.pt1)}, {"pt2", Fields(p.pt2)}}; }
json Fields(const C4PointD& p) {
  return json::array({Fields(p.GetPt1()), Fields(p.GetPt2()), Fields(p.GetPt3()), Fields(p.GetPt4())});
}
json Fields(const C5PointD& p) {
  return json::array(
      {Fields(p.GetPt1()), Fields(p.GetPt2()), Fields(p.GetPt3()), Fields(p.GetPt4()), Fields(p.GetPt5())});
}
json Fields(const C2Index& p) { return {{"index1", p.index1}, {"index2", p.index2}}; }
json Fields(const CRectD& r) {
  return {{"left", r.left}, {"top", r.top}, {"width", r.width}, {"height", r.height}};
}
json Fields(const CPointF& p) { return {{"x", p.x}, {"y", p.y}}; }
json Fields(const CFPoint& p) { return {{"x", p.x}, {"y", p.y}}; }
json Fields(const C2FPoints& p) { return {{"pt1", Fields(p.pt1)}, {"pt2", Fields(p.pt2)}}; }
json Fields(const CRectF& r) {
  return {{"left", r.left}, {"top", r.top}, {"width", r.width}, {"height", r.height}};
}
json Fields(const CRectFL& r) {
  return {{"left", r.left}, {"top", r.top}, {"width", r.width}, {"height", r.height}};
}
json Fields(const CFRect& r) {
  return {{"left", r.left}, {"top", r.top}, {"right", r.right}, {"bottom", r.bottom}};
}
json Fields(const CCircleF& c) { return {{"center", Fields(c.center)}, {"radius", c.radius}}; }
json Fields(const CIntPair& p) { return {{"integer1", p.integer1}, {"integer2", p.integer2}}; }
json Fields(const CIntDoublePair& p) { return {{"integer", p.integer}, {"double", p.dValue}}; }
json Fields(const CIntStringPair& p) { return {{"integer", p.integer}, {"string", p.string.str()}}; }
json Fields(const CStringPair& p) { return {{"first", p.first.str()}, {"second", p.second.str()}}; }
json Fields(const CStringStringArrayPair& p) {
  return {{"string", p.string.str()}, {"list", Describe(p.list)}};
}
json Fields(const CDWordPair& p) { return {{"dw1", p.dw1}, {"dw2", p.dw2}}; }
json Fields(const CGProperty& p) { return {{"name", p.m_strName.str()}, {"comment", p.m_strComment.str()}}; }
// The archive holds no texts: a loaded record has three empty ones.
json Fields(const CLProperty& p) {
  return {{"text1", p.m_strText1.str()}, {"text2", p.m_strText2.str()}, {"text3", p.m_strText3.str()}};
}

// Numbers as they are, arrays element by element (a null slot as null), records by
// their fields.
template <class T>
json Describe(const T& value) {
  if constexpr (std::is_arithmetic_v<T>) {
    return value;
  } else if constexpr (std::is_pointer_v<T>) {
    return value ? Describe(*value) : json(nullptr);
  } else if constexpr (requires {
                         value.begin();
                         value.end();
                       }) {
    json items = json::array();
    for (const auto& element : value) items.push_back(Describe(element));
    return items;
  } else {
    return Fields(value);
  }
}

template <class T>
json LoadAndDescribe(CArchive& ar) {
  T value;
  value.Serialize(ar);
  return Describe(value);
}

struct DumpEntry {
  const char* name;
  json (*load)(CArchive&);
};

#define CORLITH_DUMP(T) \
  DumpEntry { #T, &LoadAndDescribe < T> }

// Every class of the value and services layers that has an archive form, by its public name.
const DumpEntry kDumpTable[] = {
    CORLITH_DUMP(C2FPoints),
    CORLITH_DUMP(C2FPointsArray),
    CORLITH_DUMP(C2Index),
    CORLITH_DUMP(C2IndexArray),
    CORLITH_DUMP(C2PointD),
    CORLITH_DUMP(C2PointDArray),
    CORLITH_DUMP(C4PointD),
    CORLITH_DUMP(C4PointDArray),
    CORLITH_DUMP(C5PointD),
    CORLITH_DUMP(C5PointDArray),
    CORLITH_DUMP(CArrayArrayB),
    CORLITH_DUMP(CArrayArrayD),
    CORLITH_DUMP(CArrayArrayN),
    CORLITH_DUMP(CArrayArrayPointD),
    CORLITH_DUMP(CArrayB),
    CORLITH_DUMP(CArrayD),
    CORLITH_DUMP(CArrayF),
    CORLITH_DUMP(CArrayN),
    CORLITH_DUMP(CArrayNL),
    CORLITH_DUMP(CArrayPoint),
    CORLITH_DUMP(CArrayPoint3D),
    CORLITH_DUMP(CArrayPointD),
    CORLITH_DUMP(CArrayPointF),
    CORLITH_DUMP(CArrayPointN),
    CORLITH_DUMP(CArrayPointN_Array),
    CORLITH_DUMP(CArrayRectD),
    CORLITH_DUMP(CArrayRectF),
    CORLITH_DUMP(CCircleF),
    CORLITH_DUMP(CDWordArrayArray),
    CORLITH_DUMP(CDWordArrayArrayArray),
    CORLITH_DUMP(CDWordArraySet),
    CORLITH_DUMP(CDWordPair),
    CORLITH_DUMP(CDWordPairSet),
    CORLITH_DUMP(CExPtrArrayArrayN),
    CORLITH_DUMP(CFPoint),
    CORLITH_DUMP(CFRect),
    CORLITH_DUMP(CFRectArray),
    CORLITH_DUMP(CGProperty),
    CORLITH_DUMP(CGPropertyArray),
    CORLITH_DUMP(CIntDoublePair),
    CORLITH_DUMP(CIntDoublePairArray),
    CORLITH_DUMP(CIntPair),
    CORLITH_DUMP(CIntPairArray),
    CORLITH_DUMP(CIntPairArrayArray),
    CORLITH_DUMP(CIntStringPair),
    CORLITH_DUMP(CIntStringPairArray),
    CORLITH_DUMP(CLProperty),
    CORLITH_DUMP(CLPropertyArray),
    CORLITH_DUMP(CNArrayL),
    CORLITH_DUMP(CPoint3D),
    CORLITH_DUMP(CPointD),
    CORLITH_DUMP(CPointF),
    CORLITH_DUMP(CPointN),
    CORLITH_DUMP(CRectD),
    CORLITH_DUMP(CRectF),
    CORLITH_DUMP(CRectFL),
    CORLITH_DUMP(CRectFLArray),
    CORLITH_DUMP(CStringPair),
    CORLITH_DUMP(CStringPairArray),
    CORLITH_DUMP(CStringPairArrayArray),
    CORLITH_DUMP(CStringPairSet),
    CORLITH_DUMP(CStringStringArrayPair),
    CORLITH_DUMP(CStringStringArrayPairArray),
};

#undef CORLITH_DUMP

const DumpEntry* FindEntry(const std::string& name) {
  for (const DumpEntry& entry : kDumpTable) {
    if (name == entry.name) return &entry;
  }
  return nullptr;
}

struct DumpOptions {
  bool list = false;
  std::string className;
  std::string path;
};

int RunDump(const DumpOptions& options, std::ostream& out, std::ostream& err) {
  if (options.list) {
    for (const DumpEntry& entry : kDumpTable) out << entry.name << '\n';
    return 0;
  }
  if (options.className.empty() || options.path.empty()) {
    err << "corlith dump: give CLASS and FILE, or --list\n";
    return 2;
  }
  const DumpEntry* entry = FindEntry(options.className);
  if (!entry) {
    err << "corlith dump: unknown class '" << options.className << "' (corlith dump --list names them)\n";
    return 2;
  }
  std::ifstream file(options.path, std::ios::binary);
  if (!file) {
    err << "corlith dump: cannot open " << options.path << '\n';
    return 2;
  }
  std::vector<BYTE> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  if (bytes.size() > 0xFFFFFFFFu) {
    err << "corlith dump: " << options.path << " is larger than an archive can be read here\n";
    return 2;
  }
  CMemFile memory(bytes.data(), static_cast<UINT>(bytes.size()));
  CArchive ar(&memory, CArchive::load);
  json content;
  try {
    content = entry->load(ar);
  } catch (const CArchiveException& e) {
    // Where loading stopped is what a developer needs to compare with the writer's layout.
    err << "corlith dump: " << options.path << ": " << e.what() << " (at byte offset " << ar.GetPosition()
        << ")\n";
    return 1;
  }
  // Loading may stop early without an error (a foreign version word); the bytes left
  // over show it.
  const json report = {{"class", entry->name},
                       {"size", bytes.size()},
                       {"consumed", ar.GetPosition()},
                       {"content", std::move(content)}};
  out << report.dump(2, ' ', false, json::error_handler_t::replace) << '\n';
  return 0;
}

}  // namespace

void AddDumpCommand(CLI::App& app, CommandContext& context) {
  auto options = std::make_shared<DumpOptions>();
  auto* dump = app.add_subcommand("dump", "Print an archive of a value class as JSON");
  dump->add_flag("--list", options->list, "Name the classes that can be dumped");
  dump->add_option("CLASS", options->className, "The class the archive holds, e.g. CArrayPointD");
  dump->add_option("FILE", options->path, "The archive file");
  dump->callback([options, &context] { context.exitStatus = RunDump(*options, std::cout, std::cerr); });
}

}  // namespace corlith::cli
