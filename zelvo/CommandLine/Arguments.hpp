#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"

// The arguments of each command. A file "-" is standard input, or standard output where it is an output.
namespace zelvo {

struct InspectArguments {
  std::vector<std::string> files;  ///< at least one
  bool json = false;
};

/// How cells are written as texts.
struct CellTextOptions {
  bool raw = false;              ///< stored values in place of displayed ones
  bool escapesFormulas = false;  ///< a "'" before texts that spreadsheet programs take for formulas
};

struct ExtractArguments {
  enum class Form { text, json, jsonl, csv, tsv, markdown };

  std::string workbook;      ///< a file
  TableSelection selection;  ///< may be incomplete: see `complete`
  Form form = Form::text;
  CellTextOptions cells;
};

/// A chart as the command line names it.
struct ChartArguments {
  std::string columns;  ///< "CATEGORY:VALUE"
  std::string title;    ///< may be empty
};

struct CreateArguments {
  std::string workbook;      ///< a file
  TableSelection selection;  ///< may be incomplete: see `complete`
  std::string title;
  std::optional<ChartArguments> chart;
  std::string output;  ///< a file
  DocumentFormat format = DocumentFormat::docx;
  bool json = false;  ///< print the document's record; the output is a file then
};

struct ValidateArguments {
  std::string document;  ///< a file
  DocumentFormat format = DocumentFormat::docx;
  std::string expectedTable;  ///< a file with the JSON of a table; empty for none
  std::optional<ChartArguments> chart;
  bool json = false;
};

/// What rows and slides may cite.
struct SourceArguments {
  std::vector<std::string> sources;  ///< URLs
  bool noSources = false;            ///< no URL may be cited; without it an empty list allows every URL
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
  std::string output;  ///< a file
};

struct ResearchReportArguments {
  std::string report;  ///< a file
  std::string title;
  std::vector<std::string> sources;  ///< URLs, in the order in which they are listed
  std::string output;                ///< a file
};

struct ResearchPresentationArguments {
  std::string deck;      ///< a file
  std::string dataset;   ///< a file of one dataset; empty for none
  std::string datasets;  ///< a file of several; empty for none, and if there is a `dataset`
  std::vector<std::string> allowedDatasets;  ///< identifiers among `datasets`; empty for all
  SourceArguments sources;
  std::string output;  ///< a file; empty to print the deck as JSON
};

/// The arguments of the given command.
using Command = std::variant<InspectArguments, ExtractArguments, CreateArguments, ValidateArguments,
                             ResearchCheckArguments, ResearchWorkbookArguments, ResearchReportArguments,
                             ResearchPresentationArguments>;

}  // namespace zelvo
