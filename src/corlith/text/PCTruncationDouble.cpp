#include <corlith/framework/Numeric.h>
#include <corlith/text/LString.h>
#include <corlith/text/PCTruncationDouble.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace {

// Extreme digit counts would overflow int in the original's arithmetic; clamping keeps
// the result defined (pow then gives 0 or infinity, as for any huge exponent).
int ClampToInt(std::int64_t v) {
  if (v > INT32_MAX) return INT32_MAX;
  if (v < INT32_MIN) return INT32_MIN;
  return static_cast<int>(v);
}

// atoi of the last four characters of a "%e" or "%g" text: the exponent when it has three
// digits, 0 for a two-digit one ("e+03"), as the original reads it.
int LastFourAsInt(const CString& text) { return corlith::SaturatingAtoi(text.Right(4).view()); }

}  // namespace

CPCTruncationDouble::CPCTruncationDouble(int nValueCutType, int nDisplayType, int nSignificantdigit,
                                         int nDecimalPoint) {
  SetData(nValueCutType, nDisplayType, nSignificantdigit, nDecimalPoint);
}

void CPCTruncationDouble::SetData(int nValueCutType, int nDisplayType, int nSignificantdigit,
                                  int nDecimalPoint) {
  m_nValueCutType = nValueCutType;
  m_nDisplayType = nDisplayType;
  m_nSignificantdigit = nSignificantdigit;
  m_nDecimalPoint = nDecimalPoint;
}

CString CPCTruncationDouble::ExpressFloatingPointValue(double v) const {
  switch (m_nValueCutType) {
    case 0:
      return ExpressDecimalPointType(v);
    case 1:
      return ExpressSignificantDigitType(v);
    default:
      return {};
  }
}

double CPCTruncationDouble::ExpressFloatingPointValue2Double(double v) const {
  return std::atof(ExpressFloatingPointValue(v).GetString());
}

double CPCTruncationDouble::RoundValue(const double& v, const int& n) {
  const CPCTruncationDouble rule(0, 1, 10, n);
  return rule.ExpressFloatingPointValue2Double(v);
}

double CPCTruncationDouble::Cut(double t) const {
  switch (m_nDisplayType) {
    case 0:
      return std::ceil(t);
    case 1:
      return t < 0 ? std::ceil(t - 0.5) : std::floor(t + 0.5);
    case 2:
      return std::floor(t);
    default:
      return t;
  }
}

CString CPCTruncationDouble::ExpressDecimalPointType(double v) const {
  const int p = m_nDecimalPoint;
  double a = v * std::pow(10.0, p + 1.0);
  a = a > 0 ? std::floor(a) : std::ceil(a);
  const double t = Cut(a / 10.0);
  CString text;
  text.Format("%.*f", p, t / std::pow(10.0, p));
  if (std::atof(text.GetString()) == 0.0) text = "0.0";
  return text;
}

int CPCTruncationDouble::GetPositionOfDecimalPoint(double v) {
  CString text;
  text.Format("%.1e", v);
  return LastFourAsInt(text) + 1;
}

int CPCTruncationDouble::GetExponentValue(double v) const {
  return ClampToInt(std::int64_t{m_nSignificantdigit} - GetPositionOfDecimalPoint(v));
}

double CPCTruncationDouble::GetTempTruncValue(double v) const {
  return v * std::pow(10.0, GetExponentValue(v));
}

void CPCTruncationDouble::divide_double_value_to_int_and_float_part(double v, int& nInt, double& dFloat) {
  nInt = corlith::TruncateClamped<int>(v);
  dFloat = v - static_cast<double>(nInt);
}

int CPCTruncationDouble::GetPrecision(const CString& strText, double v, int nSignificantdigit) {
  const int exponent = LastFourAsInt(strText);
  int whole = 0;
  double fraction = 0.0;
  divide_double_value_to_int_and_float_part(v, whole, fraction);
  if (fraction == 0.0) return 0;
  return ClampToInt(std::int64_t{nSignificantdigit} - exponent - 1);
}

CString CPCTruncationDouble::ExpressSignificantDigitType(double v) const {
  const double t = Cut(GetTempTruncValue(v));
  double r = t / std::pow(10.0, GetExponentValue(v));
  // A value cut to zero from below is -0.0; the stored results show it as "0".
  if (r == 0.0) r = 0.0;
  CString text;
  text.Format("%g", r);
  if (text.Find('e') >= 0) {
    const int precision = GetPrecision(text, r, m_nSignificantdigit);
    text.Format("%*.*f", 0, precision, r);
  }
  return text;
}
