#include "zelvo/CommandLine/WorkbookOptions.hpp"

#include <CLI/CLI.hpp>

#include "Text/ASCII.hpp"
#include "zelvo/CommandLine/OptionValues.hpp"

namespace zelvo {
namespace {

constexpr const char* impliesClean = "; implies --clean";

}  // namespace

std::string checkWorkbookName(const std::string& path) {
  const bool isGood = path == "-" || ASCII::lowercased(path).ends_with(".xlsx");
  return isGood ? "" : "The file's name must end in .xlsx";
}

CLI::Option* addUnmerge(CLI::App& command, const std::string& remark) {
  return addFlag(command, "--unmerge", "Remove merged areas; no cell changes" + remark);
}

CLI::Option* addPlainFormats(CLI::App& command, const std::string& remark) {
  return addFlag(command, "--plain-formats", "Replace number formats that cannot be shown" + remark);
}

SelectionOptions::SelectionOptions(CLI::App& command)
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

std::string SelectionOptions::workbook() const {
  return value(*workbook_);
}

TableSelection SelectionOptions::selection() const {
  return {.sheetName = value(*sheet_),
          .range = value(*range_),
          .firstRowIsHeader = noHeader_->empty(),
          .includeHiddenRows = !hidden_->empty(),
          .allowCachedFormulaValues = !cached_->empty()};
}

CleaningOptions::CleaningOptions(CLI::App& command, bool writesDocument)
    : clean_(addFlag(command, "--clean", "Read a cleaned copy of the workbook, see zelvo clean --help")),
      unmerge_(addUnmerge(command, impliesClean)),
      plainFormats_(addPlainFormats(command, impliesClean)),
      kept_(
          command.add_option("--keep-cleaned", "Write the cleaned workbook to this file; implies --clean")) {
  kept_->type_name("FILE.xlsx")->check([](const std::string& path) {
    return path == "-" ? "The cleaned workbook is written to a file only" : checkWorkbookName(path);
  });
  if (!writesDocument) noClobber_ = addNoClobber(command, kept_);
}

CleaningArguments CleaningOptions::arguments() const {
  const bool isImplied = !unmerge_->empty() || !plainFormats_->empty() || !kept_->empty();
  return {.clean = !clean_->empty() || isImplied,
          .unmerge = !unmerge_->empty(),
          .plainFormats = !plainFormats_->empty(),
          .kept = {.file = value(*kept_), .noClobber = noClobber_ != nullptr && !noClobber_->empty()}};
}

}  // namespace zelvo
