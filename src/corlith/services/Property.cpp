#include <corlith/services/Property.h>

#include <corlith/values/ArchiveConventions.h>

CGProperty& CGProperty::operator=(const CGProperty& other) {
  if (this != &other) {
    m_strName = other.m_strName;
    m_strComment = other.m_strComment;
  }
  return *this;
}

void CGProperty::Init() {
  m_strName.Empty();
  m_strComment.Empty();
}

int CGProperty::operator==(const CGProperty& other) const {
  return this == &other || (m_strName == other.m_strName && m_strComment == other.m_strComment);
}

void CGProperty::Serialize(CArchive& ar) {
  corlith::SerializeFields(ar, m_nVersion, m_strName, m_strComment);
}

void CLProperty::Init() {
  m_strText1.Empty();
  m_strText2.Empty();
  m_strText3.Empty();
}

void CLProperty::Serialize(CArchive& ar) {
  if (ar.IsStoring()) {
    corlith::StoreVersion(ar, m_nVersion);
  } else {
    static_cast<void>(corlith::LoadVersion(ar, m_nVersion));
  }
}

int CLProperty::operator==(const CLProperty& other) const {
  return this == &other || (m_strText1 == other.m_strText1 && m_strText2 == other.m_strText2);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the interface takes the name by value
CGProperty* CGPropertyArray::pGetProperty(CString name, int /*flag*/) const {
  for (CGProperty* property : *this) {
    if (property && property->m_strName == name) return property;
  }
  return nullptr;
}
