// The framework's ready-made arrays: strings and plain 32-, 16- and 8-bit numbers.
// CStringArray stores the count then each string in the string form; CDWordArray the
// count then the raw 4-byte values (CWordArray 2-byte, CByteArray 1-byte). CUIntArray
// has no archive form, as in the original.
#pragma once

#include <corlith/framework/Array.h>
#include <corlith/framework/String.h>

class CStringArray : public CArray<CString, const CString&> {};

class CDWordArray : public CArray<DWORD, DWORD> {};
class CWordArray : public CArray<WORD, WORD> {};
class CByteArray : public CArray<BYTE, BYTE> {};

class CUIntArray : public CArray<UINT, UINT> {
 public:
  /// Not serialisable in the original: storing or loading throws CNotSupportedException.
  void Serialize(CArchive& ar) override;
};
