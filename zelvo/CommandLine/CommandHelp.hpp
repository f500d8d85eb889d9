#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zelvo {

/// A command line, and what it is for. Its files are those of the tests that run it.
struct CommandExample {
  std::string_view line;
  std::string_view purpose;
};

/// What the help of a command says after its options.
struct CommandHelp {
  std::string_view command;  ///< "zelvo research check"
  std::span<const CommandExample> examples;
  std::string_view remarks = {};  ///< paragraphs; may be empty
};

/// The help of a command, or of the tool itself. Throws `std::out_of_range` if it has none.
const CommandHelp& helpOf(std::string_view command);

/// The exit statuses, for the end of every help.
extern const std::string_view exitStatusHelp;

/// All of it as text.
std::string footer(const CommandHelp& help);

}  // namespace zelvo
