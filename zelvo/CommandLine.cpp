#include "zelvo/CommandLine.hpp"

#include <algorithm>
#include <sstream>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

namespace zelvo {
namespace {

constexpr const char* footer =
    R"("-" as a file is standard input.

Exit status: 0 success, 1 a document was refused or a file could not be read, 2 wrong usage,
3 the worker could not be run or broke; with several files the highest.)";

/// CLI11 takes a list's value that looks like "[a,b]" apart. A NUL, which no argument can hold, hides the
/// bracket.
constexpr char guard = '\0';

std::string guarded(std::string_view value) {
  std::string text(value);
  if (text.starts_with('[') && text.ends_with(']')) text += guard;
  return text;
}

std::string withoutGuards(std::string text) {
  std::erase(text, guard);
  return text;
}

/// A list's values, unguarded and past CLI11's conversions.
std::vector<std::string> values(const CLI::Option& option) {
  std::vector<std::string> list = option.results();
  std::transform(list.begin(), list.end(), list.begin(), withoutGuards);
  return list;
}

class InspectParser {
 public:
  explicit InspectParser(CLI::App& tool) {
    CLI::App* command = tool.add_subcommand("inspect", "Describe the sheets of XLSX workbooks");
    files_ = command->add_option("BOOK.xlsx", given_.files, "Workbooks")->required()->type_name("");
    command->add_flag("--json", given_.json, "Print one JSON record a line");
  }
  InspectParser(const InspectParser&) = delete;
  InspectParser& operator=(const InspectParser&) = delete;
  ~InspectParser() = default;

  InspectArguments arguments() const { return {.files = values(*files_), .json = given_.json}; }

 private:
  InspectArguments given_;
  CLI::Option* files_ = nullptr;
};

/// The options by which every research command is told what may be cited.
class SourceOptions {
 public:
  explicit SourceOptions(CLI::App& command) {
    // One value each: what follows may be a file.
    sources_ = command.add_option("--source", given_.sources, "A URL that may be cited; repeat for more")
                   ->type_name("URL")
                   ->allow_extra_args(false);
    command.add_flag("--no-sources", given_.noSources, "No URL may be cited")->excludes(sources_);
    command.add_option("--scope", given_.scopeFile, "The trusted evidence")->type_name("SCOPE.json");
  }
  SourceOptions(const SourceOptions&) = delete;
  SourceOptions& operator=(const SourceOptions&) = delete;
  ~SourceOptions() = default;

  SourceArguments arguments() const {
    return {.sources = values(*sources_),
            .noSources = given_.noSources,
            .scopeFile = withoutGuards(given_.scopeFile)};
  }

 private:
  SourceArguments given_;
  CLI::Option* sources_ = nullptr;
};

class ResearchCheckParser {
 public:
  explicit ResearchCheckParser(CLI::App& research)
      : command_(research.add_subcommand("check", "Validate a dataset and compute its formulas")),
        sources_(*command_) {
    command_->add_option("DATASET.json", given_.dataset, "Dataset")->required()->type_name("");
    command_->add_flag("--require-chart", given_.requireChart, "Refuse a dataset without charts");
    command_->add_flag("--json", given_.json, "Print JSON, which is also the default here");
  }
  ResearchCheckParser(const ResearchCheckParser&) = delete;
  ResearchCheckParser& operator=(const ResearchCheckParser&) = delete;
  ~ResearchCheckParser() = default;

  bool isGiven() const { return command_->parsed(); }
  ResearchCheckArguments arguments() const {
    return {.dataset = withoutGuards(given_.dataset),
            .requireChart = given_.requireChart,
            .json = given_.json,
            .sources = sources_.arguments()};
  }

 private:
  ResearchCheckArguments given_;
  CLI::App* command_;
  SourceOptions sources_;
};

Ending endingOf(const CLI::App& tool, const CLI::ParseError& end) {
  std::ostringstream output;
  std::ostringstream errors;
  if (tool.exit(end, output, errors) == 0) return {ExitStatus::success, output.str(), {}};
  return {ExitStatus::usage, {}, withoutGuards(end.what()) + " (see zelvo --help)"};
}

}  // namespace

std::variant<Command, Ending> parseCommandLine(int count, const char* const* arguments) {
  CLI::App tool("Reads office documents in a confined worker process.", "zelvo");
  tool.set_version_flag("--version", "zelvo " ZELVO_VERSION);
  tool.set_help_all_flag("--help-all", "Print the help of every subcommand and exit");
  tool.require_subcommand(1);
  tool.footer(footer);
  const InspectParser inspect(tool);
  CLI::App* research = tool.add_subcommand("research", "Check datasets of research results");
  research->require_subcommand(1);
  const ResearchCheckParser researchCheck(*research);

  std::vector<std::string> reversed;  // as CLI11 wants it
  for (int i = count - 1; i > 0; --i)
    reversed.push_back(guarded(arguments[i]));
  try {
    tool.parse(std::move(reversed));
  } catch (const CLI::ParseError& end) {
    return endingOf(tool, end);
  }
  if (researchCheck.isGiven()) return researchCheck.arguments();
  return inspect.arguments();
}

}  // namespace zelvo
