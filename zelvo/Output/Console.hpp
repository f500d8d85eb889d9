#pragma once

#include <cstddef>
#include <string_view>

#include "zelvo/Output/Result.hpp"

/// Standard output and standard error, kept in the order in which they are written.
namespace zelvo::Console {

void print(std::string_view text);

/// Prints a JSON text: exactly these bytes, or on a terminal `jsonForTerminal` of them.
void printJson(std::string_view json);

/// Writes "zelvo: ", the message and a line feed to standard error, after all that was printed before.
/// Characters that would move the cursor or reorder text are written as escapes.
void printError(std::string_view message);

/// Writes the error as above, then each of its hints as a line that begins with "zelvo: hint: ". Returns the
/// error's status.
ExitStatus report(const CommandError& error);

/// Writes a further line to standard error, escaped in the same way.
void printNote(std::string_view text);

/// True if standard output is a terminal.
bool isTerminal();

/// The columns of the terminal that is standard output; 0 if it is none, or does not tell.
std::size_t terminalWidth();

/// Flushes standard output. False if any write to it failed.
bool finish();

}  // namespace zelvo::Console
