#include <CLI/CLI.hpp>

#include "Text/ASCII.hpp"
#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"

namespace zelvo {
namespace {

CLI::Option* addFile(CLI::App& command, const std::string& name, const std::string& description) {
  return command.add_option(name, description)->required()->type_name("");
}

CLI::Option* addTitle(CLI::App& command) {
  return addText(command, "--title", "The document's title")->required();
}

/// Takes one value per use, because a file may follow.
CLI::Option* addSources(CLI::App& command, const std::string& description) {
  return addText(command, "--source", description)->type_name("URL")->take_all();
}

OutputOptions outputOptions(CLI::App& command, const std::string& ending) {
  const auto check = [ending](const std::string& path) {
    const bool isGood = path == "-" || ASCII::lowercased(path).ends_with(ending);
    return isGood ? std::string() : "The file's name must end in " + ending;
  };
  return {command, "OUT" + ending, check};
}

/// A file that the host trusts. An empty name, such as an unset variable of a script, is refused: it would
/// look like an absent option and disable a check.
CLI::Option* addHostFile(CLI::App& command, const std::string& name, const std::string& description) {
  return command.add_option(name, description)->check([](const std::string& path) {
    return path.empty() ? "The file's name is empty" : "";
  });
}

/// The sources that may be cited.
class SourceOptions {
 public:
  explicit SourceOptions(CLI::App& command)
      : sources_(addSources(command, "A URL that may be cited; repeat for more")),
        noSources_(addFlag(command, "--no-sources", "No URL may be cited")->excludes(sources_)),
        scope_(addHostFile(command, "--scope", "The trusted evidence")->type_name("SCOPE.json")) {}

  SourceArguments arguments() const {
    return {.sources = values(*sources_), .noSources = !noSources_->empty(), .scopeFile = value(*scope_)};
  }

 private:
  CLI::Option* sources_;
  CLI::Option* noSources_;
  CLI::Option* scope_;
};

class CheckParser {
 public:
  explicit CheckParser(CLI::App& research)
      : command_(research.add_subcommand("check", "Validate a dataset and compute its formulas")),
        dataset_(addFile(*command_, "DATASET.json", "Dataset")),
        requireChart_(addFlag(*command_, "--require-chart", "Refuse a dataset without charts")),
        sources_(*command_) {
    addFlag(*command_, "--json", "Print JSON (the default)");
  }

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    return Command(ResearchCheckArguments{.dataset = value(*dataset_),
                                          .requireChart = !requireChart_->empty(),
                                          .sources = sources_.arguments()});
  }

 private:
  CLI::App* command_;
  CLI::Option* dataset_;
  CLI::Option* requireChart_;
  SourceOptions sources_;
};

class WorkbookParser {
 public:
  explicit WorkbookParser(CLI::App& research)
      : command_(research.add_subcommand("workbook", "Write a dataset as an XLSX workbook")),
        dataset_(addFile(*command_, "DATASET.json", "Dataset")),
        title_(addTitle(*command_)),
        theme_(addFlag(*command_, "--theme", "Add a theme: LibreOffice draws the charts in its colours")),
        sources_(*command_),
        output_(outputOptions(*command_, ".xlsx").required()) {}

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    return Command(ResearchWorkbookArguments{.dataset = value(*dataset_),
                                             .title = value(*title_),
                                             .theme = !theme_->empty(),
                                             .sources = sources_.arguments(),
                                             .output = output_.arguments()});
  }

 private:
  CLI::App* command_;
  CLI::Option* dataset_;
  CLI::Option* title_;
  CLI::Option* theme_;
  SourceOptions sources_;
  OutputOptions output_;
};

class ReportParser {
 public:
  explicit ReportParser(CLI::App& research)
      : command_(research.add_subcommand("report", "Write a report's first table as an XLSX workbook")),
        report_(addFile(*command_, "REPORT.md", "Report in Markdown")),
        title_(addTitle(*command_)),
        sources_(addSources(*command_, "A URL to list as a source; repeat for more")),
        output_(outputOptions(*command_, ".xlsx").required()) {}

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    return Command(ResearchReportArguments{.report = value(*report_),
                                           .title = value(*title_),
                                           .sources = values(*sources_),
                                           .output = output_.arguments()});
  }

 private:
  CLI::App* command_;
  CLI::Option* report_;
  CLI::Option* title_;
  CLI::Option* sources_;
  OutputOptions output_;
};

/// The data behind a deck's charts.
class DatasetOptions {
 public:
  explicit DatasetOptions(CLI::App& command)
      : dataset_(addHostFile(command, "--dataset", "The dataset that the deck shares")),
        datasets_(addHostFile(command, "--datasets", "The datasets that the deck may name")),
        allowed_(addText(command, "--allow-dataset", "A dataset that the deck may use; without it, all")) {
    dataset_->type_name("DATASET.json");
    datasets_->type_name("DATASETS.json")->excludes(dataset_);
    allowed_->type_name("ID")->take_all()->needs(datasets_);
  }

  std::string dataset() const { return value(*dataset_); }
  std::string datasets() const { return value(*datasets_); }
  std::vector<std::string> allowed() const { return values(*allowed_); }

 private:
  CLI::Option* dataset_;
  CLI::Option* datasets_;
  CLI::Option* allowed_;
};

class PresentationParser {
 public:
  explicit PresentationParser(CLI::App& research)
      : command_(research.add_subcommand("presentation", "Validate a deck and write it as a presentation")),
        deck_(addFile(*command_, "DECK.json", "Deck")),
        data_(*command_),
        sources_(*command_),
        output_(outputOptions(*command_, ".pptx")) {}

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    return Command(ResearchPresentationArguments{.deck = value(*deck_),
                                                 .dataset = data_.dataset(),
                                                 .datasets = data_.datasets(),
                                                 .allowedDatasets = data_.allowed(),
                                                 .sources = sources_.arguments(),
                                                 .output = output_.arguments()});
  }

 private:
  CLI::App* command_;
  CLI::Option* deck_;
  DatasetOptions data_;
  SourceOptions sources_;
  OutputOptions output_;
};

}  // namespace

CommandReader addResearch(CLI::App& tool) {
  CLI::App* research = tool.add_subcommand("research", "Check research results and write them as documents");
  research->require_subcommand(1);
  return firstOf({readerOf(CheckParser(*research)), readerOf(WorkbookParser(*research)),
                  readerOf(ReportParser(*research)), readerOf(PresentationParser(*research))});
}

}  // namespace zelvo
