// The scalar type names of the host framework, mapped to fixed-width types.
// Archive sizes depend on these: LONG, DWORD, UINT and BOOL are 4 bytes on every
// platform (unlike C++'s long), INT_PTR is the signed 64-bit count of arrays.
#pragma once

#include <cstddef>
#include <cstdint>

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using INT = int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
// long long rather than int64_t, so that `long` (4 bytes on Windows, 8 on Linux) stays
// a distinct type that archives can refuse.
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;
using COLORREF = DWORD;
using TCHAR = char;
using LPSTR = char*;
using LPCSTR = const char*;
using LPTSTR = char*;
using LPCTSTR = const char*;
using LPVOID = void*;
using LPCVOID = const void*;

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

static_assert(sizeof(INT_PTR) == 8, "Corlith targets 64-bit platforms");
