#include <corlith/values/IntPair.h>
#include <corlith/values/SortSupport.h>

#include <climits>
#include <memory>

namespace {

// The hand-over from Sort to Compare. The original used two process-wide variables;
// per-thread ones give the same results without a race between concurrent sorts.
thread_local int t_sortKey = 0;
thread_local int t_sortAscending = 1;

template <class ARRAY, class ELEM, class... ARGS>
void AppendNew(ARRAY& array, ARGS&&... args) {
  auto element = std::make_unique<ELEM>(std::forward<ARGS>(args)...);
  array.Add(element.get());
  static_cast<void>(element.release());  // the array owns it now
}

template <class ARRAY, class PRED>
int FirstIndex(const ARRAY& array, PRED pred) {
  for (INT_PTR i = 0; i < array.GetSize(); ++i) {
    const auto* p = array.GetAt(i);
    if (p && pred(*p)) return static_cast<int>(i);
  }
  return -1;
}

}  // namespace

void CIntPair::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, integer1, integer2); }

void CIntDoublePair::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, integer, dValue); }

void CIntStringPair::Serialize(CArchive& ar) { corlith::SerializeFields(ar, m_nVersion, integer, string); }

void CIntPairArray::AddElement(int n1, int n2) { AppendNew<CIntPairArray, CIntPair>(*this, n1, n2); }

void CIntPairArray::SetPairDataInArray(int n, int n1, int n2) {
  for (int i = 0; i < n; ++i) AddElement(n1, n2);
}

int CIntPairArray::GetMathchIndexInInt1(int n) const {
  return FirstIndex(*this, [n](const CIntPair& p) { return p.integer1 == n; });
}

int CIntPairArray::GetMathchIndexInInt2(int n) const {
  return FirstIndex(*this, [n](const CIntPair& p) { return p.integer2 == n; });
}

int CIntPairArray::GetMatchInteger1(int n) const {
  const int i = GetMathchIndexInInt2(n);
  return i < 0 ? INT_MIN : GetAt(i)->integer1;
}

int CIntPairArray::GetMatchInteger2(int n) const {
  const int i = GetMathchIndexInInt1(n);
  return i < 0 ? INT_MIN : GetAt(i)->integer2;
}

void CIntStringPairArray::AddElement(int n, const CString& s) {
  AppendNew<CIntStringPairArray, CIntStringPair>(*this, n, s);
}

int CIntStringPairArray::GetMathchIndex(int n) const {
  return FirstIndex(*this, [n](const CIntStringPair& p) { return p.integer == n; });
}

int CIntStringPairArray::GetMathchIndex(const CString& s) const {
  return FirstIndex(*this, [&s](const CIntStringPair& p) { return p.string == s; });
}

CString CIntStringPairArray::GetMatchString(int n) const {
  const int i = GetMathchIndex(n);
  return i < 0 ? CString() : GetAt(i)->string;
}

int CIntStringPairArray::GetMatchInteger(const CString& s) const {
  const int i = GetMathchIndex(s);
  return i < 0 ? INT_MIN : GetAt(i)->integer;
}

void CIntStringPairArray::Sort(int nKey, int nAscending) {
  t_sortKey = nKey;
  t_sortAscending = nAscending;
  corlith::MergeSort(GetData(), static_cast<std::size_t>(GetSize()),
                     [](CIntStringPair* const& a, CIntStringPair* const& b) { return Compare(&a, &b); });
}

int CIntStringPairArray::Compare(const void* a, const void* b) {
  const CIntStringPair* pa = *static_cast<const CIntStringPair* const*>(a);
  const CIntStringPair* pb = *static_cast<const CIntStringPair* const*>(b);
  // A null slot sorts as the default pair.
  static const CIntStringPair kZero;
  if (!pa) pa = &kZero;
  if (!pb) pb = &kZero;
  int result = 0;
  if (t_sortKey == 0) {
    result = corlith::WrappedDifferenceSign(pa->integer, pb->integer);
  } else if (t_sortKey == 1) {
    const int collated = pa->string.CollateNoCase(pb->string);
    result = (collated > 0) - (collated < 0);
  }
  return t_sortAscending ? result : -result;
}
