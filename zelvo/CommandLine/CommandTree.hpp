#pragma once

#include <map>
#include <string>
#include <vector>

#include "zelvo/CommandLine/CommandHelp.hpp"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zelvo {

struct OptionDescription {
  std::vector<std::string> names;  ///< "-o" and "--output"
  std::string value;               ///< "FILE"; empty for a flag
  std::string description;
};

/// A command as the parser knows it: what the man page and the completions are made of.
struct CommandDescription {
  std::string path;  ///< "zelvo research check"
  std::string description;
  std::string positionals;           ///< "DECK.json"
  std::vector<std::string> choices;  ///< the values of its positional argument, if they are known
  std::vector<std::string> endings;  ///< of the files that its positional argument takes; empty for any
  std::vector<OptionDescription> options;
  std::vector<CommandDescription> subcommands;

  /// "check"
  std::string name() const { return path.substr(path.find_last_of(' ') + 1); }
};

/// The known values of positional arguments.
using Choices = std::map<const CLI::Option*, std::vector<std::string>>;

/// The command and all below it. `parent` is the path of the command above.
CommandDescription describeCommand(const CLI::App& command, const Choices& choices,
                                   const std::string& parent = "");

/// The command itself and all below it, in the order of the help.
std::vector<const CommandDescription*> flattened(const CommandDescription& command);

/// The source of the man page, for scdoc.
std::string manPage(const CommandDescription& tool);

/// A completion script for "bash", "zsh" or "fish".
std::string completionScript(const CommandDescription& tool, const std::string& shell);

}  // namespace zelvo
