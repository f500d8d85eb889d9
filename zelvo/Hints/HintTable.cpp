#include "zelvo/Hints/HintTable.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"
#include "DocumentRuntime/Engine/DocumentEngine.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/PackageIO/XMLTreeBuilder.hpp"
#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScope.hpp"
#include "DocumentRuntime/Research/Workbook/ReportWorkbook.hpp"
#include "DocumentRuntime/Validation/ChartReadBack.hpp"
#include "DocumentRuntime/Validation/DocumentInputRules.hpp"
#include "DocumentRuntime/Validation/DocumentReadBack.hpp"
#include "DocumentRuntime/Validation/TableReadBack.hpp"
#include "DocumentRuntime/Workbook/CellReader.hpp"
#include "DocumentRuntime/Workbook/SharedStrings.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "DocumentRuntime/Workbook/WorkbookStructure.hpp"
#include "DocumentRuntime/Workbook/WorksheetWalk.hpp"

namespace zelvo {
namespace {

// Stages and actions are sets of bits.
constexpr unsigned reading = static_cast<unsigned>(Stage::reading);
constexpr unsigned readingCleaned = static_cast<unsigned>(Stage::readingCleaned);
constexpr unsigned cleaning = static_cast<unsigned>(Stage::cleaning);
constexpr unsigned validating = static_cast<unsigned>(Stage::validating);
constexpr unsigned research = static_cast<unsigned>(Stage::research);
constexpr unsigned workbook = reading | readingCleaned | cleaning;
constexpr unsigned table = reading | readingCleaned;

constexpr unsigned kind = 1;    ///< find the file's kind
constexpr unsigned clean = 2;   ///< try whether cleaning helps
constexpr unsigned sheets = 4;  ///< list the sheets
constexpr unsigned lines = 8;   ///< find a carriage return

enum class When : std::uint8_t {
  always,
  selected,         ///< a table was asked for
  headerOnly,       ///< its range has one row, which is the header
  otherRange,       ///< its range is another one
  resultsRefused,   ///< without the saved results of formulas
  resultsAccepted,  ///< with them
};

/// Where the detail of a row is in that of the error.
enum class Match : std::uint8_t {
  whole,
  start,
  inside,  ///< after a space
};

struct Row {
  DocumentError (*error)(std::string);
  const char* detail;
  Match match;
  unsigned stages;
  unsigned actions;
  When when;
  const char* hint;  ///< may be empty
};

constexpr auto& archive = DocumentError::invalidArchive;
constexpr auto& unsupported = DocumentError::unsupported;
constexpr auto& limit = DocumentError::resourceLimit;
constexpr auto& unsafe = DocumentError::unsafeContent;
constexpr auto& choice = DocumentError::invalidSelection;
constexpr auto& formula = DocumentError::formulaValueUnavailable;
constexpr auto& validation = DocumentError::validationFailed;

constexpr const char* otherSheets =
    "zelvo clean --sheet NAME writes a workbook of the named worksheets only, without this one.";
constexpr const char* showHidden = "--include-hidden takes hidden rows, too.";
constexpr const char* a1Range = "Write --range like A1:D20, without the sheet's name.";
constexpr const char* withoutCell = "Choose a range without this cell.";
constexpr const char* damaged =
    "The file is damaged, or its writer breaks the rules of the format. Copy or download it again.";
constexpr const char* ambiguous =
    "The file is damaged, or programs would read it in different ways. Ask for another copy.";
constexpr const char* ordinaryArchive = "Only archives of the form that office programs write are read.";
constexpr const char* useWord = "-o OUT.docx writes a Word table instead. Or choose fewer rows or columns.";
constexpr const char* othersValues =
    "The document shows other values than --expect. Extract the table with the options of create.";
constexpr const char* unchangedOnly =
    "Only a document that zelvo create wrote is valid, and only unchanged: office programs change it when "
    "they "
    "save it.";
constexpr const char* chartData =
    "Name the file of the dataset by --dataset or --datasets: it holds the data of the deck's charts.";
constexpr const char* citable =
    "Cite only URLs of --source. Without --source and --no-sources, any URL may be cited.";

// clang-format off
constexpr Row rows[] = {
    // The archive.
    {archive, RefusalDetail::missingDirectory, Match::whole, workbook | validating, kind, When::always, "The file begins like a document, but its end is missing. Copy or download it again."},
    {limit, RefusalDetail::archiveSize, Match::whole, workbook | validating, kind, When::always, "A document has 22 bytes to 32 MiB."},
    {unsupported, RefusalDetail::archiveForm, Match::whole, workbook | validating, kind, When::always, "It has more than 512 entries, or is a ZIP64 or split archive."},
    {unsupported, RefusalDetail::archiveMethod, Match::whole, workbook | validating, clean, When::always, ordinaryArchive},
    {unsafe, RefusalDetail::archiveLink, Match::whole, workbook | validating, 0, When::always, ordinaryArchive},
    {unsafe, RefusalDetail::archivePath, Match::whole, workbook | validating, 0, When::always, ambiguous},
    {limit, RefusalDetail::expandedSize, Match::whole, workbook, clean, When::always, "An entry may expand to 16 MiB, all entries to 64 MiB, and each to 200 times its size and 1 MiB."},

    // What surrounds the cells.
    {archive, RefusalDetail::notAPackage, Match::whole, workbook | validating, kind, When::always, "It is an archive, but not an Office document."},
    {unsupported, RefusalDetail::workbookStructure, Match::whole, workbook, kind, When::always, "It holds no workbook."},
    {unsupported, RefusalDetail::rootElement, Match::start, cleaning, kind, When::always, ambiguous},
    {unsupported, RefusalDetail::compoundFile, Match::whole, cleaning, kind, When::always, ""},
    {unsupported, RefusalDetail::binaryWorkbook, Match::whole, cleaning, kind, When::always, ""},
    {unsupported, RefusalDetail::nonXMLPart, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::activeFeature, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::embeddedObject, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::activeContentType, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::externalRelationship, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::relationshipURI, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::relationshipTraversal, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::relationshipPath, Match::whole, reading, kind | clean, When::always, ""},
    {archive, RefusalDetail::missingTarget, Match::whole, reading, kind | clean, When::always, ""},
    {unsupported, RefusalDetail::xmlEncoding, Match::whole, reading, kind | clean, When::always, ""},
    {unsafe, RefusalDetail::xmlDeclaration, Match::whole, reading, kind | clean, When::always, ""},
    {limit, RefusalDetail::xmlStructure, Match::whole, reading, kind | clean, When::always, "A part may have 200,000 elements, 100 levels and 64 attributes an element."},

    // The workbook's sheets.
    {unsupported, RefusalDetail::notTransitional, Match::whole, reading, clean, When::always, "It is saved as Strict Open XML."},
    {unsupported, RefusalDetail::worksheetType, Match::whole, reading, clean, When::always, "It has a sheet that is not a worksheet, such as a chart sheet."},
    {archive, RefusalDetail::rowIdentity, Match::whole, reading, clean, When::always, ""},
    {archive, RefusalDetail::cellWithoutAddress, Match::whole, reading, clean, When::always, ""},
    {limit, RefusalDetail::cellCount, Match::whole, reading, clean, When::always, "A sheet may have 50,000 cells."},
    {limit, RefusalDetail::sheetCount, Match::whole, reading, clean, When::always, "A workbook may have 64 sheets. zelvo clean --sheet NAME keeps the named ones."},
    {limit, RefusalDetail::sharedStrings, Match::whole, table, 0, When::always, "A workbook may have 50,000 shared strings of 32,768 characters."},
    {choice, RefusalDetail::noSuchWorksheet, Match::start, cleaning, 0, When::always, "zelvo inspect --clean lists the worksheets."},
    {unsupported, RefusalDetail::noWorksheet, Match::whole, cleaning, 0, When::always, "Chart, dialog and macro sheets are not kept."},
    {limit, RefusalDetail::sheetPlace, Match::inside, cleaning, 0, When::always, otherSheets},
    {unsupported, RefusalDetail::sheetPlace, Match::inside, cleaning, 0, When::always, otherSheets},
    {archive, RefusalDetail::sheetPlace, Match::inside, cleaning, 0, When::always, otherSheets},

    // The selected table.
    {choice, RefusalDetail::unknownSheet, Match::whole, table, sheets, When::always, "--sheet takes the exact name of a visible sheet."},
    {choice, RefusalDetail::addressBounds, Match::whole, table, sheets, When::selected, a1Range},
    {choice, RefusalDetail::address, Match::whole, table, sheets, When::selected, a1Range},
    {choice, RefusalDetail::oneRange, Match::whole, table, sheets, When::selected, a1Range},
    {choice, RefusalDetail::reversedRange, Match::whole, table, sheets, When::selected, a1Range},
    {limit, RefusalDetail::selectionTooLarge, Match::whole, table, sheets, When::headerOnly, "The range has one row, which is the header. --no-header takes it as data."},
    {limit, RefusalDetail::selectionTooLarge, Match::whole, table, sheets, When::otherRange, "Choose a smaller --range: at most 8 columns and 200 rows below the header. zelvo extract prints larger ones with --csv, --tsv, --jsonl, --markdown or no format."},
    {unsupported, RefusalDetail::mergedCells, Match::start, table, 0, When::always, "--unmerge removes merged areas before the table is read; no cell changes."},
    {choice, RefusalDetail::hiddenColumns, Match::whole, table, 0, When::always, "Choose a --range without hidden columns."},
    {choice, RefusalDetail::noVisibleRows, Match::whole, table, 0, When::always, showHidden},
    {choice, RefusalDetail::hiddenHeader, Match::whole, table, 0, When::always, showHidden},
    {choice, RefusalDetail::header, Match::whole, table, 0, When::always, "Start the --range at the row of the column titles. Or use --no-header, if all rows are data."},
    {choice, RefusalDetail::noDataRows, Match::whole, table, 0, When::always, "No row below the header is visible. --no-header takes the first row as data, --include-hidden takes hidden rows, too."},
    {formula, "", Match::start, table, 0, When::resultsRefused, "--cached-formulas takes the results that are saved in the workbook."},
    {formula, "", Match::start, table, 0, When::resultsAccepted, "No result is saved for this formula. Choose a range without this cell, or have the workbook calculated and saved."},
    {unsupported, RefusalDetail::sharedFormula, Match::start, reading, 0, When::always, "--clean writes shared formulas out. An array formula is refused with it, too: choose a range without this cell."},
    {unsupported, RefusalDetail::sharedFormula, Match::start, readingCleaned, 0, When::always, withoutCell},
    {unsupported, RefusalDetail::numberFormat, Match::start, table, 0, When::always, "--plain-formats replaces number formats that cannot be shown: dates become yyyy-mm-dd, other numbers are shown as they are stored."},
    {unsupported, RefusalDetail::date, Match::start, table, 0, When::always, withoutCell},
    {unsupported, RefusalDetail::timeSpan, Match::start, table, 0, When::always, withoutCell},
    {limit, RefusalDetail::cellText, Match::start, table, 0, When::always, "A cell may have 2,000 characters. Choose a range without longer ones."},

    // The document that is created.
    {choice, RefusalDetail::tableBounds, Match::whole, table, 0, When::always, "--title takes 1 to 160 characters; at most 200 rows are written."},
    {unsupported, RefusalDetail::longSlideCells, Match::whole, table, 0, When::always, useWord},
    {unsupported, RefusalDetail::tallSlideRow, Match::whole, table, 0, When::always, useWord},
    {limit, RefusalDetail::slideCount, Match::whole, table, 0, When::always, useWord},
    {unsupported, RefusalDetail::longSlideTitle, Match::whole, table, 0, When::always, "Choose a shorter --title."},
    {unsupported, RefusalDetail::longChartTitle, Match::whole, table, 0, When::always, "Choose a shorter --chart-title."},
    {validation, RefusalDetail::tableDiffers, Match::whole, table, lines, When::selected, ""},
    {choice, RefusalDetail::chartShape, Match::whole, table, 0, When::always, "--chart CATEGORY:VALUE takes two columns. Choose a --range of at most 30 data rows."},
    {choice, RefusalDetail::chartValues, Match::whole, table, 0, When::always, "In every row the category needs 1 to 60 characters and the value a number. Choose other columns or rows."},
    {choice, RefusalDetail::chartUnits, Match::whole, table, 0, When::always, "All values need the same number format. Choose other rows, or use --plain-formats."},

    // The document that is validated.
    {validation, RefusalDetail::missingChart, Match::whole, validating, 0, When::always, "The document has no chart. Leave --chart out."},
    {validation, RefusalDetail::unexpectedChart, Match::whole, validating, 0, When::always, "The document has a chart. Name its columns by --chart CATEGORY:VALUE."},
    {validation, RefusalDetail::tableDiffers, Match::whole, validating, 0, When::always, othersValues},
    {validation, RefusalDetail::tableDimensions, Match::whole, validating, 0, When::always, othersValues},
    {validation, RefusalDetail::chartDiffers, Match::whole, validating, 0, When::always, "The chart shows other columns than --chart."},

    // Research results.
    {validation, RefusalDetail::rowSources, Match::whole, research, 0, When::always, citable},
    {validation, RefusalDetail::slideSources, Match::whole, research, 0, When::always, citable},
    {validation, RefusalDetail::scopedSources, Match::whole, research, 0, When::always, "Cite only what --scope lists."},
    {validation, RefusalDetail::sourceIDs, Match::whole, research, 0, When::always, "--scope SCOPE.json says what source IDs mean."},
    {validation, RefusalDetail::noChart, Match::whole, research, 0, When::always, "Without --require-chart a dataset needs no chart."},
    {validation, RefusalDetail::datasetOutsideScope, Match::whole, research, 0, When::always, "--allow-dataset ID allows one dataset of --datasets; without it all are allowed."},
    {validation, RefusalDetail::missingDataset, Match::whole, research, 0, When::always, "--datasets must hold every dataset that the deck names."},
    {validation, RefusalDetail::sharedChart, Match::whole, research, 0, When::always, chartData},
    {validation, RefusalDetail::referencedChart, Match::whole, research, 0, When::always, chartData},
    {validation, RefusalDetail::noReportTable, Match::whole, research, 0, When::always, "A table is lines like | a | b |, or text with semicolons or tabs between lines of ```."},

    // All others: the first row that applies counts.
    {archive, "", Match::start, reading, kind | clean, When::always, damaged},
    {archive, "", Match::start, cleaning, kind, When::always, ambiguous},
    {archive, "", Match::start, readingCleaned, 0, When::selected, "A cell of the range holds a value that is not valid. Choose a smaller --range."},
    {unsupported, "", Match::start, cleaning, kind, When::always, ambiguous},
    {archive, "", Match::start, validating, kind, When::always, damaged},
    {unsupported, "", Match::start, validating, kind, When::always, unchangedOnly},
    {unsafe, "", Match::start, validating, kind, When::always, unchangedOnly},
    {limit, "", Match::start, validating, kind, When::always, unchangedOnly},
    {validation, "", Match::start, validating, kind, When::always, unchangedOnly},
};
// clang-format on

constexpr bool isSentence(std::string_view hint) {
  return hint.empty() || hint.ends_with('.');
}
static_assert(std::ranges::all_of(rows, [](const Row& row) { return isSentence(row.hint); }));
// Research results are no workbooks: the actions, which look at workbooks, do not apply to them.
static_assert(std::ranges::all_of(rows,
                                  [](const Row& row) { return row.stages != research || row.actions == 0; }));

/// What precedes and follows the detail in the message of such an error.
struct Frame {
  explicit Frame(DocumentError (*error)(std::string)) {
    const std::string mark = "\n";
    const std::string message = error(mark).errorDescription();
    const std::size_t at = message.find(mark);
    before = message.substr(0, at);
    after = message.substr(at + mark.size());
  }

  std::string before;
  std::string after;
};

std::optional<std::string_view> detailOf(std::string_view message, const Row& row) {
  const Frame frame(row.error);
  if (message.size() < frame.before.size() + frame.after.size() || !message.starts_with(frame.before) ||
      !message.ends_with(frame.after))
    return std::nullopt;
  message.remove_prefix(frame.before.size());
  message.remove_suffix(frame.after.size());
  return message;
}

bool holds(const Row& row, std::string_view message) {
  const auto detail = detailOf(message, row);
  if (!detail) return false;
  switch (row.match) {
    case Match::whole:
      return *detail == row.detail;
    case Match::start:
      return detail->starts_with(row.detail);
    case Match::inside:
      return detail->find(" " + std::string(row.detail)) != std::string_view::npos;
  }
  return false;
}

bool hasHeaderOnly(const TableSelection& selection) {
  try {
    const CellRange range = CellRange::parse(selection.range);
    return selection.firstRowIsHeader && range.first.row == range.last.row;
  } catch (const DocumentError&) {
    return false;
  }
}

bool holds(When when, const TableSelection* selection) {
  if (when == When::always || selection == nullptr) return when == When::always;
  switch (when) {
    case When::always:
    case When::selected:
      return true;
    case When::headerOnly:
      return hasHeaderOnly(*selection);
    case When::otherRange:
      return !hasHeaderOnly(*selection);
    case When::resultsRefused:
      return !selection->allowCachedFormulaValues;
    case When::resultsAccepted:
      return selection->allowCachedFormulaValues;
  }
  return false;
}

}  // namespace

Advice adviceFor(std::string_view message, Stage stage, const TableSelection* selection) {
  const auto applies = [&](const Row& row) {
    return (row.stages & static_cast<unsigned>(stage)) != 0 && holds(row.when, selection) &&
           holds(row, message);
  };
  const auto* const row = std::ranges::find_if(rows, applies);
  if (row == std::end(rows)) return {};
  Advice advice = {.findFileKind = (row->actions & kind) != 0,
                   .tryCleaning = (row->actions & clean) != 0,
                   .listSheets = (row->actions & sheets) != 0,
                   .findCarriageReturn = (row->actions & lines) != 0};
  if (*row->hint != '\0') advice.hints.emplace_back(row->hint);
  return advice;
}

}  // namespace zelvo
