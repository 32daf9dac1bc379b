// The input-event manager as state tables: each row runs a sequence of calls on a
// manager whose tools log their handler calls and their destruction, and states the
// current tool, the stack depth, the flag and the desktop hooks called afterwards.
// Copies of a manager are destroyed in either order (the AddressSanitizer build catches
// a tool destroyed twice or used after its destruction).
#include <corlith/framework/DesktopHooks.h>
#include <corlith/services/InputEvent.h>

#include <gtest/gtest.h>

#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

namespace {

using corlith::DesktopCall;
using Log = std::vector<std::string>;
using Calls = std::vector<DesktopCall>;

constexpr DesktopCall kArrow = DesktopCall::SetArrowCursor;
constexpr DesktopCall kRelease = DesktopCall::ReleaseMouseCapture;

// A tool that logs "<name>:<handler>" for each handler call, "<name>:cursor" for its
// cursor and "~<name>" when destroyed, and counts its handler calls.
class CountingTool : public CIE__Base {
 public:
  CountingTool(std::string name, Log& log) : m_name(std::move(name)), m_log(log) {}
  ~CountingTool() override { m_log.push_back("~" + m_name); }
  CountingTool(const CountingTool&) = delete;
  CountingTool& operator=(const CountingTool&) = delete;

  CString GetInputEventName() const override { return CString(m_name); }
  void SetCursor() const override { m_log.push_back(m_name + ":cursor"); }
  void OnLButtonDown(UINT f, CPoint& p) override { Mouse("ldown", f, p); }
  void OnRButtonDown(UINT f, CPoint& p) override { Mouse("rdown", f, p); }
  void OnMButtonDown(UINT f, CPoint& p) override { Mouse("mdown", f, p); }
  void OnMouseMove(UINT f, CPoint& p) override { Mouse("move", f, p); }
  void OnLButtonUp(UINT f, CPoint& p) override { Mouse("lup", f, p); }
  void OnRButtonUp(UINT f, CPoint& p) override { Mouse("rup", f, p); }
  void OnKeyDown(UINT c, UINT r, UINT f) override { Key("key", c, r, f); }
  void OnChar(UINT c, UINT r, UINT f) override { Key("char", c, r, f); }

  int Count(const std::string& handler) const {
    const auto found = m_counts.find(handler);
    return found == m_counts.end() ? 0 : found->second;
  }
  /// The arguments of the last handler call, as "handler a b c".
  const std::string& Last() const { return m_last; }

 private:
  void Mouse(const char* handler, UINT flags, CPoint& point) {
    Record(handler, flags, static_cast<UINT>(point.x), static_cast<UINT>(point.y));
    point.x += 1000;  // a tool may move the point: the view sees it
  }
  void Key(const char* handler, UINT c, UINT r, UINT f) { Record(handler, c, r, f); }
  void Record(const char* handler, UINT a, UINT b, UINT c) {
    m_log.push_back(m_name + ":" + handler);
    ++m_counts[handler];
    std::ostringstream out;
    out << handler << ' ' << a << ' ' << b << ' ' << c;
    m_last = out.str();
  }

  std::string m_name;
  Log& m_log;
  std::map<std::string, int> m_counts;
  std::string m_last;
};

// The manager with its internal members reachable.
class TestManager : public CInputEventManager {
 public:
  using CInputEventManager::PopInputEvent;
  using CInputEventManager::PushInputEvent;
};

std::string CurrentName(const CInputEventManager& manager) {
  const CIE__Base* current = manager.GetCurrentInputEvent();
  return current ? current->GetInputEventName().str() : "-";
}

// Runs one call of the little language of the tables on the manager.
void RunOp(TestManager& manager, const std::string& op, Log& log) {
  CPoint point(3, 4);
  std::istringstream words(op);
  std::string verb;
  std::string argument;
  words >> verb >> argument;
  if (verb == "set") {
    manager.SetCurrentInputEvent(std::make_unique<CountingTool>(argument, log));
  } else if (verb == "setraw") {
    manager.SetCurrentInputEvent(new CountingTool(argument, log));  // the manager takes it
  } else if (verb == "setnull") {
    manager.SetCurrentInputEvent(static_cast<CIE__Base*>(nullptr));
  } else if (verb == "setsame") {
    manager.SetCurrentInputEvent(manager.GetCurrentInputEvent());
  } else if (verb == "flag") {
    manager.SetFlag_DeleteCurrentEventAfterExecute(std::stoi(argument));
  } else if (verb == "ldown") {
    manager.OnLButtonDown(7, point);
  } else if (verb == "lup") {
    manager.OnLButtonUp(7, point);
  } else if (verb == "mdown") {
    manager.OnMButtonDown(7, point);
  } else if (verb == "rdown") {
    manager.OnRButtonDown(7, point);
  } else if (verb == "rup") {
    manager.OnRButtonUp(7, point);
  } else if (verb == "move") {
    manager.OnMouseMove(7, point);
  } else if (verb == "key") {
    manager.OnKeyDown(65, 1, 0);
  } else if (verb == "char") {
    manager.OnChar(97, 1, 0);
  } else if (verb == "push") {
    manager.PushCurrentInputEvent();
  } else if (verb == "pushnew") {
    manager.PushInputEvent(new CountingTool(argument, log));
  } else if (verb == "delcur") {
    manager.DeleteCurrentInputEvent();
  } else if (verb == "delnow") {
    manager.DeleteCurrentEventNow();
  } else if (verb == "delpop") {
    manager.DeleteCurrentEventAndPopInputEvent();
  } else if (verb == "delall") {
    manager.DeleteAllInputEvent();
  } else if (verb == "pop1") {
    manager.PopInputEvent(1);
  } else if (verb == "pop0") {
    manager.PopInputEvent(0);  // the popped tool's only share is dropped here
  } else if (verb == "end") {
    manager.EventEndingProcess();
  } else if (verb == "cursor") {
    manager.SetCursor();
  } else if (verb == "init") {
    manager.Init();
  } else {
    FAIL() << "unknown op " << op;
  }
}

struct StateRow {
  const char* name;
  std::vector<std::string> ops;
  std::string current;  // "-" for none
  std::size_t depth;
  int flag;
  Calls hooks;
  Log log;  // handler calls and destructions, in order
};

class InputEventStates : public testing::Test {
 protected:
  void Check(const StateRow& row) {
    SCOPED_TRACE(row.name);
    auto hooks = std::make_shared<corlith::RecordingDesktopHooks>();
    const corlith::ScopedDesktopHooks installed(hooks);
    Log log;
    TestManager manager;
    for (const std::string& op : row.ops) RunOp(manager, op, log);
    EXPECT_EQ(CurrentName(manager), row.current);
    EXPECT_EQ(manager.GetSuspendedCount(), row.depth);
    EXPECT_EQ(manager.GetFlag_DeleteCurrentEventAfterExecute(), row.flag);
    EXPECT_EQ(hooks->Calls(), row.hooks);
    EXPECT_EQ(log, row.log);
    // Whatever is left goes with the manager, each tool once.
    manager.DeleteAllInputEvent();
    EXPECT_EQ(CurrentName(manager), "-");
    EXPECT_EQ(manager.GetSuspendedCount(), 0U);
  }
};

TEST_F(InputEventStates, MessagesReachTheCurrentToolAndOnlyEndingMessagesEndIt) {
  const StateRow rows[] = {
      {"idle: every message is ignored and ends nothing",
       {"flag 1", "ldown", "lup", "mdown", "rup", "key", "char"},
       "-",
       0,
       1,
       {},
       {}},
      {"active without the flag: every message reaches the tool, none ends it",
       {"set A", "ldown", "lup", "mdown", "rdown", "rup", "move", "key", "char"},
       "A",
       0,
       0,
       {},
       {"A:ldown", "A:lup", "A:mdown", "A:rdown", "A:rup", "A:move", "A:key", "A:char"}},
      {"flag set, empty stack: a left release ends the tool, idle, arrow cursor",
       {"set A", "flag 1", "lup"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"A:lup", "~A"}},
      {"a left press ends a tool",
       {"set A", "flag 1", "ldown"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"A:ldown", "~A"}},
      {"a middle press ends a tool",
       {"set A", "flag 1", "mdown"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"A:mdown", "~A"}},
      {"a right release ends a tool",
       {"set A", "flag 1", "rup"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"A:rup", "~A"}},
      {"a key ends a tool", {"set A", "flag 1", "key"}, "-", 0, 0, {kRelease, kArrow}, {"A:key", "~A"}},
      {"a character ends a tool",
       {"set A", "flag 1", "char"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"A:char", "~A"}},
      {"a move and a right press never end a tool",
       {"set A", "flag 1", "move", "rdown", "move"},
       "A",
       0,
       1,
       {},
       {"A:move", "A:rdown", "A:move"}},
      {"a second tool suspends the first, which resumes when the second ends; flag 0",
       {"set A", "set B", "flag 1", "lup"},
       "A",
       0,
       0,
       {kRelease, kArrow},
       {"B:lup", "~B"}},
      {"the arrow shows after a resume: the cursor is set while no tool is current",
       {"set A", "set B", "flag 1", "key", "cursor"},
       "A",
       0,
       0,
       {kRelease, kArrow},
       {"B:key", "~B", "A:cursor"}},
      {"three deep: tools resume in reverse order",
       {"set A", "set B", "set C", "flag 1", "lup", "flag 1", "key"},
       "A",
       0,
       0,
       {kRelease, kArrow, kRelease, kArrow},
       {"C:lup", "~C", "B:key", "~B"}},
      {"the resumed tool keeps running without the flag",
       {"set A", "set B", "flag 1", "lup", "lup", "ldown"},
       "A",
       0,
       0,
       {kRelease, kArrow},
       {"B:lup", "~B", "A:lup", "A:ldown"}},
      {"EventEndingProcess without the flag does nothing", {"set A", "end"}, "A", 0, 0, {}, {}},
  };
  for (const StateRow& row : rows) Check(row);
}

TEST_F(InputEventStates, TheStackOperationsMoveOneLevelAndDeleteAllReturnsToIdle) {
  const StateRow rows[] = {
      {"setting a tool neither sets the cursor nor destroys anything", {"set A", "set B"}, "B", 1, 0, {}, {}},
      {"a raw heap tool is taken over the same way", {"setraw A", "setraw B"}, "B", 1, 0, {}, {}},
      {"SetCurrentInputEvent with null changes nothing", {"set A", "flag 1", "setnull"}, "A", 0, 1, {}, {}},
      {"DeleteCurrentEventAndPopInputEvent on an empty stack leaves no tool, keeps the flag",
       {"set A", "flag 1", "delpop"},
       "-",
       0,
       1,
       {kRelease, kArrow},
       {"~A"}},
      {"DeleteCurrentEventAndPopInputEvent resumes without setting its cursor",
       {"set A", "set B", "delpop"},
       "A",
       0,
       0,
       {kRelease, kArrow},
       {"~B"}},
      {"DeleteCurrentInputEvent sets the cursor even with no tool", {"delcur"}, "-", 0, 0, {kArrow}, {}},
      {"DeleteCurrentInputEvent keeps the flag",
       {"set A", "flag 1", "delcur"},
       "-",
       0,
       1,
       {kRelease, kArrow},
       {"~A"}},
      {"DeleteCurrentEventNow clears the flag",
       {"set A", "flag 1", "delnow"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"~A"}},
      {"DeleteAllInputEvent: suspended tools newest first, then the current one",
       {"set A", "set B", "set C", "delall"},
       "-",
       0,
       0,
       {kRelease, kRelease, kRelease, kArrow},
       {"~B", "~A", "~C"}},
      {"PopInputEvent with activate: the current one goes, the flag clears, the last suspended resumes",
       {"set A", "set B", "flag 1", "pop1"},
       "A",
       0,
       0,
       {kRelease, kArrow},
       {"~B"}},
      {"PopInputEvent with activate on an empty stack: idle",
       {"set A", "pop1"},
       "-",
       0,
       0,
       {kRelease, kArrow},
       {"~A"}},
      {"PopInputEvent without activate hands the popped tool out; dropping it destroys it",
       {"set A", "set B", "pop0"},
       "B",
       0,
       0,
       {kRelease},
       {"~A"}},
      {"PushInputEvent suspends a tool under the current one",
       {"set A", "pushnew B", "flag 1", "lup"},
       "B",
       0,
       0,
       {kRelease, kArrow},
       {"A:lup", "~A"}},
      {"cursor: the current tool's, else the arrow",
       {"cursor", "set A", "cursor"},
       "A",
       0,
       0,
       {kArrow},
       {"A:cursor"}},
      {"Init forgets the current tool (its share released) and keeps the stack",
       {"set A", "set B", "flag 1", "init"},
       "-",
       1,
       0,
       {kRelease},
       {"~B"}},
  };
  for (const StateRow& row : rows) Check(row);
}

TEST_F(InputEventStates, AToolHeldTwiceIsDestroyedOnlyWhenTheLastHolderLetsGo) {
  // The original destroyed such a tool while a pointer to it was still held; here each
  // holder keeps it alive, so the resumed tool is the live one.
  const StateRow rows[] = {
      {"pushed and still current: deleting the current leaves the suspended one alive",
       {"set A", "push", "delcur"},
       "-",
       1,
       0,
       {kArrow},
       {}},
      {"pushed, deleted as current, then resumed",
       {"set A", "push", "delcur", "delpop", "lup"},
       "A",
       0,
       0,
       {kArrow, kArrow},
       {"A:lup"}},
      {"set again while current: it ends as current and resumes as suspended",
       {"set A", "setsame", "flag 1", "lup", "ldown"},
       "A",
       0,
       0,
       {kArrow},
       {"A:lup", "A:ldown"}},
  };
  for (const StateRow& row : rows) Check(row);
}

TEST(InputEventManager, EachHandlerForwardsItsOwnArgumentsToTheHandlerOfTheSameName) {
  Log log;
  TestManager manager;
  auto owned = std::make_unique<CountingTool>("A", log);
  CountingTool* tool = owned.get();
  manager.SetCurrentInputEvent(std::move(owned));
  struct Row {
    const char* handler;
    void (CInputEventManager::*mouse)(UINT, CPoint&);
    void (CInputEventManager::*key)(UINT, UINT, UINT);
  };
  const Row rows[] = {
      {"ldown", &CInputEventManager::OnLButtonDown, nullptr},
      {"lup", &CInputEventManager::OnLButtonUp, nullptr},
      {"mdown", &CInputEventManager::OnMButtonDown, nullptr},
      {"rdown", &CInputEventManager::OnRButtonDown, nullptr},
      {"rup", &CInputEventManager::OnRButtonUp, nullptr},
      {"move", &CInputEventManager::OnMouseMove, nullptr},
      {"key", nullptr, &CInputEventManager::OnKeyDown},
      {"char", nullptr, &CInputEventManager::OnChar},
  };
  UINT n = 10;
  for (const Row& row : rows) {
    SCOPED_TRACE(row.handler);
    std::ostringstream expected;
    if (row.mouse) {
      CPoint point(static_cast<int>(n + 1), static_cast<int>(n + 2));
      (manager.*row.mouse)(n, point);
      expected << row.handler << ' ' << n << ' ' << n + 1 << ' ' << n + 2;
      EXPECT_EQ(point.x, static_cast<int>(n + 1001));  // by reference: the tool's change is seen
    } else {
      (manager.*row.key)(n, n + 1, n + 2);
      expected << row.handler << ' ' << n << ' ' << n + 1 << ' ' << n + 2;
    }
    EXPECT_EQ(tool->Last(), expected.str());
    EXPECT_EQ(tool->Count(row.handler), 1);
    n += 10;
  }
  EXPECT_EQ(log.size(), std::size(rows));
  manager.DeleteAllInputEvent();
}

// A tool that ends itself from its own handler and then still uses its members.
class SelfEndingTool : public CIE__Base {
 public:
  explicit SelfEndingTool(Log& log) : m_log(log) {}
  ~SelfEndingTool() override { m_log.push_back("~self"); }
  SelfEndingTool(const SelfEndingTool&) = delete;
  SelfEndingTool& operator=(const SelfEndingTool&) = delete;
  void OnLButtonDown(UINT, CPoint&) override {
    GetInputEventManager()->DeleteCurrentInputEvent();
    m_log.push_back("self:still running");
  }

 private:
  Log& m_log;
};

TEST(InputEventManager, AToolThatEndsItselfInItsHandlerLivesUntilTheHandlerReturns) {
  Log log;
  TestManager manager;
  auto tool = std::make_unique<SelfEndingTool>(log);
  tool->SetInputEventManager(&manager);
  manager.SetCurrentInputEvent(std::move(tool));
  CPoint point;
  manager.OnLButtonDown(0, point);
  EXPECT_EQ(log, (Log{"self:still running", "~self"}));
  EXPECT_EQ(manager.GetCurrentInputEvent(), nullptr);
}

TEST(InputEventManager, CopiesShareTheirToolsAndEachToolGoesOnceWhicheverCopyGoesFirst) {
  for (const bool sourceFirst : {true, false}) {
    SCOPED_TRACE(sourceFirst ? "source destroyed first" : "copy destroyed first");
    auto hooks = std::make_shared<corlith::RecordingDesktopHooks>();
    const corlith::ScopedDesktopHooks installed(hooks);
    Log log;
    auto source = std::make_unique<TestManager>();
    source->SetCurrentInputEvent(std::make_unique<CountingTool>("A", log));
    source->SetCurrentInputEvent(std::make_unique<CountingTool>("B", log));
    source->SetFlag_DeleteCurrentEventAfterExecute(1);
    auto copy = std::make_unique<TestManager>(*source);
    EXPECT_EQ(copy->GetCurrentInputEvent(), source->GetCurrentInputEvent());
    EXPECT_EQ(copy->GetSuspendedCount(), 1U);
    EXPECT_EQ(copy->GetFlag_DeleteCurrentEventAfterExecute(), 1);

    std::unique_ptr<TestManager>& first = sourceFirst ? source : copy;
    std::unique_ptr<TestManager>& second = sourceFirst ? copy : source;
    first.reset();
    EXPECT_EQ(log, Log{});  // the other copy still holds both tools
    EXPECT_EQ(hooks->Count(kRelease), 0);
    // The survivor still drives them: B ends and A resumes.
    CPoint point;
    second->OnLButtonUp(0, point);
    EXPECT_EQ(CurrentName(*second), "A");
    second.reset();
    EXPECT_EQ(log, (Log{"B:lup", "~B", "~A"}));
    EXPECT_EQ(hooks->Count(kRelease), 2);
  }
}

TEST(InputEventManager, AssignmentReleasesTheOldToolsAndSharesTheNewOnes) {
  Log log;
  TestManager left;
  left.SetCurrentInputEvent(std::make_unique<CountingTool>("L", log));
  {
    TestManager right;
    right.SetCurrentInputEvent(std::make_unique<CountingTool>("R", log));
    left = right;
    EXPECT_EQ(log, Log{"~L"});
    right.DeleteAllInputEvent();  // the copy in `left` keeps R
    EXPECT_EQ(log, Log{"~L"});
  }
  EXPECT_EQ(CurrentName(left), "R");
  left.DeleteAllInputEvent();
  EXPECT_EQ(log, (Log{"~L", "~R"}));
}

TEST(InputEventBase, BaseBehaviourAndTheCaptureReleasedOnDestruction) {
  auto hooks = std::make_shared<corlith::RecordingDesktopHooks>();
  const corlith::ScopedDesktopHooks installed(hooks);
  TestManager manager;
  {
    CIE__Base base;
    EXPECT_EQ(base.GetFlag_DrawPrevXOR(), 1);
    EXPECT_EQ(base.GetSavedLogicOp(), 0);
    EXPECT_EQ(base.GetInputEventName(), CString("CIE__Base"));
    EXPECT_EQ(base.IsInterruptInputEvent(), 0);
    EXPECT_EQ(base.GetInputEventManager(), nullptr);
    base.SetInputEventManager(&manager);
    base.SetFlag_DrawPrevXOR(0);
    const CIE__Base copy(base);
    EXPECT_EQ(copy.GetInputEventManager(), &manager);
    EXPECT_EQ(copy.GetFlag_DrawPrevXOR(), 0);
    base.Init();
    EXPECT_EQ(base.GetFlag_DrawPrevXOR(), 1);
    EXPECT_EQ(base.GetInputEventManager(), &manager);  // Init keeps the manager
    EXPECT_EQ(hooks->Count(kRelease), 0);
  }
  EXPECT_EQ(hooks->Calls(), (Calls{kRelease, kRelease}));
  // The base handlers do nothing: a manager running a bare base tool just dispatches.
  manager.SetCurrentInputEvent(std::make_unique<CIE__Base>());
  CPoint point(1, 2);
  manager.OnLButtonDown(0, point);
  EXPECT_EQ(point, CPoint(1, 2));
  manager.SetCursor();
  EXPECT_EQ(hooks->Count(kArrow), 0);  // the base tool's SetCursor, not the arrow
  EXPECT_EQ(manager.CanExistAtSameTime(nullptr, manager.GetCurrentInputEvent()), 1);
  manager.DeleteAllInputEvent();
}

TEST(InputEventBaseArray, OwnsItsToolsButRemoveOnlyDetaches) {
  Log log;
  auto* kept = new CountingTool("K", log);
  {
    CIE__BaseArray tools;
    tools.Add(new CountingTool("A", log));
    tools.Add(kept);
    tools.Add(new CountingTool("B", log));
    EXPECT_TRUE(tools.Remove(kept));
    tools.DeleteAt(0);
    EXPECT_EQ(log, Log{"~A"});
    tools.Add(new CountingTool("C", log));
    tools.Init();
    EXPECT_EQ(tools.GetSize(), 0);
    EXPECT_EQ(log, (Log{"~A", "~B", "~C"}));
    tools.Add(new CountingTool("D", log));
  }
  EXPECT_EQ(log, (Log{"~A", "~B", "~C", "~D"}));
  delete kept;
}

}  // namespace
