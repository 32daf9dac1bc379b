// KTUtility's choosers and missing-file message as the host prompt receives them: the
// exact filter strings, flags, default names, initial folders and filter index, and
// what the person's answer (or cancelling) gives back.
#include <corlith/environment/Utility.h>
#include <corlith/framework/HostPrompt.h>
#include <corlith/test/Arrays.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using corlith::FileChooserRequest;
using corlith::RecordingHostPrompt;
using corlith::ScopedHostPrompt;
using corlith::test::ArrayOf;

KTUtility& Utility() { return *KTUtility::GetInstance(); }

struct ChooserRow {
  const char* name;
  std::function<CString()> ask;
  bool open;
  std::string filter;
  std::string defaultExtension;
  DWORD flags;
  int filterIndex;
};

TEST(FileChoosers, SingleChoiceRequestsCarryTheExactFilterAndFlags) {
  const auto gerberDrill = ArrayOf<CStringArray>({"gbr", "drl"});
  const std::vector<ChooserRow> rows = {
      {"one extension, open",
       [] { return Utility().GetFilePathFromUser(TRUE, "Text", "txt", "a.txt", "/init"); }, true,
       "Text (*.txt)|*.txt|All Files(*.*)|*.*||", "txt", 0x6, 0},
      {"one extension, save",
       [] { return Utility().GetFilePathFromUser(FALSE, "Board", "brd", "a.txt", "/init"); }, false,
       "Board (*.brd)|*.brd|All Files(*.*)|*.*||", "brd", 0x6, 0},
      // Descriptions are arguments, never formats: a percent sign stays as it is.
      {"percent in the description",
       [] { return Utility().GetFilePathFromUser(TRUE, "50%d %s", "txt", "a.txt", "/init"); }, true,
       "50%d %s (*.txt)|*.txt|All Files(*.*)|*.*||", "txt", 0x6, 0},
      {"extension list",
       [&] { return Utility().GetFilePathFromUser(TRUE, "Gerber", gerberDrill, "a.txt", "/init"); }, true,
       "Gerber (*.gbr, *.drl)|*.gbr;*.drl|All Files(*.*)|*.*||", "gbr", 0x6, 0},
      {"description list",
       [&] {
         return Utility().GetFilePathFromUser(TRUE, ArrayOf<CStringArray>({"Gerber", "Drill"}), gerberDrill,
                                              "a.txt", "/init", nullptr, 2);
       },
       true, "Gerber (*.gbr)|*.gbr|Drill (*.drl)|*.drl|All Files(*.*)|*.*||", "gbr", 0x6, 2},
      {"description list, own flags, extra description",
       [&] {
         return Utility().GetFilePathFromUser(FALSE, ArrayOf<CStringArray>({"Gerber", "Drill", "Unpaired"}),
                                              gerberDrill, "a.txt", "/init", nullptr, 1, 0x200206);
       },
       false, "Gerber (*.gbr)|*.gbr|Drill (*.drl)|*.drl|All Files(*.*)|*.*||", "gbr", 0x200206, 1},
      {"empty lists",
       [] {
         return Utility().GetFilePathFromUser(TRUE, CStringArray(), CStringArray(), "a.txt", "/init", nullptr,
                                              0);
       },
       true, "All Files(*.*)|*.*||", "", 0x6, 0},
  };
  for (const ChooserRow& row : rows) {
    SCOPED_TRACE(row.name);
    auto prompt = std::make_shared<RecordingHostPrompt>();
    const ScopedHostPrompt scope(prompt);
    prompt->QueueFiles(std::vector<std::string>{"/chosen/one.txt", "/chosen/two.txt"});
    EXPECT_EQ(row.ask().str(), "/chosen/one.txt");
    EXPECT_EQ(row.ask().str(), "") << "cancelled";

    const std::vector<FileChooserRequest> requests = prompt->FileRequests();
    ASSERT_EQ(requests.size(), 2u);
    const FileChooserRequest& request = requests[0];
    EXPECT_EQ(request.open, row.open);
    EXPECT_EQ(request.filter, row.filter);
    EXPECT_EQ(request.flags, row.flags);
    EXPECT_EQ(request.multiSelect, (row.flags & OFN_ALLOWMULTISELECT) != 0);
    EXPECT_EQ(request.filterIndex, row.filterIndex);
    EXPECT_EQ(request.fileName, "a.txt");
    EXPECT_EQ(request.initialFolder, "/init");
    EXPECT_EQ(request.defaultExtension, row.defaultExtension);
    EXPECT_EQ(request.title, "");
  }
}

TEST(FileChoosers, MultipleChoiceAppendsEverySelectedPath) {
  struct Row {
    const char* name;
    std::function<void(CStringArray&)> ask;
    std::string filter;
  };
  const std::vector<Row> rows = {
      {"one extension",
       [](CStringArray& list) { Utility().GetFilePathListFromUser(list, "Text", "txt", "a.txt", "/init"); },
       "Text (*.txt)|*.txt|All Files(*.*)|*.*||"},
      {"extension list",
       [](CStringArray& list) {
         Utility().GetFilePathListFromUser(list, "Gerber", ArrayOf<CStringArray>({"gbr", "drl", "gko"}),
                                           "a.txt", "/init");
       },
       "Gerber (*.gbr, *.drl, *.gko)|*.gbr;*.drl;*.gko|All Files(*.*)|*.*||"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    auto prompt = std::make_shared<RecordingHostPrompt>();
    const ScopedHostPrompt scope(prompt);
    prompt->QueueFiles(std::vector<std::string>{"/c/1.txt", "/c/2.txt", "/c/3 three.txt"});
    prompt->QueueFiles(std::nullopt);
    CStringArray list;
    list.Add("kept");
    row.ask(list);
    row.ask(list);
    EXPECT_EQ(corlith::test::ToStrings(list),
              (std::vector<std::string>{"kept", "/c/1.txt", "/c/2.txt", "/c/3 three.txt"}));

    const std::vector<FileChooserRequest> requests = prompt->FileRequests();
    ASSERT_EQ(requests.size(), 2u);
    EXPECT_TRUE(requests[0].open);
    EXPECT_TRUE(requests[0].multiSelect);
    EXPECT_EQ(requests[0].flags, 0x200206u);
    EXPECT_EQ(requests[0].filter, row.filter);
    EXPECT_EQ(requests[0].fileName, "a.txt");
    EXPECT_EQ(requests[0].initialFolder, "/init");
  }
}

TEST(FolderChooser, AsksWithTheTitleTheInitialFolderAndFlags0x75) {
  auto prompt = std::make_shared<RecordingHostPrompt>();
  const ScopedHostPrompt scope(prompt);
  prompt->QueueFolder(std::string("/chosen/folder"));
  int owner = 0;
  EXPECT_EQ(Utility().GetDirectoryFromUser("Pick the output folder", "/start here", &owner).str(),
            "/chosen/folder");
  EXPECT_EQ(Utility().GetDirectoryFromUser("Again", "").str(), "") << "cancelled";

  const auto requests = prompt->FolderRequests();
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[0].title, "Pick the output folder");
  EXPECT_EQ(requests[0].initialFolder, "/start here");
  EXPECT_EQ(requests[0].flags, 0x75u);
  EXPECT_EQ(requests[0].owner, &owner);
  EXPECT_EQ(requests[1].owner, nullptr);
}

TEST(MissingFileMessage, ExactTextCaptionAndButton) {
  const std::vector<std::pair<const char*, const char*>> rows = {
      {"/data/board.brd", "Cannot find \"/data/board.brd\" file."},
      {"C:\\100%s %d.txt", "Cannot find \"C:\\100%s %d.txt\" file."},
      {"", "Cannot find \"\" file."},
  };
  for (const auto& [path, text] : rows) {
    SCOPED_TRACE(path);
    auto prompt = std::make_shared<RecordingHostPrompt>();
    const ScopedHostPrompt scope(prompt);
    prompt->QueueAnswer(IDCANCEL);
    EXPECT_EQ(Utility().MB_CannotFindFile(path), IDCANCEL) << "the box's answer is returned";
    const auto messages = prompt->Messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, text);
    EXPECT_EQ(messages[0].caption, "Error");
    EXPECT_EQ(messages[0].type, MB_OK);
  }
}

}  // namespace
