// The pattern filters of CStringEx on plain views: simple terms ("*", "?", "#" and
// literals, case-sensitive), rich terms (case-insensitive, with the "'" escape and one
// numeric range term) and the bracketed combination of terms with "&", "," and "~".
//
// A term is matched by sweeps. Each sweep walks the tokens once, consuming the target from
// its front; a sweep that leaves text over starts again from the first token on the rest,
// so the filter must cover the target in whole repetitions. When the filter begins with
// "*", a literal, "#" or range token that fails drops one character (a range token: the
// whole number it read) and the sweep restarts, which makes "*X" a search.
//
// Rich terms, beyond the simple ones (settled here, tested in StringFilterTest):
//  - "<m..n>" is a range token when m is one or more digits and n one or more digits
//    and dots (read as the longest leading decimal number; bounds swapped when m > n);
//    only the first such "<" of a term is one; anything else is literal text;
//  - it consumes the longest number at the current place: one or more digits, then
//    optionally "." and one or more digits; it never takes a shorter number (R10 does
//    not match R<1..5>), and fails where no digit stands;
//  - a "*" before it drops characters up to the first digit, as before "#"; a literal
//    before it is moved to an occurrence followed by a digit, as before "#";
//  - without "*" a term must cover the target in one sweep, and a target shorter than
//    the fixed tokens plus one digit does not match (so "" never matches "<1..5>");
//  - "'" takes the next character literally; a "'" ending the term stands for itself.
#pragma once

#include <string_view>

namespace corlith {

/// Simple term, case-sensitive. An empty target matches every filter holding "*".
int MatchFilterTerm(std::string_view target, std::string_view filter);
/// Rich term: both texts upper-cased (ASCII), "'" escape, one "<m..n>" range token.
int MatchRichFilterTerm(std::string_view target, std::string_view filter);

/// The combination: bracketed terms folded strictly left to right into a result that
/// starts at 1 with "&"; "&" and, "," or, "~" and not; a "[" inside a term makes the
/// term a nested combination. An empty filter gives 0, "[*]" 1, a term with no operator
/// before it makes that (sub)filter 0; text outside brackets that is not an operator,
/// a stray "]" and a term never closed are ignored (so a filter without a complete term
/// gives 1). With `rich`, terms are rich and "'" hides the next character from the scan.
int MatchFilterCombination(std::string_view target, std::string_view filter, bool rich);

}  // namespace corlith
