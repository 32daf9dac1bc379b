// CExPtrArray: the framework array of raw element pointers with pointer-identity
// look-ups and explicit deletion. The bare template does not own: its destructor frees
// only the slots. corlith::OwningPtrArray adds the members every named array of heap
// elements shares (owning destructor, deep copy through clone, element-wise equality,
// the pointer-array archive form); each named array derives from it once.
#pragma once

#include <corlith/framework/Array.h>
#include <corlith/values/ArchiveConventions.h>
#include <corlith/values/HashIndex.h>

#include <algorithm>
#include <type_traits>
#include <unordered_map>

template <class TYPE, class ARG_TYPE = TYPE>
class CExPtrArray : public CArray<TYPE, ARG_TYPE> {
  static_assert(std::is_pointer_v<TYPE>, "CExPtrArray holds element pointers");
  using Base = CArray<TYPE, ARG_TYPE>;

 public:
  using Base::Base;
  ~CExPtrArray() override = default;

  /// The pointer, or null when i is out of range (never throws, unlike CArray::GetAt).
  TYPE GetAt(INT_PTR i) const { return i >= 0 && i < this->GetSize() ? Base::GetAt(i) : nullptr; }
  /// Replaces slot i; ignored when i is out of range (no growth, no deletion).
  void SetAt(INT_PTR i, TYPE p) {
    if (i >= 0 && i < this->GetSize()) Base::SetAt(i, p);
  }
  INT_PTR GetLastIndex() const { return this->GetSize() - 1; }
  /// Null when empty.
  TYPE GetLastElement() const { return GetAt(GetLastIndex()); }
  bool IsValidIndex(const int& i) const { return i >= 0 && i < this->GetSize(); }
  /// First index holding this very pointer; -1 when absent.
  int FindIndex(TYPE const p) const {
    for (INT_PTR i = 0; i < this->GetSize(); ++i) {
      if (Base::GetAt(i) == p) return static_cast<int>(i);
    }
    return -1;
  }
  bool Exists(TYPE const p) const { return FindIndex(p) != -1; }
  /// -1 when this pointer is already held, else appends it and returns its index.
  INT_PTR Add_if_only_do_not_exists(TYPE p) { return Exists(p) ? -1 : this->Add(p); }
  /// Removes the first slot holding p without deleting the object.
  bool Remove(TYPE const p) {
    const int i = FindIndex(p);
    if (i < 0) return false;
    this->RemoveAt(i);
    return true;
  }
  /// Detaches the last pointer; the caller owns it. Null when empty.
  TYPE RemoveLastElement() {
    if (this->IsEmpty()) return nullptr;
    TYPE p = Base::GetAt(GetLastIndex());
    this->RemoveAt(GetLastIndex());
    return p;
  }
  /// Removes every null slot (nothing is deleted).
  virtual void RemoveNullElement() {
    for (INT_PTR i = GetLastIndex(); i >= 0; --i) {
      if (Base::GetAt(i) == nullptr) this->RemoveAt(i);
    }
  }
  /// Keeps the first slot of each pointer; later slots holding it are removed, not deleted.
  virtual void RemoveDuplicatedElements() {
    corlith::RemoveLaterDuplicates(*this, [](TYPE p) { return p; });
  }
  void Reverse() {
    const INT_PTR n = this->GetSize();
    TYPE* data = this->GetData();
    for (INT_PTR i = 0; i < n / 2; ++i) std::swap(data[i], data[n - 1 - i]);
  }
  /// Removes (without deleting) the first occurrence here of each pointer of other: a
  /// pointer other holds k times loses its first k slots here.
  void Subtract(const CArray<TYPE, ARG_TYPE>& other) {
    if (other.IsEmpty() || this->IsEmpty()) return;
    // One pass instead of a scan per pointer. Subtracting the array from itself empties it.
    std::unordered_map<TYPE, INT_PTR> pending;
    for (TYPE p : other) ++pending[p];
    TYPE* slots = this->GetData();
    INT_PTR kept = 0;
    for (INT_PTR i = 0; i < this->GetSize(); ++i) {
      const auto found = pending.find(slots[i]);
      if (found != pending.end() && found->second > 0) {
        --found->second;
        continue;
      }
      slots[kept++] = slots[i];
    }
    this->SetSize(kept);
  }
  /// Same count and the same pointer at every index.
  bool IsElementEqual(const CArray<TYPE, ARG_TYPE>& other) const {
    if (other.GetSize() != this->GetSize()) return false;
    for (INT_PTR i = 0; i < this->GetSize(); ++i) {
      if (Base::GetAt(i) != other.GetAt(i)) return false;
    }
    return true;
  }
  /// Moves slots first..last to the end of dest in their order; false when last < first.
  /// Indices outside this array throw CInvalidArgException (nothing moved before that).
  bool MoveElementTo(CArray<TYPE, ARG_TYPE>& dest, const int& first, const int& last) {
    if (last < first) return false;
    if (first < 0 || last >= this->GetSize() || &dest == this) AfxThrowInvalidArgException();
    const INT_PTR at = dest.GetSize();
    for (int i = last; i >= first; --i) {
      dest.InsertAt(at, Base::GetAt(i));
      this->RemoveAt(i);
    }
    return true;
  }
  /// Deletes the object held at the first slot holding p and removes the slot.
  bool Delete(TYPE p) {
    const int i = FindIndex(p);
    if (i < 0) return false;
    delete p;
    this->RemoveAt(i);
    return true;
  }
  void DeleteAll() {
    for (TYPE p : *this) delete p;
    this->RemoveAll();
  }
  /// n times: deletes the object at index and removes its slot. A range past the end
  /// throws CInvalidArgException before anything is deleted.
  void DeleteAt(int index, int n = 1) {
    if (n <= 0) return;
    if (index < 0 || static_cast<INT_PTR>(index) + n > this->GetSize()) AfxThrowInvalidArgException();
    for (int k = 0; k < n; ++k) {
      delete Base::GetAt(index);
      this->RemoveAt(index);
    }
  }
  bool DeleteLastElement() {
    if (this->IsEmpty()) return false;
    delete Base::GetAt(GetLastIndex());
    this->RemoveAt(GetLastIndex());
    return true;
  }
};

namespace corlith {

namespace detail {

/// A heap copy of an element: through its clone when it has one, else (the framework's
/// own arrays, such as CDWordArray) through its copy constructor.
template <class ELEM>
ELEM* CloneElement(const ELEM& e) {
  if constexpr (requires { e.clone(); }) {
    return static_cast<ELEM*>(e.clone());
  } else {
    return new ELEM(e);
  }
}

/// Elements differ: through their operator!= when they have one, else (framework
/// arrays) by count and elements in order.
template <class ELEM>
bool ElementsDiffer(ELEM& a, const ELEM& b) {
  if constexpr (requires { a.operator!=(b); }) {
    return a.operator!=(b) != 0;
  } else {
    return a.GetSize() != b.GetSize() || !std::equal(a.begin(), a.end(), b.begin());
  }
}

}  // namespace detail

/// The members shared by every named array of heap elements: Derived is the named
/// array, ELEM its element class (virtual destructor, clone, operator!=, Serialize; a
/// framework array without clone and operator!= is copied and compared by content).
/// The array owns its elements: destruction and Init delete them, assignment deep-copies.
template <class Derived, class ELEM>
class OwningPtrArray : public CExPtrArray<ELEM*, ELEM*> {
 public:
  OwningPtrArray() = default;
  OwningPtrArray(const OwningPtrArray& other) : CExPtrArray<ELEM*, ELEM*>() { *this = other; }
  ~OwningPtrArray() override { this->DeleteAll(); }

  /// Deep copy: the current elements are deleted, then each source element is cloned.
  OwningPtrArray& operator=(const OwningPtrArray& other) {
    if (this == &other) return *this;
    this->DeleteAll();
    for (ELEM* p : other) {
      std::unique_ptr<ELEM> copy(p ? detail::CloneElement(*p) : nullptr);
      this->Add(copy.get());
      static_cast<void>(copy.release());  // the array owns it now
    }
    return *this;
  }

  /// Deletes every element.
  void Init() { this->DeleteAll(); }

  // The framework array's element-wise copies would share elements between two owners
  // (and delete them twice): an owning array copies only by operator=, which clones.
  void Copy(const CArray<ELEM*, ELEM*>&) = delete;
  INT_PTR Append(const CArray<ELEM*, ELEM*>&) = delete;
  void InsertAt(INT_PTR, const CArray<ELEM*, ELEM*>*) = delete;
  using CExPtrArray<ELEM*, ELEM*>::InsertAt;

  /// Element-wise through the elements' virtual operator!=; two null slots are equal.
  /// The left elements are the ones asked, as in the original, so an element whose
  /// comparison changes it (CFRect normalises itself) is changed by this one too.
  virtual int operator==(const OwningPtrArray& other) const {
    if (this == &other) return TRUE;
    if (this->GetSize() != other.GetSize()) return FALSE;
    for (INT_PTR i = 0; i < this->GetSize(); ++i) {
      ELEM* a = this->GetAt(i);
      const ELEM* b = other.GetAt(i);
      if (!a || !b) {
        if (a != b) return FALSE;
        continue;
      }
      if (detail::ElementsDiffer(*a, *b)) return FALSE;
    }
    return TRUE;
  }
  virtual int operator!=(const OwningPtrArray& other) const { return !(*this == other); }
  /// A heap copy made by the copy constructor; the caller owns it.
  virtual Derived* clone() const { return new Derived(static_cast<const Derived&>(*this)); }

  void Serialize(CArchive& ar) override { SerializePointerArray<ELEM>(ar, *this); }
};

/// The members shared by every named array of values: Derived is the named array,
/// ELEM its element (a number or a value class with operator!= and Serialize), ARG
/// the argument type of Add and SetAt (numbers are passed by value).
template <class Derived, class ELEM, class ARG = ELEM&>
class ValueArray : public CArray<ELEM, ARG> {
 public:
  /// Empties the array.
  void Init() { this->RemoveAll(); }

  /// Same count and no pair of elements at the same index differs (by operator!=).
  virtual int operator==(const ValueArray& other) const {
    if (this == &other) return TRUE;
    if (this->GetSize() != other.GetSize()) return FALSE;
    for (INT_PTR i = 0; i < this->GetSize(); ++i) {
      if constexpr (std::is_class_v<ELEM>) {
        if ((*this)[i].operator!=(other[i])) return FALSE;
      } else if ((*this)[i] != other[i]) {
        return FALSE;
      }
    }
    return TRUE;
  }
  virtual int operator!=(const ValueArray& other) const { return !(*this == other); }
  /// A heap copy; the caller owns it.
  virtual Derived* clone() const { return new Derived(static_cast<const Derived&>(*this)); }

  void Serialize(CArchive& ar) override { SerializeValueArray(ar, *this); }
};

}  // namespace corlith
