// The value tests' helpers now live in tests/support; this header keeps the files
// that include it building until they include those headers themselves.
#pragma once

#include <corlith/test/Bytes.h>
#include <corlith/test/ToleranceGuard.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>
