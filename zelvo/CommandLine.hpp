#pragma once

#include <string>
#include <variant>
#include <vector>

#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// Everywhere, "-" as a file is standard input.
struct InspectArguments {
  std::vector<std::string> files;  ///< at least one
  bool json = false;
};

/// What rows and slides may cite.
struct SourceArguments {
  std::vector<std::string> sources;  ///< URLs
  bool noSources = false;            ///< no URL at all; otherwise an empty list is no rule
  std::string scopeFile;             ///< empty for none
};

struct ResearchCheckArguments {
  std::string dataset;  ///< a file
  bool requireChart = false;
  bool json = false;  ///< changes nothing: there is no output for people
  SourceArguments sources;
};

/// What to do: one alternative a subcommand.
using Command = std::variant<InspectArguments, ResearchCheckArguments>;

/// Nothing to do but to say this: help, the version, or what is wrong with the command line.
struct Ending {
  ExitStatus status;
  std::string output;     ///< for standard output, with its line feeds
  std::string complaint;  ///< a message without prefix and line feed; empty for none
};

/// Every value comes out as it was given: nothing is split, expanded or taken from the environment.
std::variant<Command, Ending> parseCommandLine(int count, const char* const* arguments);

}  // namespace zelvo
