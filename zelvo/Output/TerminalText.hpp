#pragma once

#include <string>
#include <string_view>

namespace zelvo {

/// The text with every byte that is not part of well-formed UTF-8 replaced by U+FFFD. File names, for
/// example, may be any bytes.
std::string wellFormed(std::string_view bytes);

/// The text as one line that is safe for a terminal: well-formed UTF-8, with control characters, line breaks
/// and changes of writing direction written as escapes like \u{1B}.
std::string printable(std::string_view bytes);

/// A JSON text of the same value that is safe for a terminal: well-formed UTF-8, with the same characters
/// except line feeds written as JSON escapes. In JSON they occur only in strings.
std::string jsonForTerminal(std::string_view json);

}  // namespace zelvo
