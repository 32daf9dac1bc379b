// Host prompts: the headless default must answer what a person pressing Enter would
// (the style's default button), the recording prompt must see exactly what the
// library asked, and installing a prompt for a scope must restore the previous one.
#include <corlith/framework/Exceptions.h>
#include <corlith/framework/HostPrompt.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using corlith::FileChooserRequest;
using corlith::HeadlessHostPrompt;
using corlith::RecordingHostPrompt;
using corlith::ScopedHostPrompt;

struct StyleRow {
  const char* style;
  UINT type;
  int answer;
};

const StyleRow kStyles[] = {
    {"MB_OK", MB_OK, IDOK},
    {"MB_OK|DEF2", MB_OK | MB_DEFBUTTON2, IDOK},
    {"MB_OKCANCEL", MB_OKCANCEL, IDOK},
    {"MB_OKCANCEL|DEF2", MB_OKCANCEL | MB_DEFBUTTON2, IDCANCEL},
    {"MB_YESNO", MB_YESNO, IDYES},
    {"MB_YESNO|DEF2", MB_YESNO | MB_DEFBUTTON2, IDNO},
    {"MB_YESNO|DEF3", MB_YESNO | MB_DEFBUTTON3, IDYES},
    {"MB_YESNO|ICONQUESTION|DEF2", MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2, IDNO},
    {"MB_YESNOCANCEL|DEF3", MB_YESNOCANCEL | MB_DEFBUTTON3, IDCANCEL},
    {"MB_ABORTRETRYIGNORE", MB_ABORTRETRYIGNORE, IDABORT},
    {"MB_ABORTRETRYIGNORE|DEF2", MB_ABORTRETRYIGNORE | MB_DEFBUTTON2, IDRETRY},
    {"MB_RETRYCANCEL|DEF2", MB_RETRYCANCEL | MB_DEFBUTTON2, IDCANCEL},
    {"MB_RETRYCANCEL|DEF3", MB_RETRYCANCEL | MB_DEFBUTTON3, IDRETRY},
    {"MB_YESNOCANCEL|fourth", MB_YESNOCANCEL | 0x300, IDYES},
};

TEST(HeadlessPrompt, AnswersTheDefaultButtonOfEachStyle) {
  HeadlessHostPrompt headless;
  // Null installs the headless default.
  ScopedHostPrompt scope(nullptr);
  for (const StyleRow& row : kStyles) {
    SCOPED_TRACE(row.style);
    EXPECT_EQ(corlith::DefaultAnswer(row.type), row.answer);
    EXPECT_EQ(headless.MessageBox("text", "caption", row.type), row.answer);
    EXPECT_EQ(AfxMessageBox("text", row.type), row.answer);
  }
}

TEST(HeadlessPrompt, ChoosersAreCancelled) {
  HeadlessHostPrompt headless;
  FileChooserRequest request;
  request.filter = "Boards|*.brd||";
  EXPECT_EQ(headless.ChooseFiles(request), std::nullopt);
  EXPECT_EQ(headless.ChooseFolder({"Pick", "/tmp"}), std::nullopt);
}

TEST(RecordingPrompt, RecordsExactTextsAndAnswersFromItsQueue) {
  auto recording = std::make_shared<RecordingHostPrompt>();
  ScopedHostPrompt scope(recording);
  recording->QueueAnswer(IDNO);
  EXPECT_EQ(AfxMessageBox("Save changes to \"a.brd\"?", MB_YESNOCANCEL | MB_ICONQUESTION), IDNO);
  // Queue empty: the default button.
  EXPECT_EQ(AfxMessageBox("Done.", MB_OKCANCEL | MB_DEFBUTTON2), IDCANCEL);
  EXPECT_EQ(AfxMessageBox(nullptr), IDOK);

  const auto messages = recording->Messages();
  ASSERT_EQ(messages.size(), 3u);
  EXPECT_EQ(messages[0].text, "Save changes to \"a.brd\"?");
  EXPECT_EQ(messages[0].type, MB_YESNOCANCEL | MB_ICONQUESTION);
  EXPECT_FALSE(messages[0].caption.empty());
  EXPECT_EQ(messages[1].text, "Done.");
  EXPECT_EQ(messages[2].text, "");

  FileChooserRequest request;
  request.title = "Open board";
  request.filter = "Boards|*.brd;*.pcb|All|*.*||";
  request.multiSelect = true;
  recording->QueueFiles(std::vector<std::string>{"/a/x.brd", "/a/y.pcb"});
  recording->QueueFiles(std::nullopt);
  recording->QueueFiles(std::vector<std::string>{"/b/z.brd"});
  EXPECT_EQ(recording->ChooseFiles(request), (std::vector<std::string>{"/a/x.brd", "/a/y.pcb"}));
  EXPECT_EQ(recording->ChooseFiles(request), std::nullopt);
  EXPECT_EQ(recording->ChooseFiles(request), (std::vector<std::string>{"/b/z.brd"}));
  EXPECT_EQ(recording->ChooseFiles(request), std::nullopt);
  const auto requests = recording->FileRequests();
  ASSERT_EQ(requests.size(), 4u);
  EXPECT_EQ(requests[0].title, "Open board");
  EXPECT_EQ(requests[0].filter, "Boards|*.brd;*.pcb|All|*.*||");
  EXPECT_TRUE(requests[0].multiSelect);

  recording->QueueFolder(std::string("/out"));
  EXPECT_EQ(recording->ChooseFolder({"Output folder", "/", BIF_EDITBOX}), std::string("/out"));
  EXPECT_EQ(recording->ChooseFolder({"Again", "/"}), std::nullopt);
  const auto folders = recording->FolderRequests();
  ASSERT_EQ(folders.size(), 2u);
  EXPECT_EQ(folders[0].title, "Output folder");
  EXPECT_EQ(folders[0].flags, BIF_EDITBOX);
  EXPECT_EQ(folders[1].title, "Again");
}

TEST(RecordingPrompt, EachQueuedAnswerIsUsedOnceAcrossThreads) {
  RecordingHostPrompt recording;
  constexpr int kThreads = 8;
  constexpr int kEach = 2000;
  for (int i = 0; i < kThreads * kEach / 2; ++i) recording.QueueAnswer(IDNO);
  std::vector<int> noCounts(kThreads, 0);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&recording, &noCounts, t] {
      const std::string text = "thread " + std::to_string(t);
      for (int i = 0; i < kEach; ++i) {
        if (recording.MessageBox(text, "caption", MB_YESNO) == IDNO) ++noCounts[t];
      }
    });
  }
  for (auto& thread : threads) thread.join();
  int totalNo = 0;
  for (int n : noCounts) totalNo += n;
  EXPECT_EQ(totalNo, kThreads * kEach / 2);
  const auto messages = recording.Messages();
  ASSERT_EQ(messages.size(), static_cast<std::size_t>(kThreads * kEach));
  std::vector<int> perThread(kThreads, 0);
  for (const auto& message : messages) {
    ASSERT_EQ(message.text.rfind("thread ", 0), 0u) << message.text;
    ++perThread[std::stoi(message.text.substr(7))];
  }
  EXPECT_EQ(perThread, std::vector<int>(kThreads, kEach));
}

TEST(ScopedPrompt, RestoresThePreviousPrompt) {
  auto outer = std::make_shared<RecordingHostPrompt>();
  auto inner = std::make_shared<RecordingHostPrompt>();
  {
    ScopedHostPrompt outerScope(outer);
    {
      ScopedHostPrompt innerScope(inner);
      EXPECT_EQ(corlith::GetHostPrompt(), inner);
      AfxMessageBox("to inner");
    }
    EXPECT_EQ(corlith::GetHostPrompt(), outer);
    AfxMessageBox("to outer");
  }
  EXPECT_NE(corlith::GetHostPrompt(), outer);
  EXPECT_NE(corlith::GetHostPrompt(), nullptr);
  ASSERT_EQ(inner->Messages().size(), 1u);
  EXPECT_EQ(inner->Messages()[0].text, "to inner");
  ASSERT_EQ(outer->Messages().size(), 1u);
  EXPECT_EQ(outer->Messages()[0].text, "to outer");
}

TEST(ScopedPrompt, ReportErrorShowsTheExceptionMessageThroughThePrompt) {
  auto recording = std::make_shared<RecordingHostPrompt>();
  ScopedHostPrompt scope(recording);
  recording->QueueAnswer(IDRETRY);
  try {
    AfxThrowInvalidArgException();
  } catch (CException& e) {
    EXPECT_EQ(e.ReportError(MB_RETRYCANCEL | MB_ICONERROR), IDRETRY);
  }
  const auto messages = recording->Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].text, "Encountered an improper argument.");
  EXPECT_EQ(messages[0].text, CInvalidArgException().what());
  EXPECT_EQ(messages[0].type, MB_RETRYCANCEL | MB_ICONERROR);
}

}  // namespace
