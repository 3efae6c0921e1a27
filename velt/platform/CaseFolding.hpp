#pragma once

#include <string>
#include <string_view>

namespace velt {

// The case-folded form of UTF-8 text (Unicode default full folding): two texts
// that differ only in letter case fold to the same bytes ("Straße", "STRASSE"
// and "strasse" all give "strasse"). Used to compare keys without regard to
// case. Malformed bytes are kept as they are.
std::string FoldCase(std::string_view text);
// The same into folded, reusing its storage (for lookups in a loop).
void FoldCase(std::string_view text, std::string& folded);

}  // namespace velt
