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

std::string checkWorkbookName(const std::string& path) {
  const bool isGood = path == "-" || ASCII::lowercased(path).ends_with(".xlsx");
  return isGood ? "" : "The file's name must end in .xlsx";
}

std::string checkNotEmpty(const std::string& text) {
  return text.empty() ? "The text is empty" : "";
}

/// `remark` is the end of their descriptions.
CLI::Option* addUnmerge(CLI::App& command, const std::string& remark = "") {
  return addFlag(command, "--unmerge", "Remove merged areas; no cell changes" + remark);
}

CLI::Option* addPlainFormats(CLI::App& command, const std::string& remark = "") {
  return addFlag(command, "--plain-formats", "Replace number formats that cannot be shown" + remark);
}

constexpr const char* impliesClean = "; implies --clean";

/// How the workbook is cleaned first.
class CleaningOptions {
 public:
  /// A command that writes a document has --no-clobber already.
  explicit CleaningOptions(CLI::App& command, bool writesDocument = false)
      : clean_(addFlag(command, "--clean", "Read a cleaned copy of the workbook, see zelvo clean --help")),
        unmerge_(addUnmerge(command, impliesClean)),
        plainFormats_(addPlainFormats(command, impliesClean)),
        kept_(command.add_option("--keep-cleaned",
                                 "Write the cleaned workbook to this file; implies --clean")) {
    kept_->type_name("FILE.xlsx")->check([](const std::string& path) {
      return path == "-" ? "The cleaned workbook is written to a file only" : checkWorkbookName(path);
    });
    if (!writesDocument) noClobber_ = addNoClobber(command, kept_);
  }

  CleaningArguments arguments() const {
    const bool isImplied = !unmerge_->empty() || !plainFormats_->empty() || !kept_->empty();
    return {.clean = !clean_->empty() || isImplied,
            .unmerge = !unmerge_->empty(),
            .plainFormats = !plainFormats_->empty(),
            .kept = {.file = value(*kept_), .noClobber = noClobber_ != nullptr && !noClobber_->empty()}};
  }

 private:
  CLI::Option* clean_;
  CLI::Option* unmerge_;
  CLI::Option* plainFormats_;
  CLI::Option* kept_;
  CLI::Option* noClobber_ = nullptr;
};

class InspectParser {
 public:
  explicit InspectParser(CLI::App& tool)
      : command_(tool.add_subcommand("inspect", "Describe the sheets of XLSX workbooks")),
        files_(command_->add_option("BOOK.xlsx", "Workbooks")
                   ->required()
                   ->expected(1, anyNumber)
                   ->allow_extra_args()),
        cleaning_(*command_),
        json_(addFlag(*command_, "--json", "Print one JSON record per line")) {
    files_->type_name("");
  }

  InspectArguments arguments() const {
    return {.files = values(*files_), .cleaning = cleaning_.arguments(), .json = !json_->empty()};
  }

 private:
  static constexpr int anyNumber = CLI::detail::expected_max_vector_size;

  CLI::App* command_;
  CLI::Option* files_;
  CleaningOptions cleaning_;
  CLI::Option* json_;
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
      : columns_(
            addText(command, "--chart", "Columns of a chart, by title or zero-based index; not for Word")),
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
  ExtractArguments arguments() const {
    auto form = ExtractArguments::Form::text;
    for (std::size_t i = 0; i < forms.size(); ++i) {
      if (!options_[i]->empty()) form = forms[i].form;
    }
    return {.workbook = table_.workbook(),
            .selection = table_.selection(),
            .cleaning = cleaning_.arguments(),
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

/// The format of the document in a file with a checked name.
DocumentFormat formatOf(const std::string& path, const std::optional<ChartArguments>& chart) {
  return formatOf(path).value_or(chart ? DocumentFormat::pptx : DocumentFormat::docx);
}

class CreateParser {
 public:
  explicit CreateParser(CLI::App& tool)
      : command_(tool.add_subcommand("create", "Write a table as a Word document or a presentation")),
        table_(*command_),
        cleaning_(*command_, /*writesDocument=*/true),
        title_(addText(*command_, "--title", "The document's title")->required()),
        chart_(*command_),
        json_(addFlag(*command_, "--json", "Print the document's JSON record, without its bytes")),
        output_(OutputOptions(*command_, "OUT.docx|OUT.pptx", checkDocumentName).required()) {}

  bool isGiven() const { return command_->parsed(); }
  CreateArguments arguments() const {
    const auto chart = chart_.arguments();
    const OutputArguments output = output_.arguments();
    CleaningArguments cleaning = cleaning_.arguments();
    cleaning.kept.noClobber = output.noClobber;
    return {.workbook = table_.workbook(),
            .selection = table_.selection(),
            .cleaning = cleaning,
            .title = value(*title_),
            .chart = chart,
            .output = output,
            .format = formatOf(output.file, chart),
            .json = !json_->empty()};
  }

 private:
  CLI::App* command_;
  SelectionOptions table_;
  CleaningOptions cleaning_;
  CLI::Option* title_;
  ChartOptions chart_;
  CLI::Option* json_;
  OutputOptions output_;
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
  CleanArguments arguments() const {
    return {.workbook = value(*workbook_),
            .sheets = values(*sheets_),
            .unmerge = !unmerge_->empty(),
            .plainFormats = !plainFormats_->empty(),
            .json = !json_->empty(),
            .output = output_.arguments()};
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

class DoctorParser {
 public:
  explicit DoctorParser(CLI::App& tool)
      : command_(tool.add_subcommand("doctor", "Check that confined processes can run here")),
        request_(command_->add_option("--request", "Check a request to the worker or the cleaner instead")) {
    request_->type_name("FILE")->check(checkNotEmpty);
  }

  bool isGiven() const { return command_->parsed(); }
  DoctorArguments arguments() const { return {.request = value(*request_)}; }

 private:
  CLI::App* command_;
  CLI::Option* request_;
};

using ParsedCommandLine = std::variant<Invocation, Information>;

constexpr const char* seeHelp = " (see zelvo --help)";

/// The options of every command that starts a process.
class HostOptions {
 public:
  explicit HostOptions(CLI::App& tool) { addTo(tool); }

  HostArguments arguments() const {
    HostArguments given;
    for (const auto& [libexec, timeout] : options_) {
      if (!libexec->empty()) given.libexec = value(*libexec);
      if (!timeout->empty()) given.timeoutSeconds = wholeNumber(value(*timeout), maximumSeconds).value();
    }
    return given;
  }

 private:
  static constexpr std::int64_t maximumSeconds = 86'400;

  /// To the commands without subcommands.
  void addTo(CLI::App& command) {
    const auto subcommands = command.get_subcommands([](CLI::App*) { return true; });
    for (CLI::App* subcommand : subcommands)
      addTo(*subcommand);
    if (!subcommands.empty()) return;
    CLI::Option* libexec = command.add_option("--libexec", "The folder of the worker and the cleaner");
    CLI::Option* timeout =
        command.add_option("--timeout", "Time for each process by the wall clock; 180 without it");
    timeout->type_name("SECONDS")->check([](const std::string& text) {
      return wholeNumber(text, maximumSeconds) ? "" : "The time must be 1 to 86400 seconds";
    });
    options_.emplace_back(libexec->type_name("DIR"), timeout);
  }

  std::vector<std::pair<CLI::Option*, CLI::Option*>> options_;
};

/// CLI11 reports a request for help as an error, too.
Result<ParsedCommandLine> resultOf(const CLI::App& tool, const CLI::ParseError& end) {
  std::ostringstream output;
  std::ostringstream errors;
  if (tool.exit(end, output, errors) == 0) return ParsedCommandLine(Information{output.str()});
  CommandError error = usageError(tool, withoutGuards(end.what()));
  error.message += seeHelp;
  return error;
}

/// What excludes each other by the values of options.
Failure conflictIn(const Command& command) {
  const auto usage = [](const std::string& message) {
    return CommandError{ExitStatus::usage, message + seeHelp};
  };
  const auto* inspect = std::get_if<InspectArguments>(&command);
  if (inspect != nullptr && inspect->files.size() > 1 && !inspect->cleaning.kept.file.empty())
    return usage("--keep-cleaned takes one workbook");
  const auto* clean = std::get_if<CleanArguments>(&command);
  if (clean != nullptr && clean->json && clean->output.file == "-")
    return usage("--json excludes -o -: standard output holds the workbook");
  const auto* create = std::get_if<CreateArguments>(&command);
  const auto* validate = std::get_if<ValidateArguments>(&command);
  const auto hasWordChart = [](const auto* given) {
    return given != nullptr && given->chart && given->format == DocumentFormat::docx;
  };
  if (hasWordChart(create) || hasWordChart(validate))
    return usage("--chart excludes a Word document, which has no charts");
  if (create != nullptr && create->json && create->output.file == "-")
    return usage("--json excludes -o -: standard output holds the document");
  return std::nullopt;
}

}  // namespace

Result<ParsedCommandLine> parseCommandLine(int count, const char* const* arguments) {
  CLI::App tool("Reads and writes office documents in a confined worker process.", "zelvo");
  tool.set_help_flag("-h,--help", "Print this help");
  tool.set_version_flag("-V,--version", "zelvo " ZELVO_VERSION, "Print the version");
  tool.require_subcommand(1);
  const InspectParser inspect(tool);
  const ExtractParser extract(tool);
  const CreateParser create(tool);
  const ValidateParser validate(tool);
  const CleanParser clean(tool);
  const BatchParser batch(tool);
  const ResearchParser research(tool);
  const DoctorParser doctor(tool);
  const HostOptions hosts(tool);
  const InformationParser information(tool);

  std::vector<std::string> reversed;  // the order that CLI11 requires
  for (int i = count - 1; i > 0; --i)
    reversed.push_back(guarded(arguments[i]));
  try {
    tool.parse(std::move(reversed));
  } catch (const CLI::ParseError& end) {
    return resultOf(tool, end);
  }
  if (auto given = information.information()) {
    if (*given) return ParsedCommandLine(**std::move(given));
    return given->error();
  }
  const auto command = [&]() -> Command {
    if (extract.isGiven()) return extract.arguments();
    if (create.isGiven()) return create.arguments();
    if (validate.isGiven()) return validate.arguments();
    if (clean.isGiven()) return clean.arguments();
    if (auto given = batch.command()) return *std::move(given);
    if (auto given = research.command()) return *std::move(given);
    if (doctor.isGiven()) return doctor.arguments();
    return inspect.arguments();
  };
  Command given = command();
  if (Failure conflict = conflictIn(given)) return *std::move(conflict);
  return ParsedCommandLine(Invocation{std::move(given), hosts.arguments()});
}

}  // namespace zelvo
