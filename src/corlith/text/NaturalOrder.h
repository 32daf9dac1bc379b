// The natural order of CStringSorter::CompareStringA on plain views: embedded digit runs
// compare by value, everything else byte by byte as signed characters. The order keeps
// every irregularity of the original, listed here so nobody "fixes" one:
//  1. a shorter a is before b exactly when b is not before a; so a text sorts after each
//     of its proper prefixes, and the empty text before every other text;
//  2. the digit runs met during one comparison are appended to two collecting texts that
//     are never cleared, and it is those whole texts that are converted and compared
//     (A1B2 against A1B3 compares 12 with 13);
//  3. equal numbers: the longer collected text (more leading zeros) is before;
//  4. after an equal digit run the index continues from the end of b's run and then
//     steps once more, so the character after b's run is never compared (A1B and A1C are
//     neither before the other) and a's run may be longer than b's without effect;
//  5. non-digits compare as signed 8-bit values, so bytes of 128 and above come first;
//  6. deliberate, where the original's atoi is undefined: a collected text beyond int's
//     range converts to INT_MAX (digits only, so never negative).
// For all that, it is a strict weak order: wherever the walk decides, both texts agree
// on every character it has passed, so the collected texts and the skipped character
// (4) are alike on both sides, and "neither before the other" is an equivalence (the
// tests check every text up to a few characters over letters and digits). That is why
// SortStringArray's insertion procedure is exactly a stable sort.
#pragma once

#include <string_view>

namespace corlith {

/// 1 when a sorts before b in the natural order above, else 0.
int NaturalBefore(std::string_view a, std::string_view b);

}  // namespace corlith
