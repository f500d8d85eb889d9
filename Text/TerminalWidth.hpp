#pragma once

#include <cstddef>
#include <string_view>

namespace zelvo {

/// How many columns a terminal takes to show a text of one line: wide East Asian characters and emoji take
/// two; combining marks and invisible format characters none. What joins into one picture (an emoji with a
/// skin tone, a family, a flag) counts as that picture. Characters of ambiguous width count as one.
///
/// `text` is valid UTF-8 without control characters.
std::size_t terminalColumns(std::string_view text);

}  // namespace zelvo
