// CPCTruncationDouble: a double as display text under a user's rule, either a number of
// decimal places or a number of significant digits, with the dropped digits cut towards
// plus infinity, to nearest (halves away from zero) or towards minus infinity.
#pragma once

#include <corlith/framework/String.h>

class CPCTruncationDouble {
 public:
  CPCTruncationDouble() = default;
  /// In this order: value cut type, display type, significant digits, decimal point.
  CPCTruncationDouble(int nValueCutType, int nDisplayType, int nSignificantdigit, int nDecimalPoint);
  CPCTruncationDouble(const CPCTruncationDouble&) = default;
  CPCTruncationDouble& operator=(const CPCTruncationDouble&) = default;
  virtual ~CPCTruncationDouble() = default;

  /// Same order as the four-argument constructor.
  void SetData(int nValueCutType, int nDisplayType, int nSignificantdigit, int nDecimalPoint);

  /// 0 decimal places, 1 significant digits, anything else empty text.
  int GetValueCutType() const { return m_nValueCutType; }
  void SetValueCutType(int n) { m_nValueCutType = n; }
  int GetSignificantdigit() const { return m_nSignificantdigit; }
  void SetSignificantdigit(int n) { m_nSignificantdigit = n; }
  int GetDecimalPoint() const { return m_nDecimalPoint; }
  void SetDecimalPoint(int n) { m_nDecimalPoint = n; }
  /// 0 ceiling, 1 round half away from zero, 2 floor, anything else no cut.
  int GetDisplayType() const { return m_nDisplayType; }
  void SetDisplayType(int n) { m_nDisplayType = n; }

  /// The text under the current rule; empty for an unknown value cut type.
  CString ExpressFloatingPointValue(double v) const;
  /// atof of ExpressFloatingPointValue (0.0 for an unknown value cut type).
  double ExpressFloatingPointValue2Double(double v) const;
  /// v rounded half away from zero to n decimal places (after the pre-truncation to
  /// n + 1 places of the decimal-places rule).
  static double RoundValue(const double& v, const int& n);

  /// Decimal-places rule. deliberate: pre-truncates to one digit beyond the places, so
  /// 1.23449 at 3 places gives 1.234; a result that reads as zero is always "0.0".
  CString ExpressDecimalPointType(double v) const;
  /// Significant-digits rule. deliberate: for exponents of two digits it keeps
  /// significant digits - 1 decimal places (see GetPositionOfDecimalPoint).
  CString ExpressSignificantDigitType(double v) const;

 private:
  /// atoi of the last four characters of "%.1e", plus 1. deliberate: 1 for every
  /// two-digit exponent ("e+03" converts to 0); exponent + 1 only for three digits.
  static int GetPositionOfDecimalPoint(double v);
  int GetExponentValue(double v) const;
  double GetTempTruncValue(double v) const;
  /// The "%f" precision for a "%g" text with an exponent: 0 for a whole number, else
  /// significant digits - atoi(last four characters) - 1.
  static int GetPrecision(const CString& strText, double v, int nSignificantdigit);
  /// Integer part truncated towards zero (clamped to int's range) and the rest.
  static void divide_double_value_to_int_and_float_part(double v, int& nInt, double& dFloat);
  /// The cut of the display type applied to t.
  double Cut(double t) const;

  int m_nValueCutType = 0;
  int m_nSignificantdigit = 3;
  int m_nDecimalPoint = 3;
  int m_nDisplayType = 1;
};
