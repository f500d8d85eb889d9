// The commands that read workbooks and write no document: inspect, extract, clean.

#include <array>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"
#include "zelvo/CommandLine/WorkbookOptions.hpp"

namespace zelvo {
namespace {

class InspectParser {
 public:
  explicit InspectParser(CLI::App& tool)
      : command_(tool.add_subcommand("inspect", "Describe the sheets of XLSX workbooks")),
        files_(addList(*command_, "BOOK.xlsx", "Workbooks")->required()),
        cleaning_(*command_),
        json_(addFlag(*command_, "--json", "Print one JSON record per line")) {}

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    InspectArguments given = {
        .files = values(*files_), .cleaning = cleaning_.arguments(), .json = !json_->empty()};
    if (given.files.size() > 1 && !given.cleaning.kept.file.empty())
      return conflict("--keep-cleaned takes one workbook");
    return Command(std::move(given));
  }

 private:
  CLI::App* command_;
  CLI::Option* files_;
  CleaningOptions cleaning_;
  CLI::Option* json_;
};

class ExtractParser {
 public:
  explicit ExtractParser(CLI::App& tool)
      : command_(tool.add_subcommand("extract", "Print a sheet or a range of an XLSX workbook")),
        table_(*command_),
        cleaning_(*command_) {
    for (const auto& [name, form, description] : forms) {
      CLI::Option* option = addFlag(*command_, name, description);
      for (CLI::Option* other : options_)
        option->excludes(other);
      options_.push_back(option);
    }
    raw_ = addFlag(*command_, "--raw", "Print stored values: numbers, ISO dates, TRUE, FALSE");
    escape_ = addFlag(*command_, "--escape-formulas", "Put a ' before texts that look like formulas");
    for (CLI::Option* option : {raw_, escape_})
      option->excludes(options_.front());
  }

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    auto form = ExtractArguments::Form::text;
    for (std::size_t i = 0; i < forms.size(); ++i) {
      if (!options_[i]->empty()) form = forms[i].form;
    }
    return Command(ExtractArguments{.workbook = table_.workbook(),
                                    .selection = table_.selection(),
                                    .cleaning = cleaning_.arguments(),
                                    .form = form,
                                    .cells = {.raw = !raw_->empty(), .escapesFormulas = !escape_->empty()}});
  }

 private:
  struct FormOption {
    const char* name;
    ExtractArguments::Form form;
    const char* description;
  };
  using enum ExtractArguments::Form;
  static constexpr std::array<FormOption, 5> forms = {{
      {"--json", json, "Print the record of a table"},
      {"--jsonl", jsonl, "Print a JSON object for each data row, with stored values"},
      {"--csv", csv, "Print CSV"},
      {"--tsv", tsv, R"(Print lines of tab-separated texts; \t, \n, \r and \\ are escapes)"},
      {"--markdown", markdown, "Print a Markdown table"},
  }};

  CLI::App* command_;
  SelectionOptions table_;
  CleaningOptions cleaning_;
  std::vector<CLI::Option*> options_;  ///< in the order of `forms`
  CLI::Option* raw_ = nullptr;
  CLI::Option* escape_ = nullptr;
};

class CleanParser {
 public:
  explicit CleanParser(CLI::App& tool)
      : command_(tool.add_subcommand("clean", "Write a workbook that holds only what can be read")),
        workbook_(command_->add_option("BOOK", "Workbook")->required()->type_name("")),
        sheets_(addText(*command_, "--sheet", "A worksheet to keep; repeat for more; without it, all")),
        unmerge_(addUnmerge(*command_)),
        plainFormats_(addPlainFormats(*command_)),
        json_(addFlag(*command_, "--json", "Print the report as JSON")),
        output_(OutputOptions(*command_, "OUT.xlsx", checkWorkbookName).required()) {
    sheets_->type_name("NAME")->take_all();
  }

  bool isGiven() const { return command_->parsed(); }
  Result<Command> arguments() const {
    CleanArguments given = {.workbook = value(*workbook_),
                            .sheets = values(*sheets_),
                            .unmerge = !unmerge_->empty(),
                            .plainFormats = !plainFormats_->empty(),
                            .json = !json_->empty(),
                            .output = output_.arguments()};
    if (given.json && given.output.file == "-")
      return conflict("--json excludes -o -: standard output holds the workbook");
    return Command(std::move(given));
  }

 private:
  CLI::App* command_;
  CLI::Option* workbook_;
  CLI::Option* sheets_;
  CLI::Option* unmerge_;
  CLI::Option* plainFormats_;
  CLI::Option* json_;
  OutputOptions output_;
};

}  // namespace

CommandReader addInspect(CLI::App& tool) {
  return readerOf(InspectParser(tool));
}

CommandReader addExtract(CLI::App& tool) {
  return readerOf(ExtractParser(tool));
}

CommandReader addClean(CLI::App& tool) {
  return readerOf(CleanParser(tool));
}

}  // namespace zelvo
