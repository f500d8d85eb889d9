#pragma once

#include <string_view>

/// Standard output and standard error, in the order in which a person is to read them.
namespace zelvo::Console {

void print(std::string_view text);

/// Prints a JSON text: exactly these bytes, or on a terminal `jsonForTerminal` of them.
void printJson(std::string_view json);

/// Writes "zelvo: ", the message and a line feed on standard error, after all that was printed before.
/// Characters that would move the cursor or reorder text are written as escapes.
void complain(std::string_view message);

/// Writes a further line below a complaint, made harmless likewise.
void hint(std::string_view text);

/// Whether standard output is a terminal.
bool isTerminal();

/// Whether all that was printed has been written.
bool finish();

}  // namespace zelvo::Console
