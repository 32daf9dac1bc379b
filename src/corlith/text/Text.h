// The text layer: tokenizers, the library's serialisable strings with the name-filter
// language, the extended strings with their arrays, sets, pattern filters, CSV tables and
// natural sort, significant-digit formatting and the MD5 digest of files.
#pragma once

#include <corlith/text/LString.h>
#include <corlith/text/MD5Main.h>
#include <corlith/text/NaturalOrder.h>
#include <corlith/text/PCTruncationDouble.h>
#include <corlith/text/StringEx.h>
#include <corlith/text/StringFilter.h>
#include <corlith/text/Tokenizer.h>
