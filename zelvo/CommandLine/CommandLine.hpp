#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Output/Result.hpp"

namespace CLI {
class App;
}

namespace zelvo {

/// A text that the command line asks to print in place of a command: the help, the version, a schema
/// or a completion script.
struct Information {
  std::string text;  ///< with its line feeds
};

struct Invocation {
  Command command;
  HostArguments hosts;
};

/// Parses the command line. Values are returned as they were given: nothing is split, expanded or taken from
/// the environment. The error's status is `usage`.
Result<std::variant<Invocation, Information>> parseCommandLine(int count, const char* const* arguments);

/// The error for a command line that `tool` could not parse. A wrong command replaces the message. Hints name
/// the command or option that is nearest to a wrong one.
CommandError usageError(const CLI::App& tool, std::string message);

/// The error for arguments that exclude each other.
CommandError conflict(const std::string& message);

/// The name that was most likely meant by a mistyped one: the first with the fewest insertions, deletions,
/// replacements and swaps of neighbouring characters. Empty if more than a third of the characters differ.
std::string nearestName(std::string_view given, const std::vector<std::string>& names);

/// The error for a name that is none of `known`: "There is no KIND "NAME"".
CommandError unknownName(const std::string& kind, const std::string& name,
                         const std::vector<std::string>& known);

/// Adds `help`, `schema` and `completion` to a command line, and examples to the help of all its commands.
class InformationParser {
 public:
  explicit InformationParser(CLI::App& tool);
  InformationParser(const InformationParser&) = delete;
  InformationParser& operator=(const InformationParser&) = delete;
  ~InformationParser();

  /// After parsing: what they print; nullopt if none is given.
  std::optional<Result<Information>> information() const;

 private:
  struct Options;

  std::unique_ptr<const Options> options_;
};

/// After parsing: the arguments of the given command, or the error for those that exclude each other; nullopt
/// if another command is given.
using CommandReader = std::function<std::optional<Result<Command>>()>;

/// The reader of several commands.
CommandReader firstOf(std::vector<CommandReader> commands);

/// Each adds a command to a command line; the last two with subcommands.
CommandReader addInspect(CLI::App& tool);
CommandReader addExtract(CLI::App& tool);
CommandReader addClean(CLI::App& tool);
CommandReader addCreate(CLI::App& tool);
CommandReader addValidate(CLI::App& tool);
CommandReader addBatch(CLI::App& tool);
CommandReader addResearch(CLI::App& tool);

/// The reader of a command by the object that added it.
template <typename Parser>
CommandReader readerOf(Parser parser) {
  return [parser = std::move(parser)]() -> std::optional<Result<Command>> {
    if (!parser.isGiven()) return std::nullopt;
    return parser.arguments();
  };
}

}  // namespace zelvo
