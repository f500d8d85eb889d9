#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Unicode text operations on UTF-8. Every argument must be valid UTF-8, except for `isValid` and `isASCII`:
/// the readers check a text once, when they decode it. Pure-ASCII text never reaches the Unicode library.
///
/// A "character" is an extended grapheme cluster. CR LF is one.
///
/// The functions make no system call except for memory, so that a confined process can call them: they use
/// only data that is compiled into the Unicode library, and read no data file.
///
/// All functions are thread-safe. They throw only `std::bad_alloc`: when memory runs out, and in a change of
/// case or a composition for a text that the Unicode library cannot address (hundreds of MiB, far above every
/// reader's limit).
namespace zelvo::Unicode {

/// Whether the bytes are well-formed UTF-8: no overlong form, no surrogate, nothing above U+10FFFF.
bool isValid(std::string_view bytes);

/// Whether every byte is below 0x80.
bool isASCII(std::string_view bytes);

std::size_t characterCount(std::string_view text);

/// `characterCount(text) > limit`, stopping as soon as the answer is known.
bool exceeds(std::string_view text, std::size_t limit);

/// The first `count` characters, as a view into `text`.
std::string_view prefix(std::string_view text, std::size_t count);

/// Full case mappings of the root locale; not case folding ("straße" and "strasse" differ).
std::string lowercased(std::string_view text);
std::string uppercased(std::string_view text);

/// `text` without leading and trailing White_Space, as a view into it.
std::string_view trimmed(std::string_view text);

/// The lines of `text`, as views into it. Line breaks are LF, CR, CR LF as one, VT, FF, U+0085, U+2028 and
/// U+2029. An empty text is one empty line; a final break is followed by an empty line.
std::vector<std::string_view> lines(std::string_view text);

/// The canonical composition (NFC).
std::string composed(std::string_view text);

/// Whether `a` sorts before `b`: by the scalars of their canonically composed forms.
bool sortsBefore(std::string_view a, std::string_view b);

/// Decodes the scalar that starts at `position`, which must be inside `text`, and moves `position` past it.
char32_t nextScalar(std::string_view text, std::size_t& position);

/// Appends the scalar's encoding, of one to four bytes, to `text`.
void append(std::string& text, char32_t scalar);

}  // namespace zelvo::Unicode
