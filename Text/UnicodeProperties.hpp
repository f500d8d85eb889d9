#pragma once

namespace zelvo::Unicode {

/// Properties that the Unicode library reads from its data archive, which the project does not link: it would
/// answer "no" for every scalar.

/// Extended_Pictographic: emoji, and what is reserved for them.
bool isExtendedPictographic(char32_t scalar);

/// A consonant of an Indic script whose conjuncts (consonant, virama, consonant) are one character.
bool isLinkingConsonant(char32_t scalar);

/// The virama of such a script.
bool isLinkingVirama(char32_t scalar);

}  // namespace zelvo::Unicode
