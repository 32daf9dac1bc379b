#include <corlith/values/DWordArrayEx.h>

#include <algorithm>
#include <memory>

BOOL CDWordArrayEx::IsSameData(const CDWordArray& a, const CDWordArray& b) {
  return a.GetSize() == b.GetSize() && std::equal(a.begin(), a.end(), b.begin());
}

BOOL CDWordArrayEx::IsSameData(const CDWordArray& a, const CDWordArray& b, int n) {
  if (a.GetSize() <= n || b.GetSize() <= n) return FALSE;
  if (n < 0) return TRUE;
  return std::equal(a.begin(), a.begin() + n + 1, b.begin());
}

namespace {

template <class ARRAY, class ELEM>
void AppendCopies(ARRAY& to, const ARRAY& from) {
  if (&to == &from) {
    const ARRAY snapshot(from);  // NOLINT(performance-unnecessary-copy-initialization): appending to itself
                                 // needs what was there first
    AppendCopies<ARRAY, ELEM>(to, snapshot);
    return;
  }
  for (const ELEM* p : from) {
    std::unique_ptr<ELEM> copy(p ? new ELEM(*p) : nullptr);
    to.CArray<ELEM*, ELEM*>::Add(copy.get());
    static_cast<void>(copy.release());  // the array owns it now
  }
}

}  // namespace

void CDWordArrayArray::Copy(const CDWordArrayArray& other) {
  AppendCopies<CDWordArrayArray, CDWordArray>(*this, other);
}

void CDWordArrayArrayArray::Copy(const CDWordArrayArrayArray& other) {
  AppendCopies<CDWordArrayArrayArray, CDWordArrayArray>(*this, other);
}

BOOL CDWordArraySet::IsExist(const CDWordArray* p) const {
  if (!p) return FALSE;
  return std::any_of(begin(), end(),
                     [p](const CDWordArray* held) { return held && CDWordArrayEx::IsSameData(*held, *p); });
}

BOOL CDWordArraySet::Add(CDWordArray* p) {
  if (!p || IsExist(p)) return FALSE;
  CArray<CDWordArray*, CDWordArray*>::Add(p);
  return TRUE;
}
