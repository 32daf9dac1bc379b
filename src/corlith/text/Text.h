// The text layer: tokenizers and the library's serialisable strings with the
// name-filter language.
#pragma once

#include <corlith/text/LString.h>
#include <corlith/text/Tokenizer.h>
