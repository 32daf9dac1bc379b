// The auto-save manager on real temporary folders: numbering, back-up names, pruning
// (what is left on disk after every push, and in which order files went, as the
// kernel's inotify saw it), the record list, the fallbacks of DeleteAllBackupFile, and a
// whole host cycle ending in a recovery by a fresh manager.
#include <corlith/services/AutoSave.h>
#include <corlith/test/Arrays.h>
#include <corlith/test/TempFolder.h>

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using corlith::test::TempFolder;
using Names = std::vector<std::string>;

// The names in a folder (links too, dangling or not), sorted.
Names NamesIn(const fs::path& folder) {
  Names names;
  std::error_code error;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, error)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void Touch(const TempFolder& folder, const Names& names) {
  for (const std::string& name : names) folder.Write(name, name);
}

Names Sorted(Names names) {
  std::sort(names.begin(), names.end());
  return names;
}

// The names deleted from one folder, in the order the kernel reports them.
class DeletionLog {
 public:
  explicit DeletionLog(const fs::path& folder) : m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (m_fd >= 0) inotify_add_watch(m_fd, folder.c_str(), IN_DELETE);
  }
  ~DeletionLog() {
    if (m_fd >= 0) close(m_fd);
  }
  DeletionLog(const DeletionLog&) = delete;
  DeletionLog& operator=(const DeletionLog&) = delete;

  bool Valid() const { return m_fd >= 0; }
  Names Deleted() {
    alignas(inotify_event) std::array<char, std::size_t{64} * 1024> buffer{};
    for (;;) {
      const ssize_t got = read(m_fd, buffer.data(), buffer.size());
      if (got <= 0) break;
      for (ssize_t at = 0; at < got;) {
        const auto* event = reinterpret_cast<const inotify_event*>(buffer.data() + at);
        if (event->len > 0) m_deleted.emplace_back(event->name);
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
    return m_deleted;
  }

 private:
  int m_fd;
  Names m_deleted;
};

// --- numbering and pruning -------------------------------------------------------------

struct PushRow {
  const char* name;
  Names before;           // files in the folder before the push
  int maximum;            // m_nMaxBackupCount
  const char* extension;  // the manager's extension
  const char* document;   // the document's file name (in some other folder)
  int expectedNumber;
  const char* expectedName;  // empty: Push returns null
  Names deletedInOrder;
  Names after;
};

TEST(AutoSavePush, NumbersNamesAndPrunesTheFolder) {
  const PushRow rows[] = {
      {"first push into an empty folder: number 0, the bare extension",
       {},
       1,
       ".bak",
       "Board.pcb",
       0,
       "Board.bak",
       {},
       {}},
      {"a new ID after A.bak and A.bak3: number 4, both deleted, A.bak first",
       {"A.bak3", "A.bak"},
       1,
       ".bak",
       "A.pcb",
       4,
       "A.bak4",
       {"A.bak", "A.bak3"},
       {}},
      {"maximum 3 with numbers 0, 1, 2, 5: the two smallest go",
       {"B.bak5", "B.bak1", "B.bak", "B.bak2"},
       3,
       ".bak",
       "B.pcb",
       6,
       "B.bak6",
       {"B.bak", "B.bak1"},
       {"B.bak2", "B.bak5"}},
      {"maximum 0: nothing at all", {"A.bak"}, 0, ".bak", "A.pcb", -1, "", {}, {"A.bak"}},
      {"a folder shared by two documents: the smallest goes, whoever owns it",
       {"Other.bak7", "Mine.bak2"},
       2,
       ".bak",
       "Mine.pcb",
       8,
       "Mine.bak8",
       {"Mine.bak2"},
       {"Other.bak7"}},
      {"fewer back-ups than the maximum: nothing deleted, other files never count",
       {"A.bak1", "notes.txt", "A.BAK9"},
       3,
       ".bak",
       "A.pcb",
       2,
       "A.bak2",
       {},
       {"A.BAK9", "A.bak1", "notes.txt"}},
      {"names with several dots: the title keeps its inner dots",
       {"Board.v2.final.bak3", "archive.tar.gz"},
       5,
       ".bak",
       "Board.v2.final.pcb",
       4,
       "Board.v2.final.bak4",
       {},
       {"Board.v2.final.bak3", "archive.tar.gz"}},
      {"any name holding the extension is a back-up: A.bakup has number 0 and goes first",
       {"A.bakup", "A.bak1"},
       2,
       ".bak",
       "A.pcb",
       2,
       "A.bak2",
       {"A.bakup"},
       {"A.bak1"}},
      {"a rest that is no number reads 0, a negative one counts as smallest",
       {"A.bakx", "A.bak-3", "A.bak2"},
       2,
       ".bak",
       "A.pcb",
       3,
       "A.bak3",
       {"A.bak-3", "A.bakx"},
       {"A.bak2"}},
      {"only negative numbers: the largest of them + 1, and the smallest goes first",
       {"A.bak-3", "A.bak-5"},
       1,
       ".bak",
       "A.pcb",
       -2,
       "A.bak-2",
       {"A.bak-5", "A.bak-3"},
       {}},
      {"on a tie the first listed goes: A.bak and B.bak both number 0, one of them goes",
       {"A.bak", "B.bak", "C.bak4"},
       3,
       ".bak",
       "C.pcb",
       5,
       "C.bak5",
       {"?"},
       {}},
      {"an extension of several dots: its number is never read (the last dot cuts it)",
       {"Doc.my.bak7"},
       5,
       ".my.bak",
       "Doc.txt",
       1,
       "Doc.my.bak1",
       {},
       {"Doc.my.bak7"}},
      {"another extension: .bak files are not back-ups",
       {"A.bak5", "A.sav2"},
       1,
       ".sav",
       "A.pcb",
       3,
       "A.sav3",
       {"A.sav2"},
       {"A.bak5"}},
      {"a document without an extension", {}, 1, ".bak", "README", 0, "README.bak", {}, {}},
  };
  for (const PushRow& row : rows) {
    SCOPED_TRACE(row.name);
    const TempFolder folder("autosave");
    Touch(folder, row.before);
    DeletionLog log(folder.Path());
    ASSERT_TRUE(log.Valid());
    CStringArray listed;  // the system's listing order, which decides ties
    CAutoSaveManager().GetBackupFileNames(CString(folder.Path().string()), listed);
    CAutoSaveManager manager;
    manager.m_nMaxBackupCount = row.maximum;
    manager.SetExtName(row.extension);

    const std::string document = std::string("/elsewhere/work.d/") + row.document;
    CAutoSaveItem* item = manager.Push(CString(folder.Path().string()), CString(document), "id-1");

    if (*row.expectedName == '\0') {
      EXPECT_EQ(item, nullptr);
      EXPECT_TRUE(manager.IsEmpty());
    } else {
      ASSERT_NE(item, nullptr);
      EXPECT_EQ(manager.GetLastElement(), item);
      EXPECT_EQ(item->m_nBackupNumber, row.expectedNumber);
      EXPECT_EQ(item->m_strExtension, CString(row.extension));
      EXPECT_EQ(item->GetBackFullFileName().str(), folder.PathOf(row.expectedName));
      EXPECT_FALSE(item->m_bSaved);
    }
    const Names deleted = log.Deleted();
    if (row.deletedInOrder == Names{"?"}) {
      std::string firstZero;
      for (const CString& path : listed) {
        const std::string name = fs::path(path.str()).filename().string();
        if (firstZero.empty() && (name == "A.bak" || name == "B.bak")) firstZero = name;
      }
      EXPECT_EQ(deleted, Names{firstZero});
      EXPECT_EQ(NamesIn(folder.Path()).size(), 2U);
    } else {
      EXPECT_EQ(deleted, row.deletedInOrder);
      EXPECT_EQ(NamesIn(folder.Path()), Sorted(row.after));
    }
  }
}

// Each row is a sequence of pushes into one folder (maximum 10, nothing pruned), and
// after each push the host writes the back-up or not.
struct SequenceStep {
  const char* id;
  bool write;
  int expectedNumber;
};

struct SequenceRow {
  const char* name;
  std::vector<SequenceStep> steps;
};

TEST(AutoSavePush, NumbersFromTheNewestRecordOfTheIdAboveIndexZeroElseFromTheFolder) {
  const SequenceRow rows[] = {
      {"the same ID again: index 0 is never looked at, so the folder's largest is used",
       {{"A", true, 0}, {"A", true, 1}, {"A", true, 2}}},
      {"a record of the ID above index 0 wins over the folder",
       {{"A", true, 0}, {"B", false, 1}, {"B", false, 2}, {"B", false, 3}}},
      {"the newest record of the ID counts, not the folder's largest",
       {{"X", false, 0}, {"A", true, 0}, {"B", true, 1}, {"A", false, 1}, {"A", false, 2}}},
      {"an ID held only at index 0 is not found: the folder decides",
       {{"A", true, 0}, {"B", true, 1}, {"A", true, 2}, {"B", false, 2}}},
      {"IDs compare case-sensitively", {{"X", true, 0}, {"a", false, 1}, {"A", false, 1}}},
  };
  for (const SequenceRow& row : rows) {
    SCOPED_TRACE(row.name);
    const TempFolder folder("autosave");
    CAutoSaveManager manager;
    manager.m_nMaxBackupCount = 10;
    const CString path(folder.Path().string());
    int index = 0;
    for (const SequenceStep& step : row.steps) {
      SCOPED_TRACE("push " + std::to_string(index++) + " of " + step.id);
      CAutoSaveItem* item = manager.Push(path, CString(std::string("/docs/") + step.id + ".pcb"), step.id);
      ASSERT_NE(item, nullptr);
      EXPECT_EQ(item->m_nBackupNumber, step.expectedNumber);
      if (step.write) corlith::test::WriteFile(item->GetBackFullFileName().str(), "doc");
    }
  }
}

TEST(AutoSavePush, AListedFileThatNoLongerExistsIsSkippedAndUsesItsTurn) {
  // A dangling link is listed as a file but fails the existence test: the state of a
  // back-up deleted by someone else between the listing and the deletion.
  const TempFolder folder("autosave");
  fs::create_symlink(folder.Path() / "gone", folder.Path() / "A.bak");
  Touch(folder, {"A.bak1", "A.bak2", "A.bak3"});
  DeletionLog log(folder.Path());
  CAutoSaveManager manager;
  manager.m_nMaxBackupCount = 3;

  CAutoSaveItem* item = manager.Push(CString(folder.Path().string()), "A.pcb", "id");

  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->m_nBackupNumber, 4);
  // n = 4, m = 3: two turns, the first one spent on the vanished A.bak.
  EXPECT_EQ(log.Deleted(), Names{"A.bak1"});
  EXPECT_EQ(NamesIn(folder.Path()), (Names{"A.bak", "A.bak2", "A.bak3"}));
}

TEST(AutoSavePush, AFolderThatDoesNotExistHasNoBackupsAndIsNotCreated) {
  const TempFolder root("autosave");
  const CString missing((root.Path() / "no" / "such").string());
  CAutoSaveManager manager;
  CStringArray names;
  names.Add("stale");

  CAutoSaveItem* item = manager.Push(missing, "/docs/A.pcb", "id");
  ASSERT_NE(item, nullptr);
  EXPECT_EQ(item->m_nBackupNumber, 0);
  EXPECT_EQ(manager.GetBackupFileNames(missing, names), 0);
  EXPECT_EQ(names.GetSize(), 0);
  EXPECT_EQ(manager.GetBackupFileNameMaxIndexNumber(missing), -1);
  EXPECT_TRUE(manager.FindBackupFileNameMinNumber(missing).IsEmpty());
  manager.DeleteBackupFile(missing);
  manager.DeleteAllBackupFile(missing);
  EXPECT_FALSE(fs::exists(root.Path() / "no"));
}

// --- the folder scans ----------------------------------------------------------------

TEST(AutoSaveFolder, ReadsTheNumberOfABackupFromWhatIsLeftOfItsExtension) {
  struct Row {
    const char* extension;
    const char* path;
    int number;
  };
  const Row rows[] = {
      {".bak", "/b/Board.bak", 0},
      {".bak", "/b/Board.bak12", 12},
      {".bak", "/b/Board.bak2x", 2},
      {".bak", "/b/Board.bakx2", 0},
      {".bak", "/b/Board.bakbak3", 3},
      {".bak", "/b/Board.bak-4", -4},
      {".bak", "/b/Board.bak 7", 7},
      {".bak", "/b/Board", 0},
      {".bak", "/b.bak/Board", 0},
      {".bak", "C:\\b\\x.bak9", 9},
      {".bak", "/b/x.bak99999999999", 2147483647},
      {".sav", "/b/x.sav3", 3},
      {".tar.bak", "/b/x.tar.bak5", 0},
      {".", "/b/x.17", 17},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(std::string(row.extension) + " " + row.path);
    CAutoSaveManager manager;
    manager.SetExtName(row.extension);
    EXPECT_EQ(manager.GetBackupNumber(row.path), row.number);
  }
}

TEST(AutoSaveFolder, ScansListOnlyFilesHoldingTheExtensionOneLevelDeep) {
  const TempFolder folder("autosave");
  Touch(folder, {"A.bak3", "A.bak", "B.bak10", "notes.txt", "Upper.BAK2"});
  fs::create_directories(folder.Path() / "sub");
  folder.Write("sub/Deep.bak50", "x");
  fs::create_directories(folder.Path() / "folder.bak60");
  folder.Write("folder.bak60/readme.txt", "r");
  const CString path(folder.Path().string());
  CAutoSaveManager manager;

  CStringArray names;
  EXPECT_EQ(manager.GetBackupFileNames(path, names), 3);
  EXPECT_EQ(Sorted(corlith::test::ToStrings(names)),
            (Names{folder.PathOf("A.bak"), folder.PathOf("A.bak3"), folder.PathOf("B.bak10")}));
  EXPECT_EQ(manager.GetBackupFileNameMaxIndexNumber(path), 10);
  EXPECT_EQ(manager.FindBackupFileNameMinNumber(path).str(), folder.PathOf("A.bak"));

  manager.DeleteBackupFile(path);
  EXPECT_EQ(NamesIn(folder.Path()),
            (Names{"A.bak3", "B.bak10", "Upper.BAK2", "folder.bak60", "notes.txt", "sub"}));
  manager.DeleteBackupFile(path);
  EXPECT_EQ(manager.FindBackupFileNameMinNumber(path).str(), folder.PathOf("B.bak10"));
  // A folder given with a closing separator or with backslashes lists the same files.
  EXPECT_EQ(manager.GetBackupFileNames(CString(folder.Path().string() + "/"), names), 1);
  std::string backslashed = folder.Path().string();
  std::replace(backslashed.begin(), backslashed.end(), '/', '\\');
  EXPECT_EQ(manager.GetBackupFileNames(CString(backslashed), names), 1);
  EXPECT_EQ(corlith::test::ToStrings(names), Names{folder.PathOf("B.bak10")});
  // Inside a folder whose name holds the extension every file is a back-up (number 0).
  const CString inner(folder.PathOf("folder.bak60"));
  EXPECT_EQ(manager.GetBackupFileNames(inner, names), 1);
  EXPECT_EQ(manager.GetBackupFileNameMaxIndexNumber(inner), 0);
}

TEST(AutoSaveFolder, TheLargestNumberIsTakenFromTheBackupsThemselvesElseMinusOne) {
  const struct {
    const char* name;
    Names files;
    int expected;
  } rows[] = {
      {"an empty folder", {}, -1},
      {"no back-up among the files", {"notes.txt", "A.BAK4"}, -1},
      {"numbers 0 and 12", {"A.bak", "B.bak12"}, 12},
      {"only negative numbers: the largest of them", {"A.bak-3", "A.bak-5"}, -3},
      {"a negative number beside number 0", {"A.bak-2", "A.bak"}, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const TempFolder folder("autosave");
    Touch(folder, row.files);
    EXPECT_EQ(CAutoSaveManager().GetBackupFileNameMaxIndexNumber(CString(folder.Path().string())),
              row.expected);
  }
}

// --- the records ---------------------------------------------------------------------

TEST(AutoSaveRecords, PopHandsTheNewestRecordToTheCallerAndTheListKeepsPushOrder) {
  const TempFolder root("autosave");
  const CString missing((root.Path() / "none").string());  // no disk work
  CAutoSaveManager manager;
  EXPECT_FALSE(manager.Pop());
  EXPECT_TRUE(manager.GetSavePathFromLastItem().IsEmpty());
  EXPECT_EQ(manager.GetUnsavedItem(), nullptr);

  CAutoSaveItem* a = manager.Push(missing, "a.pcb", "A");
  CAutoSaveItem* b = manager.Push(CString(root.Path().string()), "b.pcb", "B");
  CAutoSaveItem* a2 = manager.Push(missing, "a.pcb", "A");
  EXPECT_EQ(corlith::test::ToVector(manager), (std::vector<CAutoSaveItem*>{a, b, a2}));
  EXPECT_EQ(manager.GetSavePathFromLastItem(), missing);
  EXPECT_EQ(manager.GetUnsavedItem(), a);
  a->m_bSaved = true;
  EXPECT_EQ(manager.GetUnsavedItem(), b);
  EXPECT_EQ(manager.FindByUniqueIDLast("A"), a2);
  EXPECT_EQ(manager.FindByUniqueIDLast("B"), b);
  EXPECT_EQ(manager.FindByUniqueIDLast("a"), nullptr);

  std::unique_ptr<CAutoSaveItem> popped = manager.Pop();
  EXPECT_EQ(popped.get(), a2);
  EXPECT_EQ(popped->m_strUniqueID, CString("A"));  // the caller owns a live record
  EXPECT_EQ(manager.GetSize(), 2);
  EXPECT_EQ(manager.GetSavePathFromLastItem().str(), root.Path().string());
  // Only index 0 holds A now: not found.
  EXPECT_EQ(manager.FindByUniqueIDLast("A"), nullptr);

  CAutoSaveItem* a3 = manager.Push(missing, "a.pcb", "A");
  manager.DeleteByUniqueID("A");
  EXPECT_EQ(corlith::test::ToVector(manager), (std::vector<CAutoSaveItem*>{b}));
  static_cast<void>(a3);
  manager.DeleteByUniqueID("nobody");
  EXPECT_EQ(manager.GetSize(), 1);
}

TEST(AutoSaveRecords, ClearDestroysTheRecordsAndRestoresEverySetting) {
  CAutoSaveManager manager;
  manager.SetEnabled(true);
  manager.m_nMaxBackupCount = 7;
  manager.SetIntervalTimeMin(2);
  EXPECT_EQ(manager.GetIntervalTime(), 120000);
  manager.SetExtName(".sav");
  manager.Push("/nonexistent/folder", "x.pcb", "X");

  manager.Clear();
  EXPECT_TRUE(manager.IsEmpty());
  EXPECT_FALSE(manager.GetEnabled());
  EXPECT_EQ(manager.m_nMaxBackupCount, 1);
  EXPECT_EQ(manager.GetIntervalTime(), 300000);
  EXPECT_EQ(manager.GetExtName(), CString(".bak"));

  const CAutoSaveItem fresh;
  EXPECT_EQ(fresh.m_strExtension, CString(".bak"));
  EXPECT_EQ(fresh.m_nBackupNumber, 0);
  EXPECT_FALSE(fresh.m_bSaved);
}

// --- DeleteAllBackupFile ---------------------------------------------------------------

TEST(AutoSaveDeleteAll, UsesTheGivenFolderElseTheNewestRecordsElseDoesNothing) {
  struct Row {
    const char* name;
    bool giveFirst;     // pass the first folder (else an empty text)
    int records;        // 0, or 2: the first into folder 1, the newest into folder 2
    Names leftInFirst;  // each folder starts with X.bak1 and X.bak2 and a note
    Names leftInSecond;
  };
  const Row rows[] = {
      {"empty text, no record: nothing happens",
       false,
       0,
       {"X.bak1", "X.bak2", "note.txt"},
       {"X.bak1", "X.bak2", "note.txt"}},
      {"empty text: the newest record's folder", false, 2, {"X.bak1", "X.bak2", "note.txt"}, {"note.txt"}},
      {"a folder given: that one", true, 2, {"note.txt"}, {"X.bak1", "X.bak2", "note.txt"}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const TempFolder first("autosave");
    const TempFolder second("autosave");
    // The current folder holds back-ups too: an empty folder must not mean this one.
    const TempFolder current("autosave");
    for (const TempFolder* folder : {&first, &second, &current})
      Touch(*folder, {"X.bak1", "X.bak2", "note.txt"});
    const fs::path previous = fs::current_path();
    fs::current_path(current.Path());

    CAutoSaveManager manager;
    manager.m_nMaxBackupCount = 10;
    if (row.records == 2) {
      manager.Push(CString(first.Path().string()), "Y.pcb", "Y");
      manager.Push(CString(second.Path().string()), "Z.pcb", "Z");
    }
    manager.DeleteAllBackupFile(row.giveFirst ? CString(first.Path().string()) : CString());
    fs::current_path(previous);

    EXPECT_EQ(NamesIn(first.Path()), row.leftInFirst);
    EXPECT_EQ(NamesIn(second.Path()), row.leftInSecond);
    EXPECT_EQ(NamesIn(current.Path()), (Names{"X.bak1", "X.bak2", "note.txt"}));
    EXPECT_EQ(manager.GetSize(), row.records);  // the records stay
  }
}

// --- a whole host cycle ----------------------------------------------------------------

TEST(AutoSaveHostCycle, BackupsAreWrittenClosedAndTheNewestIsRecoveredByAFreshManager) {
  const TempFolder backups("autosave");
  const TempFolder closing("autosave");
  const CString folder(backups.Path().string());
  {
    CAutoSaveManager manager;
    manager.SetEnabled(true);
    manager.m_nMaxBackupCount = 3;

    // A document that closes normally, in a folder of its own.
    CAutoSaveItem* report = manager.Push(CString(closing.Path().string()), "/docs/Report.pcb", "doc-report");
    ASSERT_NE(report, nullptr);
    corlith::test::WriteFile(report->GetBackFullFileName().str(), "report v1");
    report->m_bSaved = true;

    // The board: three intervals, three versions.
    for (const char* version : {"board v1", "board v2", "board v3"}) {
      SCOPED_TRACE(version);
      CAutoSaveItem* item = manager.Push(folder, "/docs/Board.pcb", "doc-board");
      ASSERT_NE(item, nullptr);
      EXPECT_EQ(manager.GetUnsavedItem(), item);
      ASSERT_TRUE(corlith::test::WriteFile(item->GetBackFullFileName().str(), version));
      item->m_bSaved = true;
      EXPECT_EQ(manager.GetUnsavedItem(), nullptr);
    }
    EXPECT_EQ(NamesIn(backups.Path()), (Names{"Board.bak", "Board.bak1", "Board.bak2"}));

    // The report is saved and closed: its records and back-ups go.
    manager.DeleteByUniqueID("doc-report");
    manager.DeleteAllBackupFile(CString(closing.Path().string()));
    EXPECT_EQ(NamesIn(closing.Path()), Names{});
    EXPECT_EQ(manager.FindByUniqueIDLast("doc-board")->m_nBackupNumber, 2);
    // The host dies here with the board unsaved: the manager goes, the files stay.
  }
  CAutoSaveManager recovery;
  CStringArray names;
  ASSERT_EQ(recovery.GetBackupFileNames(folder, names), 3);
  const int newest = recovery.GetBackupFileNameMaxIndexNumber(folder);
  EXPECT_EQ(newest, 2);
  CString newestPath;
  for (const CString& name : names) {
    if (recovery.GetBackupNumber(name) == newest) newestPath = name;
  }
  EXPECT_EQ(corlith::test::ReadFile(newestPath.str()), "board v3");

  // After the recovered document is saved, the host clears the folder.
  recovery.DeleteAllBackupFile(folder);
  EXPECT_EQ(NamesIn(backups.Path()), Names{});
}

}  // namespace
