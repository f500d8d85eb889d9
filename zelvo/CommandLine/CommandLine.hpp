#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
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

/// Adds `batch` and its subcommands to a command line.
class BatchParser {
 public:
  explicit BatchParser(CLI::App& tool);
  BatchParser(const BatchParser&) = delete;
  BatchParser& operator=(const BatchParser&) = delete;
  ~BatchParser();

  /// After parsing: the given subcommand; nullopt if there is none.
  std::optional<Command> command() const;

 private:
  struct Options;

  std::unique_ptr<const Options> inspect_;
  std::unique_ptr<const Options> clean_;
};

/// Adds `research` and its subcommands to a command line.
class ResearchParser {
 public:
  explicit ResearchParser(CLI::App& tool);
  ResearchParser(const ResearchParser&) = delete;
  ResearchParser& operator=(const ResearchParser&) = delete;
  ~ResearchParser();

  /// After parsing: the given subcommand; nullopt if there is none.
  std::optional<Command> command() const;

 private:
  struct Subcommands;

  std::unique_ptr<const Subcommands> subcommands_;
};

}  // namespace zelvo
