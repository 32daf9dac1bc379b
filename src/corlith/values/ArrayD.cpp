#include <corlith/values/ArrayD.h>
#include <corlith/values/SortSupport.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <unordered_set>

namespace {

// The comparators keep the original's qsort signature; the sort adapts them.
template <class T>
void SortWith(T* data, INT_PTR n, int (*compare)(const void*, const void*)) {
  corlith::MergeSort(data, static_cast<std::size_t>(n),
                     [compare](const T& a, const T& b) { return compare(&a, &b); });
}

int ReadInt(const void* p) { return *static_cast<const int*>(p); }

}  // namespace

void CArrayD::Sort(const int& nAscending) {
  SortWith(GetData(), GetSize(), nAscending ? CompareForAscending : CompareForDescending);
}

int CArrayD::GetMinElementIndex() const {
  if (IsEmpty()) AfxThrowInvalidArgException();
  int best = 0;
  for (INT_PTR i = 1; i < GetSize(); ++i) {
    if ((*this)[i] < (*this)[best]) best = static_cast<int>(i);
  }
  return best;
}

double CArrayD::SumTotal() const {
  double sum = 0.0;
  for (double d : *this) sum += d;
  return sum;
}

int CArrayD::CompareForAscending(const void* a, const void* b) {
  const double diff = *static_cast<const double*>(a) - *static_cast<const double*>(b);
  return (diff > 0) - (diff < 0);
}

int CArrayD::CompareForDescending(const void* a, const void* b) { return -CompareForAscending(a, b); }

BOOL CArrayN::IsExist(int n) const { return std::find(begin(), end(), n) != end(); }

BOOL CArrayN::AddNotDuplication(int n) {
  if (IsExist(n)) return FALSE;
  Add(n);
  return TRUE;
}

void CArrayN::Add_in_SetMode(const int& n) { static_cast<void>(AddNotDuplication(n)); }

void CArrayN::Remove(const int& n) {
  const int value = n;  // n may refer into this array
  for (INT_PTR i = GetSize() - 1; i >= 0; --i) {
    if ((*this)[i] == value) RemoveAt(i);
  }
}

void CArrayN::RemoveDuplicateElements() {
  std::unordered_set<int> seen;
  seen.reserve(static_cast<std::size_t>(GetSize()));
  int* data = GetData();
  INT_PTR kept = 0;
  for (INT_PTR i = 0; i < GetSize(); ++i) {
    if (seen.insert(data[i]).second) data[kept++] = data[i];
  }
  SetSize(kept);
}

int CArrayN::GetMaxVal() const { return IsEmpty() ? INT_MIN : *std::max_element(begin(), end()); }

int CArrayN::SumTotal() const {
  std::uint32_t sum = 0;
  for (int n : *this) sum += static_cast<std::uint32_t>(n);
  return static_cast<int>(sum);
}

void CArrayN::Sort(const int& nAscending) {
  SortWith(GetData(), GetSize(), nAscending ? CompareForAscending : CompareForDescending);
}

int CArrayN::CompareForAscending(const void* a, const void* b) {
  return corlith::WrappedDifferenceSign(ReadInt(a), ReadInt(b));
}

int CArrayN::CompareForDescending(const void* a, const void* b) {
  return corlith::WrappedDifferenceSign(ReadInt(b), ReadInt(a));
}

int CNArrayL::GetMaxVal() const { return IsEmpty() ? INT_MIN : *std::max_element(begin(), end()); }

int CNArrayL::GetMinVal() const { return IsEmpty() ? INT_MAX : *std::min_element(begin(), end()); }

void CNArrayL::Sort(int nAscending) {
  SortWith(GetData(), GetSize(), nAscending ? Compare4Ascending : Compare4Descending);
}

int CNArrayL::Compare4Ascending(const void* a, const void* b) {
  return corlith::WrappedDifferenceSign(ReadInt(a), ReadInt(b));
}

int CNArrayL::Compare4Descending(const void* a, const void* b) {
  return corlith::WrappedDifferenceSign(ReadInt(b), ReadInt(a));
}

int CNArrayL::operator==(const CNArrayL& other) const {
  return this == &other || (GetSize() == other.GetSize() && std::equal(begin(), end(), other.begin()));
}

void CNArrayL::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    corlith::StoreVersion(ar, m_nVersion);
    ar << static_cast<int>(GetSize());
    for (int n : *this) ar << n;
    return;
  }
  RemoveAll();
  if (!corlith::LoadVersion(ar, m_nVersion)) return;
  int count = 0;
  ar >> count;
  if (count < 1) return;
  corlith::LoadCounted(ar, *this, static_cast<ULONGLONG>(count), sizeof(int), corlith::RawElements{});
}
