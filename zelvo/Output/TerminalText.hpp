#pragma once

#include <string>
#include <string_view>

namespace zelvo {

/// The text with every byte that is not part of well-formed UTF-8 replaced by U+FFFD. File names are bytes.
std::string wellFormed(std::string_view bytes);

/// A text of one line for a terminal: well-formed, and with the characters that could drive the terminal or
/// mislead its reader (control characters, line breaks, changes of direction) written as escapes like \u{1B}.
std::string printable(std::string_view bytes);

/// A JSON text of the same value for a terminal: well-formed, and with the same characters, but for line
/// feeds, written as JSON escapes. JSON holds them in strings only.
std::string jsonForTerminal(std::string_view json);

}  // namespace zelvo
