// Property records that attach named texts to a host's objects: CGProperty (a name and
// a comment, archive version 2) and CLProperty (three texts, archive version 1, texts
// never stored), each with an owning array in the library's pointer-array archive form.
#pragma once

#include <corlith/framework/Object.h>
#include <corlith/framework/String.h>
#include <corlith/values/ExPtrArray.h>

#include <utility>

class CGProperty : public CObject {
 public:
  enum { m_nVersion = 2 };

  /// Both texts empty.
  CGProperty() { Init(); }
  CGProperty(CString name, CString comment) : m_strName(std::move(name)), m_strComment(std::move(comment)) {}
  CGProperty(const CGProperty& other) : CObject() {
    Init();
    *this = other;
  }
  CGProperty& operator=(const CGProperty& other);
  ~CGProperty() override = default;

  /// Empties both texts.
  void Init();
  CString GetComment() const { return m_strComment; }
  void SetComment(const CString& comment) { m_strComment = comment; }

  /// The same object, or both texts equal (case-sensitive).
  virtual int operator==(const CGProperty& other) const;
  virtual int operator!=(const CGProperty& other) const { return !(*this == other); }
  /// Version word 2, the name, the comment. Loading a foreign version reads only its
  /// word and keeps the texts (deliberate, as every value class of the library does).
  void Serialize(CArchive& ar) override;
  /// A heap copy; the caller owns it.
  virtual CGProperty* clone() const { return new CGProperty(*this); }

  CString m_strName;
  CString m_strComment;
};

class CLProperty : public CObject {
 public:
  enum { m_nVersion = 1 };

  /// Three empty texts.
  CLProperty() { Init(); }
  CLProperty(const CLProperty& other) = default;
  CLProperty& operator=(const CLProperty& other) = default;
  ~CLProperty() override = default;

  /// Empties the three texts.
  void Init();

  /// Only the version word 1, deliberately: the texts are never stored, and loading
  /// reads and discards one word (whatever its value) and keeps the texts. Existing
  /// archives have this layout.
  void Serialize(CArchive& ar) override;
  /// A heap copy; the caller owns it.
  virtual CLProperty* clone() const { return new CLProperty(*this); }

  /// The same object, or the first and second texts equal (case-sensitive). Deliberate:
  /// the third text does not take part.
  int operator==(const CLProperty& other) const;
  int operator!=(const CLProperty& other) const { return !(*this == other); }

  CString m_strText1;
  CString m_strText2;
  CString m_strText3;  ///< ignored by the comparison
};

/// An owning array of CGProperty (deep copy, element-wise comparison, the pointer-array
/// archive form).
class CGPropertyArray : public corlith::OwningPtrArray<CGPropertyArray, CGProperty> {
 public:
  enum { m_nVersion = 1 };

  /// The first element named exactly `name` (case-sensitive), or null. Deliberate: the
  /// flag changes nothing (the original upper-cased copies under flag 0 but compared
  /// the texts as given).
  CGProperty* pGetProperty(CString name, int flag) const;
};

/// An owning array of CLProperty; its archive holds a version word per record and no
/// texts, so a loaded array has the right count of records with empty texts.
class CLPropertyArray : public corlith::OwningPtrArray<CLPropertyArray, CLProperty> {
 public:
  enum { m_nVersion = 1 };
};
