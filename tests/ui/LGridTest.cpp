// CLGrid: snapping per coordinate and along a line, the preset pitches, the decimal
// places. Plain values: no display needed. Ties use binary-exact values, so they are ties.
#include <corlith/ui/LGrid.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();

struct SnapRow {
  double pitchX, pitchY, x, y, wantX, wantY;
};

TEST(LGridTest, SnapPointRoundsEachCoordinateHalfDownSymmetricAboutZero) {
  const SnapRow rows[] = {
      {1.0, 1.0, 2.5, -2.5, 2.0, -2.0},  // exactly half rounds towards 0, both signs
      {1.0, 1.0, 2.6, -2.6, 3.0, -3.0},
      {1.0, 1.0, 0.5000000000000001, -0.4, 1.0, 0.0},
      {0.25, 0.25, 0.375, -0.376, 0.25, -0.5},
      {1.0, 2.0, 3.3, 3.3, 3.0, 4.0},  // each axis its own pitch
      {2.0, 1.0, 3.0, 7.0, 2.0, 7.0},
      // The literal two-step rule: 1.0 / 0.1 is 10 but fmod sees 0.0999..., one node on.
      {0.1, 0.1, 1.0, -1.0, 1.1000000000000001, -1.1000000000000001},
      {0.1, 0.1, 0.3, 0.7, 0.30000000000000004, 0.70000000000000007},
      {1.0, 1.0, 1e20, -1e20, 1e20, -1e20},  // far beyond int: no overflow
      {1.0, 1.0, kInf, -kInf, kInf, -kInf},
  };
  for (const SnapRow& row : rows) {
    SCOPED_TRACE(testing::Message() << "pitch " << row.pitchX << "," << row.pitchY << " point " << row.x
                                    << "," << row.y);
    const CPointD got = CLGrid(row.pitchX, row.pitchY).GetSnapPoint(CPointD(row.x, row.y));
    EXPECT_EQ(got.x, row.wantX);
    EXPECT_EQ(got.y, row.wantY);
  }
  EXPECT_TRUE(std::isnan(CLGrid(1.0, 1.0).GetSnapPoint(CPointD(NAN, 1.0)).x));
}

TEST(LGridTest, ZeroPitchSnapsToOriginButLeavesAngleSnapInputAlone) {
  const CLGrid grids[] = {CLGrid(), CLGrid(0.0, 1.0), CLGrid(1.0, 0.0), CLGrid(-0.0, 1.0)};
  const CPointD p(2.6, -3.4);
  for (const CLGrid& grid : grids) {
    SCOPED_TRACE(testing::Message() << "pitch " << grid.GetPitchX() << "," << grid.GetPitchY());
    const CPointD snapped = grid.GetSnapPoint(p);
    EXPECT_EQ(snapped.x, 0.0);
    EXPECT_EQ(snapped.y, 0.0);
    const CPointD along = grid.GetSnapPointAngle(CPointD(1.0, 1.0), p, 45.0);
    EXPECT_EQ(along.x, p.x);
    EXPECT_EQ(along.y, p.y);
  }
}

struct AngleRow {
  const char* rule;
  double pitchX, pitchY, refX, refY, x, y, wantX, wantY;
};

TEST(LGridTest, SnapPointAngleFollowsTheLineAndATieGivesTheSnappedY) {
  const AngleRow rows[] = {
      {"vertical: x kept unsnapped", 1.0, 1.0, 2.3, 0.0, 2.3, 3.6, 2.3, 4.0},
      {"horizontal: y kept unsnapped", 1.0, 1.0, 0.0, 1.3, 4.7, 1.3, 5.0, 1.3},
      {"p on ref counts as vertical", 1.0, 1.0, 0.3, 0.3, 0.3, 0.3, 0.3, 0.0},
      {"45 degrees from the origin, up", 1.0, 1.0, 0.0, 0.0, 2.6, 2.6, 3.0, 3.0},
      {"45 degrees from the origin, down", 1.0, 1.0, 0.0, 0.0, 2.4, 2.4, 2.0, 2.0},
      {"A (snapped x) nearer", 1.0, 1.0, 0.0, 0.0, 1.25, 0.625, 1.0, 0.5},
      {"tie gives B", 1.0, 0.75, 0.0, 0.0, 1.25, 1.25, 1.5, 1.5},
      {"tie gives B, axes swapped", 0.75, 1.0, 0.0, 0.0, 1.25, 1.25, 1.0, 1.0},
      {"tie gives B, negative quadrant", 1.0, 0.75, 0.0, 0.0, -1.25, -1.25, -1.5, -1.5},
      {"tie gives B, line off the origin", 1.0, 1.0, 0.5, 0.0, 3.25, 2.75, 3.5, 3.0},
      {"just past the tie: B nearer", 1.0, 0.75, 0.0, 0.0, 1.2578125, 1.2578125, 1.5, 1.5},
      {"just before the tie: A nearer", 1.0, 0.75, 0.0, 0.0, 1.2421875, 1.2421875, 1.0, 1.0},
  };
  for (const AngleRow& row : rows) {
    SCOPED_TRACE(row.rule);
    const CLGrid grid(row.pitchX, row.pitchY);
    // The angle argument takes no part: every value gives the same point.
    for (const double angle : {0.0, 45.0, -90.0, static_cast<double>(NAN)}) {
      SCOPED_TRACE(testing::Message() << "angle " << angle);
      const CPointD got = grid.GetSnapPointAngle(CPointD(row.refX, row.refY), CPointD(row.x, row.y), angle);
      EXPECT_EQ(got.x, row.wantX);
      EXPECT_EQ(got.y, row.wantY);
    }
  }
}

TEST(LGridTest, PresetPitchesAreElevenPerUnitAppended) {
  const double mm[] = {1.5, 1.27, 1.0, 0.8, 0.75, 0.65, 0.5, 0.4, 0.3, 0.25, 0.1};
  struct Row {
    int unit;
    double base;
  };
  const Row rows[] = {{0, 0.03937007874015748}, {1, 39.37007874015748}, {2, 1.0}, {-1, 1.0}, {99, 1.0}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "unit " << row.unit);
    CArrayD list;
    list.Add(7.0);
    CLGrid::GetPreDefinedGridIntervalList(list, row.unit);
    ASSERT_EQ(list.GetSize(), 12);
    EXPECT_EQ(list[0], 7.0);
    for (int i = 0; i < 11; ++i) EXPECT_EQ(list[i + 1], row.base * mm[i]) << "entry " << i;
  }
  CArrayD mils;
  CLGrid::GetPreDefinedGridIntervalList(mils, 1);
  EXPECT_EQ(mils[0], 59.05511811023622);
  EXPECT_EQ(mils[1], 50.0);
  EXPECT_EQ(mils[2], 39.37007874015748);
  CArrayD inches;
  CLGrid::GetPreDefinedGridIntervalList(inches, 0);
  EXPECT_EQ(inches[1], 0.05);  // 1.27 mm is 50 mil
}

TEST(LGridTest, DecimalPointIsTheFewestPlacesThatShowEachPitch) {
  struct Row {
    double pitchX, pitchY, tolerance;
    int wantX, wantY;
  };
  const Row rows[] = {
      {1.0, 0.5, 0.0, 0, 1},
      {1.27, 0.25, 0.0, 2, 2},
      {0.1, 0.125, 0.0, 1, 3},
      {-0.25, 12345.678, 0.0, 2, 3},  // the sign does not count
      {0.1 * 3, 0.3, 0.0, CLGrid::kMaxGridDecimalPoint, 1},
      {0.1 * 3, 0.3, 1e-9, 1, 1},
      {59.05511811023622, 50.0, 0.0, CLGrid::kMaxGridDecimalPoint, 0},
      {0.000001, 0.0000001, 0.0, 6, CLGrid::kMaxGridDecimalPoint},
      {0.0, 1e300, 0.0, 0, 0},
      {NAN, -kInf, 0.0, 0, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << "pitch " << row.pitchX << "," << row.pitchY << " tolerance "
                                    << row.tolerance);
    CLGrid grid(row.pitchX, row.pitchY);
    grid.SetDecimalTolerance(row.tolerance);
    int x = -1;
    int y = -1;
    EXPECT_EQ(grid.GetGridDecimalPoint(x, y), std::max(row.wantX, row.wantY));
    EXPECT_EQ(x, row.wantX);
    EXPECT_EQ(y, row.wantY);
  }
}

}  // namespace
