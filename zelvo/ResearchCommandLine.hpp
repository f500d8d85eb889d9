#pragma once

#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace CLI {
class App;
}

namespace zelvo {

/// What rows and slides may cite.
struct SourceArguments {
  std::vector<std::string> sources;  ///< URLs
  bool noSources = false;            ///< no URL at all; otherwise an empty list is no rule
  std::string scopeFile;             ///< empty for none
};

struct ResearchCheckArguments {
  std::string dataset;  ///< a file
  bool requireChart = false;
  SourceArguments sources;
};

struct ResearchWorkbookArguments {
  std::string dataset;  ///< a file
  std::string title;
  SourceArguments sources;
  std::string output;  ///< a file, or "-" for standard output
};

struct ResearchReportArguments {
  std::string report;  ///< a file
  std::string title;
  std::vector<std::string> sources;  ///< URLs, as they are to be listed
  std::string output;                ///< a file, or "-" for standard output
};

struct ResearchPresentationArguments {
  std::string deck;      ///< a file
  std::string dataset;   ///< a file of one dataset; empty for none
  std::string datasets;  ///< a file of several; empty for none, and always where there is `dataset`
  std::vector<std::string> allowedDatasets;  ///< identifiers among `datasets`; empty for all
  SourceArguments sources;
  std::string output;  ///< a file, or "-" for standard output; empty for the deck itself as JSON
};

/// What to do: one alternative a subcommand of `zelvo research`.
using ResearchCommand = std::variant<ResearchCheckArguments, ResearchWorkbookArguments,
                                     ResearchReportArguments, ResearchPresentationArguments>;

/// Adds `research` to a tool's command line, and knows afterwards what was asked of it.
class ResearchParser {
 public:
  explicit ResearchParser(CLI::App& tool);
  ResearchParser(const ResearchParser&) = delete;
  ResearchParser& operator=(const ResearchParser&) = delete;
  ~ResearchParser();

  /// None where another command was given.
  std::optional<ResearchCommand> command() const;

 private:
  struct Subcommands;

  std::unique_ptr<const Subcommands> subcommands_;
};

}  // namespace zelvo
