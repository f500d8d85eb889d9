#pragma once

#include <cstddef>
#include <string_view>

namespace zelvo {

/// The number of terminal columns of a one-line text. Wide East Asian characters and emoji have two columns,
/// combining marks and invisible format characters none. An emoji sequence (skin tone, family, flag) has the
/// width of one emoji. Characters of ambiguous width have one column.
///
/// `text` is valid UTF-8 without control characters.
std::size_t terminalColumns(std::string_view text);

}  // namespace zelvo
