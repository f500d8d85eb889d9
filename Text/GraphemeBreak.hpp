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

/// Extended_Pictographic: emoji, and the scalars reserved for them. ICU reads this property from its data
/// archive, which the project does not link: its own function returns false for every scalar.
bool isExtendedPictographic(char32_t scalar);

}  // namespace zelvo::Unicode
