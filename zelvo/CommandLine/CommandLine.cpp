#include "zelvo/CommandLine/CommandLine.hpp"

#include <array>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "Text/ASCII.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"

namespace zelvo {
namespace {

constexpr const char* footer =
    R"(Examples:
  zelvo extract book.xlsx --csv               the only visible sheet
  zelvo extract book.xlsx --sheet 2 --jsonl   the second sheet, one JSON object per row
  zelvo inspect book.xlsx                     what sheets there are

"-" as a file is standard input, and for -o standard output, which must not be a terminal. create -o -
writes a presentation with --chart, and a Word document without.

Exit status: 0 success, 1 a document was refused or a file could not be read or written, 2 invalid command
line, 3 the worker could not be run or failed; with several files the highest.)";

/// The format that a file's ending names.
std::optional<DocumentFormat> formatOf(std::string_view path) {
  const std::string name = ASCII::lowercased(path);
  if (name.ends_with(".docx")) return DocumentFormat::docx;
  if (name.ends_with(".pptx")) return DocumentFormat::pptx;
  return std::nullopt;
}

std::string checkDocumentName(const std::string& path) {
  return path == "-" || formatOf(path) ? "" : "The file's name must end in .docx or .pptx";
}

std::string checkNotEmpty(const std::string& text) {
  return text.empty() ? "The text is empty" : "";
}

class InspectParser {
 public:
  explicit InspectParser(CLI::App& tool) {
    CLI::App* command = tool.add_subcommand("inspect", "Describe the sheets of XLSX workbooks");
    files_ = command->add_option("BOOK.xlsx", given_.files, "Workbooks")->required()->type_name("");
    command->add_flag("--json", given_.json, "Print one JSON record per line");
  }
  InspectParser(const InspectParser&) = delete;
  InspectParser& operator=(const InspectParser&) = delete;
  ~InspectParser() = default;

  InspectArguments arguments() const { return {.files = values(*files_), .json = given_.json}; }

 private:
  InspectArguments given_;
  CLI::Option* files_ = nullptr;
};

/// A workbook and a table in it.
class SelectionOptions {
 public:
  explicit SelectionOptions(CLI::App& command)
      : workbook_(command.add_option("BOOK.xlsx", "Workbook")->required()->type_name("")),
        sheet_(addText(command, "--sheet",
                       "Its name, else its number in the list of inspect (#N is always the number); without "
                       "it the only visible sheet")),
        range_(addText(command, "--range", "The cells, like A1:D20; without it all that have content")),
        noHeader_(addFlag(command, "--no-header", "The first row contains data, not column titles")),
        hidden_(addFlag(command, "--include-hidden", "Include hidden rows")),
        cached_(addFlag(command, "--cached-formulas", "Use the saved results of formulas")) {
    sheet_->type_name("NAME|#N|N")->check(checkNotEmpty);
    range_->type_name("RANGE")->check(checkNotEmpty);
  }

  std::string workbook() const { return value(*workbook_); }
  TableSelection selection() const {
    return {.sheetName = value(*sheet_),
            .range = value(*range_),
            .firstRowIsHeader = noHeader_->empty(),
            .includeHiddenRows = !hidden_->empty(),
            .allowCachedFormulaValues = !cached_->empty()};
  }

 private:
  CLI::Option* workbook_;
  CLI::Option* sheet_;
  CLI::Option* range_;
  CLI::Option* noHeader_;
  CLI::Option* hidden_;
  CLI::Option* cached_;
};

class ChartOptions {
 public:
  explicit ChartOptions(CLI::App& command)
      : columns_(addText(command, "--chart",
                         "Columns of a chart, by title or zero-based index; ignored for Word")),
        title_(addText(command, "--chart-title", "The chart's title")->needs(columns_)) {
    columns_->type_name("CATEGORY:VALUE")->check([](const std::string& text) {
      return text.find(':') != std::string::npos ? "" : "The columns must be given as CATEGORY:VALUE";
    });
  }

  std::optional<ChartArguments> arguments() const {
    if (columns_->empty()) return std::nullopt;
    return ChartArguments{.columns = value(*columns_), .title = value(*title_)};
  }

 private:
  CLI::Option* columns_;
  CLI::Option* title_;
};

constexpr const char* extractFooter =
    R"(Examples:
  zelvo extract book.xlsx --csv                      the only visible sheet
  zelvo extract book.xlsx --sheet Sales --jsonl      one JSON object per row
  zelvo extract book.xlsx --sheet 2 --range A1:D20   for reading

Rows are printed as they are, from a range of any size up to 250,000 cells. The first row has the titles, with
--no-header data. Hidden columns are left out, hidden rows unless they are included; both are named on standard
error. --json prints a table of at most 8 columns and 200 data rows, with the provenance of every cell.

Spreadsheet programs take a text that begins with = + - @, tab or carriage return for a formula and run it when
they open CSV. --escape-formulas puts a ' before such texts, never before numbers.)";

class ExtractParser {
 public:
  explicit ExtractParser(CLI::App& tool)
      : command_(tool.add_subcommand("extract", "Print a sheet or a range of an XLSX workbook")),
        table_(*command_) {
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
    command_->footer(extractFooter);
  }

  bool isGiven() const { return command_->parsed(); }
  ExtractArguments arguments() const {
    auto form = ExtractArguments::Form::text;
    for (std::size_t i = 0; i < forms.size(); ++i) {
      if (!options_[i]->empty()) form = forms[i].form;
    }
    return {.workbook = table_.workbook(),
            .selection = table_.selection(),
            .form = form,
            .cells = {.raw = !raw_->empty(), .escapesFormulas = !escape_->empty()}};
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
      {"--tsv", tsv, "Print lines of tab-separated texts; \\t, \\n, \\r and \\\\ are escapes"},
      {"--markdown", markdown, "Print a Markdown table"},
  }};

  CLI::App* command_;
  SelectionOptions table_;
  std::vector<CLI::Option*> options_;  ///< in the order of `forms`
  CLI::Option* raw_ = nullptr;
  CLI::Option* escape_ = nullptr;
};

/// The format of the document in a file with a checked name.
DocumentFormat formatOf(const std::string& path, const std::optional<ChartArguments>& chart) {
  return formatOf(path).value_or(chart ? DocumentFormat::pptx : DocumentFormat::docx);
}

class CreateParser {
 public:
  explicit CreateParser(CLI::App& tool)
      : command_(tool.add_subcommand("create", "Write a table as a Word document or a presentation")),
        table_(*command_),
        title_(addText(*command_, "--title", "The document's title")->required()),
        chart_(*command_),
        json_(addFlag(*command_, "--json", "Print the document's JSON record, without its bytes")),
        output_(command_->add_option("-o", "The output file")->required()) {
    output_->type_name("OUT.docx|OUT.pptx")->check(checkDocumentName);
  }

  bool isGiven() const { return command_->parsed(); }
  CreateArguments arguments() const {
    const auto chart = chart_.arguments();
    const std::string output = value(*output_);
    return {.workbook = table_.workbook(),
            .selection = table_.selection(),
            .title = value(*title_),
            .chart = chart,
            .output = output,
            .format = formatOf(output, chart),
            .json = !json_->empty()};
  }

 private:
  CLI::App* command_;
  SelectionOptions table_;
  CLI::Option* title_;
  ChartOptions chart_;
  CLI::Option* json_;
  CLI::Option* output_;
};

class ValidateParser {
 public:
  explicit ValidateParser(CLI::App& tool)
      : command_(tool.add_subcommand("validate", "Verify that a document is one that create wrote")),
        document_(command_->add_option("DOC.docx|DOC.pptx", "Document")->required()),
        expected_(
            command_->add_option("--expect", "The table that the document must show, from extract --json")),
        chart_(*command_),
        json_(addFlag(*command_, "--json", "Print the JSON record")) {
    document_->type_name("")->check(checkDocumentName);
    expected_->type_name("TABLE.json");
  }

  bool isGiven() const { return command_->parsed(); }
  ValidateArguments arguments() const {
    const auto chart = chart_.arguments();
    const std::string document = value(*document_);
    return {.document = document,
            .format = formatOf(document, chart),
            .expectedTable = value(*expected_),
            .chart = chart,
            .json = !json_->empty()};
  }

 private:
  CLI::App* command_;
  CLI::Option* document_;
  CLI::Option* expected_;
  ChartOptions chart_;
  CLI::Option* json_;
};

using ParsedCommandLine = std::variant<Command, Information>;

constexpr const char* seeHelp = " (see zelvo --help)";

/// CLI11 reports a request for help as an error, too.
Result<ParsedCommandLine> resultOf(const CLI::App& tool, const CLI::ParseError& end) {
  std::ostringstream output;
  std::ostringstream errors;
  if (tool.exit(end, output, errors) == 0) return ParsedCommandLine(Information{output.str()});
  return CommandError{ExitStatus::usage, withoutGuards(end.what()) + seeHelp};
}

/// What excludes each other by the values of options.
Failure conflictIn(const Command& command) {
  const auto usage = [](const std::string& message) {
    return CommandError{ExitStatus::usage, message + seeHelp};
  };
  const auto* create = std::get_if<CreateArguments>(&command);
  if (create != nullptr && create->json && create->output == "-")
    return usage("--json excludes -o -: standard output holds the document");
  return std::nullopt;
}

}  // namespace

Result<ParsedCommandLine> parseCommandLine(int count, const char* const* arguments) {
  CLI::App tool("Reads and writes office documents in a confined worker process.", "zelvo");
  tool.set_version_flag("--version", "zelvo " ZELVO_VERSION);
  tool.set_help_all_flag("--help-all", "Print the help of every subcommand and exit");
  tool.require_subcommand(1);
  tool.footer(footer);
  const InspectParser inspect(tool);
  const ExtractParser extract(tool);
  const CreateParser create(tool);
  const ValidateParser validate(tool);
  const ResearchParser research(tool);

  std::vector<std::string> reversed;  // the order that CLI11 requires
  for (int i = count - 1; i > 0; --i)
    reversed.push_back(guarded(arguments[i]));
  try {
    tool.parse(std::move(reversed));
  } catch (const CLI::ParseError& end) {
    return resultOf(tool, end);
  }
  const auto command = [&]() -> Command {
    if (extract.isGiven()) return extract.arguments();
    if (create.isGiven()) return create.arguments();
    if (validate.isGiven()) return validate.arguments();
    if (auto given = research.command()) return *std::move(given);
    return inspect.arguments();
  };
  Command given = command();
  if (Failure conflict = conflictIn(given)) return *std::move(conflict);
  return ParsedCommandLine(std::move(given));
}

}  // namespace zelvo
