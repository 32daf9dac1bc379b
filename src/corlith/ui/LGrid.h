// CLGrid, the drawing grid of a board view: a pitch in x and in y, snapping of a point to
// the nearest grid node or along a line through a reference point, the standard pitches
// per unit, and the decimal places that show the pitches. Plain values only (no wx).
#pragma once

#include <corlith/values/ArrayD.h>
#include <corlith/values/PointD.h>

class CLGrid {
 public:
  /// The most decimal places GetGridDecimalPoint answers: a pitch that needs more (an
  /// inch or mil pitch converted from millimetres, 0.1 * 3) is shown with this many.
  static constexpr int kMaxGridDecimalPoint = 6;

  /// Pitches and decimal tolerance all 0.
  CLGrid() = default;
  CLGrid(double dPitchX, double dPitchY) : m_dPitchX(dPitchX), m_dPitchY(dPitchY) {}
  CLGrid(const CLGrid&) = default;
  CLGrid& operator=(const CLGrid&) = default;
  CLGrid(CLGrid&&) = default;
  CLGrid& operator=(CLGrid&&) = default;
  virtual ~CLGrid() = default;

  double GetPitchX() const { return m_dPitchX; }
  double GetPitchY() const { return m_dPitchY; }
  void SetPitch(double dPitchX, double dPitchY) { m_dPitchX = dPitchX, m_dPitchY = dPitchY; }
  /// How far the shown pitch may lie from the pitch for GetGridDecimalPoint (0: it must
  /// read back as the very same double).
  double GetDecimalTolerance() const { return m_dDecimalTolerance; }
  void SetDecimalTolerance(double dTolerance) { m_dDecimalTolerance = dTolerance; }

  /// Snaps x and y each to the nearest multiple of its pitch, symmetric about 0: with
  /// n = trunc(|c| / g), plus 1 when fmod(|c|, g) > g / 2 (exactly half rounds down, to
  /// the node nearer 0), c becomes ±n·g. Deliberately taken literally: where |c| / g
  /// rounds up to a whole number while fmod sees a remainder just below g (1.0 with pitch
  /// 0.1), c goes one node further (1.1). With either pitch 0 the result is (0, 0), not p,
  /// deliberately: a grid without pitch snaps to the origin. A negative pitch goes
  /// through the same formula (no meaningful grid); NaN and infinities come back as such.
  CPointD GetSnapPoint(const CPointD& p) const;
  /// Snaps p along the line from `ref` through p. With either pitch 0 the result is p
  /// unchanged (unlike GetSnapPoint, deliberately). On a vertical line (p.x == ref.x
  /// exactly) only y snaps; on a horizontal one only x. Otherwise the candidates are A,
  /// on the line at the snapped x, and B, on the line at the snapped y: A when B lies
  /// farther from p (squared distances), else B, so a tie gives B. `dAngle` is not used.
  CPointD GetSnapPointAngle(const CPointD& ref, const CPointD& p, const double& dAngle) const;

  /// Appends eleven pitches (the list is not cleared): base × 1.5, 1.27, 1, 0.8, 0.75,
  /// 0.65, 0.5, 0.4, 0.3, 0.25, 0.1, with base one millimetre in the unit: inches for
  /// unit 0, mils for unit 1, millimetres (1.0) for any other unit.
  static void GetPreDefinedGridIntervalList(CArrayD& list, int unit);

  /// The decimal places that show each pitch: for x in nDecimalX and y in nDecimalY the
  /// fewest places (0 to kMaxGridDecimalPoint) with which the pitch, written out and read
  /// back, is the same double (or within the decimal tolerance when that is above 0);
  /// kMaxGridDecimalPoint when no count shows it, 0 for a pitch of NaN or infinity. The
  /// sign does not count. Returns the larger of the two, for a format shared by both.
  int GetGridDecimalPoint(int& nDecimalX, int& nDecimalY) const;

 private:
  double m_dDecimalTolerance = 0.0;
  double m_dPitchX = 0.0;
  double m_dPitchY = 0.0;
};
