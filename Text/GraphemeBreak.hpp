#pragma once

#include <cstddef>
#include <string_view>

namespace zelvo::Unicode {

/// The end of the character that starts at `start`, a boundary below the size of `text`. Both are byte
/// offsets. Takes time linear in the character's length.
///
/// The boundaries are those of ICU 72's root locale: extended grapheme clusters as in Unicode Standard Annex
/// #29, and the conjuncts of six Indic scripts.
std::size_t characterEnd(std::string_view text, std::size_t start);

}  // namespace zelvo::Unicode
