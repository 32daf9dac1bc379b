// The shared tolerance: the unit table and recognition order, the scale rule, and the
// sharing itself, proven with real child processes (the test re-run with
// CORLITH_VALUES_CHILD set plays the child's part). Each test process uses a segment
// named after its pid, so parallel test processes never see each other's tolerance.
#include <corlith/framework/HostPrompt.h>
#include <corlith/platform/SharedMemory.h>
#include <corlith/test/ChildProcess.h>
#include <corlith/test/ToleranceGuard.h>
#include <corlith/values/ArraySizeException.h>
#include <corlith/values/PointD.h>
#include <corlith/values/UnitTolerance.h>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using corlith::test::ChildProcess;
using corlith::test::StartThisTest;
using corlith::test::ToleranceGuard;

constexpr const char* kSegmentVariable = "CORLITH_TOLERANCE_SHM";
constexpr const char* kChild = "CORLITH_VALUES_CHILD=1";

bool IsChild() { return std::getenv("CORLITH_VALUES_CHILD") != nullptr; }

// Names this process's segment before anything opens it; a child inherits its
// parent's name or is given one.
struct OwnSegment {
  std::string name;

  OwnSegment() noexcept {
    if (std::getenv(kSegmentVariable)) return;
    name = "/corlith-values-test-" + std::to_string(::getpid());
    ::setenv(kSegmentVariable, name.c_str(), 1);
  }
  ~OwnSegment() {
    if (!name.empty()) corlith::platform::RemoveSharedMemory(name);
  }
};
OwnSegment g_segment;

TEST(UnitTolerance, StartsAtOneTenThousandthInAFreshSegment) {
  ASSERT_TRUE(CUnitTolerance::IsShared());
  EXPECT_EQ(CUnitTolerance::GetTolerance(), 0.0001);
}

TEST(UnitTolerance, ChangeMadeByAnotherProcessIsSeenAtOnce) {
  if (IsChild()) {
    ASSERT_TRUE(CUnitTolerance::IsShared());
    CUnitTolerance::SetTolerancewithValue(0.5);
    return;
  }
  ToleranceGuard guard;
  CUnitTolerance::SetTolerancewithValue(0.0001);
  const CPointD a(0, 0), b(0.3, 0);
  ASSERT_FALSE(a == b);
  ChildProcess child = StartThisTest({kChild});
  ASSERT_EQ(child.Wait(), 0) << child.Output();
  EXPECT_EQ(CUnitTolerance::GetTolerance(), 0.5);
  EXPECT_TRUE(a == b) << "point equality must follow the other process's tolerance";
}

TEST(UnitTolerance, SimultaneousStartsInitialiseOnce) {
  // Each child opens a segment nobody has created yet, all at about the same moment;
  // every one must see 0.0001, i.e. no process read the value before it was
  // initialised and no late initialisation overwrote a value.
  if (IsChild()) {
    ASSERT_TRUE(CUnitTolerance::IsShared());
    EXPECT_EQ(CUnitTolerance::GetTolerance(), 0.0001);
    return;
  }
  const std::string name = "/corlith-values-race-" + std::to_string(::getpid());
  for (int round = 0; round < 5; ++round) {
    SCOPED_TRACE(round);
    corlith::platform::RemoveSharedMemory(name);
    std::vector<ChildProcess> children;
    children.reserve(8);
    for (int i = 0; i < 8; ++i)
      children.push_back(StartThisTest({std::string(kSegmentVariable) + "=" + name, kChild}));
    for (ChildProcess& child : children) EXPECT_EQ(child.Wait(), 0) << child.Output();
  }
  corlith::platform::RemoveSharedMemory(name);
}

TEST(UnitTolerance, SegmentWhoseCreatorNeverFinishedIsTakenOver) {
  // A creator that died between creating and initialising leaves a segment whose
  // ready word is never set: opening must neither hang nor read garbage, and must not
  // leave the name unusable until the machine restarts.
  const std::string name = "/corlith-values-stale-" + std::to_string(::getpid());
  const int fd = ::shm_open(name.c_str(), O_RDWR | O_CREAT | O_EXCL, 0600);
  ASSERT_GE(fd, 0);
  ASSERT_EQ(::ftruncate(fd, 4096), 0);
  ::close(fd);
  corlith::platform::SharedMemory segment;
  ASSERT_EQ(segment.Open(name, sizeof(double), [](void* d) { *static_cast<double*>(d) = 0.5; }), 0);
  EXPECT_EQ(*static_cast<double*>(segment.Data()), 0.5);
  segment.Close();
  corlith::platform::RemoveSharedMemory(name);

  // A finished segment opens for a second process with the creator's value.
  corlith::platform::SharedMemory creator;
  ASSERT_EQ(creator.Open(name, sizeof(double), [](void* d) { *static_cast<double*>(d) = 2.5; }), 0);
  corlith::platform::SharedMemory other;
  ASSERT_EQ(other.Open(name, sizeof(double), [](void* d) { *static_cast<double*>(d) = 9.0; }), 0);
  EXPECT_EQ(*static_cast<double*>(other.Data()), 2.5);
  corlith::platform::RemoveSharedMemory(name);
}

TEST(UnitTolerance, SetToleranceByUnitTypeAndScale) {
  ToleranceGuard guard;
  struct Row {
    int unit;
    double scale;
    double expected;
  } rows[] = {
      {3, 1.0, 0.001},
      {3, 2.0, 0.002},
      {-1, 1.0, 0.0001},
      {4, 1.0, 0.1},
      {0, 1.0, 3.9370078740157485e-5},
      {1, 1.0, 0.03937007874015749},
      {2, 1.0, 0.0001},
      {7, 3.0, 0.0003},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "unit " << row.unit << " scale " << row.scale);
    CUnitTolerance::SetTolerance(row.unit, row.scale);
    EXPECT_DOUBLE_EQ(CUnitTolerance::GetTolerance(), row.expected);
    EXPECT_EQ(CUnitTolerance::GetToleranceValue_By_UnitType(row.unit) * row.scale,
              CUnitTolerance::GetTolerance());
  }
  CUnitTolerance::SetTolerance(CString("MILLIMETER"), 1.0);
  EXPECT_EQ(CUnitTolerance::GetTolerance(), 0.03937007874015749) << "MILLIMETER reads as mil";
  CUnitTolerance::SetTolerance(CString("furlong"), 5.0);
  EXPECT_DOUBLE_EQ(CUnitTolerance::GetTolerance(), 0.0005);
}

TEST(UnitTolerance, UnitRecognitionKeepsTheMilFirstOrder) {
  struct Row {
    const char* text;
    int expected;
  } rows[] = {{"mm", 3},         {"Millimeter", 1}, {"MILLIMETER", 1}, {"um", 4},   {"Centimeter", -1},
              {"", -1},          {"inch", 0},       {"INCH", 0},       {"MILS", 1}, {"micron", 4},
              {"MICROMETER", 4}, {"cm", 2},         {"Mil", 1},        {"pt", -1},  {"MINCH", 0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    EXPECT_EQ(CUnitTolerance::GetUnitType(CString(row.text)), row.expected);
  }
}

TEST(UnitTolerance, PointEqualityIsStrictAtExactlyTheTolerance) {
  ToleranceGuard guard;
  CUnitTolerance::SetTolerancewithValue(0.0001);
  EXPECT_TRUE(CPointD(0, 0) == CPointD(0.00005, 0.00005));
  EXPECT_FALSE(CPointD(0, 0) == CPointD(0.0001, 0));
  EXPECT_TRUE(CPointD(0, 0) != CPointD(0.0001, 0));
  // Fixed equality ignores the shared value and is a square, not a circle.
  EXPECT_TRUE(CPointD(0, 0).IsMathEqual(CPointD(0.00009, 0.00009)));
  EXPECT_FALSE(CPointD(0, 0).IsMathEqual(CPointD(0.0001, 0)));
  CUnitTolerance::SetTolerance(0, 1.0);
  EXPECT_FALSE(CPointD(0, 0) == CPointD(0.00005, 0)) << "inch tolerance is below 0.00005";
  EXPECT_TRUE(CPointD(0, 0).IsMathEqual(CPointD(0.00005, 0)));
  CUnitTolerance::SetTolerancewithValue(0.0);
  EXPECT_FALSE(CPointD(1, 1) == CPointD(1, 1)) << "a zero tolerance makes every point unequal";
}

TEST(ArraySizeException, ReportsTheFixedTextThroughTheHostPrompt) {
  auto prompt = std::make_shared<corlith::RecordingHostPrompt>();
  corlith::ScopedHostPrompt scoped(prompt);
  CArraySizeException e(CString("Nets"));
  EXPECT_EQ(e.ReportError(MB_ICONERROR | MB_YESNO, 42), 1);
  const auto messages = prompt->Messages();
  ASSERT_EQ(messages.size(), 1u);
  EXPECT_EQ(messages[0].text, "Error : Nets size is over Interger limit!\n");
  EXPECT_EQ(messages[0].type, MB_OK);
  EXPECT_STREQ(e.what(), "Error : Nets size is over Interger limit!\n");
  try {
    throw CArraySizeException(CString("100%s"));
  } catch (const CException& caught) {
    EXPECT_STREQ(caught.what(), "Error : 100%s size is over Interger limit!\n") << "the name is not a format";
  }
}

}  // namespace
