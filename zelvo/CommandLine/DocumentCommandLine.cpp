// The commands on documents: create, validate.

#include <optional>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

#include "Text/ASCII.hpp"
#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"
#include "zelvo/CommandLine/WorkbookOptions.hpp"

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

/// The format of the document in a file with a checked name.
DocumentFormat formatOf(const std::string& path, const std::optional<ChartArguments>& chart) {
  return formatOf(path).value_or(chart ? DocumentFormat::pptx : DocumentFormat::docx);
}

constexpr const char* wordHasNoCharts = "--chart excludes a Word document, which has no charts";

template <typename Arguments>
bool hasWordChart(const Arguments& given) {
  return given.chart && given.format == DocumentFormat::docx;
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
  Result<Command> arguments() const {
    const auto chart = chart_.arguments();
    const OutputArguments output = output_.arguments();
    CleaningArguments cleaning = cleaning_.arguments();
    cleaning.kept.noClobber = output.noClobber;
    CreateArguments given = {.workbook = table_.workbook(),
                             .selection = table_.selection(),
                             .cleaning = cleaning,
                             .title = value(*title_),
                             .chart = chart,
                             .output = output,
                             .format = formatOf(output.file, chart),
                             .json = !json_->empty()};
    if (hasWordChart(given)) return conflict(wordHasNoCharts);
    if (given.json && output.file == "-")
      return conflict("--json excludes -o -: standard output holds the document");
    return Command(std::move(given));
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
  Result<Command> arguments() const {
    const auto chart = chart_.arguments();
    const std::string document = value(*document_);
    ValidateArguments given = {.document = document,
                               .format = formatOf(document, chart),
                               .expectedTable = value(*expected_),
                               .chart = chart,
                               .json = !json_->empty()};
    if (hasWordChart(given)) return conflict(wordHasNoCharts);
    return Command(std::move(given));
  }

 private:
  CLI::App* command_;
  CLI::Option* document_;
  CLI::Option* expected_;
  ChartOptions chart_;
  CLI::Option* json_;
};

}  // namespace

CommandReader addCreate(CLI::App& tool) {
  return readerOf(CreateParser(tool));
}

CommandReader addValidate(CLI::App& tool) {
  return readerOf(ValidateParser(tool));
}

}  // namespace zelvo
