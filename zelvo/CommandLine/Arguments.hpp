#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"

// The arguments of each command. A file "-" is standard input, or standard output where it is an output.
namespace zelvo {

/// Where a document is written.
struct OutputArguments {
  std::string file;        ///< empty for nowhere, if the command need not write one
  bool noClobber = false;  ///< an existing file is an error
};

/// How a workbook is cleaned before it is read.
struct CleaningArguments {
  bool clean = false;  ///< without it the other fields have their defaults
  bool unmerge = false;
  bool plainFormats = false;
  OutputArguments kept;  ///< where the cleaned workbook is written
};

struct InspectArguments {
  std::vector<std::string> files;  ///< at least one
  CleaningArguments cleaning;      ///< with a kept file only if there is one file
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
  CleaningArguments cleaning;
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
  CleaningArguments cleaning;
  std::string title;
  std::optional<ChartArguments> chart;
  OutputArguments output;
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

struct CleanArguments {
  std::string workbook;             ///< a file
  std::vector<std::string> sheets;  ///< the names of the worksheets to keep; empty for all
  bool unmerge = false;
  bool plainFormats = false;
  bool json = false;  ///< print the report as JSON
  OutputArguments output;
};

struct BatchArguments {
  enum class Operation { inspect, clean };

  Operation operation = Operation::inspect;
  std::vector<std::string> paths;  ///< files and folders
  std::string filesFrom;           ///< a file with a path a line; empty for none
  bool nulSeparated = false;       ///< the paths in `filesFrom` end in NUL, not in a line feed
  std::int64_t shard = 1;          ///< 1 to `shards`
  std::int64_t shards = 1;         ///< at most 2^31
  std::int64_t jobs = 0;           ///< files at once; 0 for the number of processors
  bool resume = false;
  bool quiet = false;
  OutputArguments output;    ///< the results; nowhere means standard output
  std::string outputFolder;  ///< of `clean`; `output.noClobber` applies to its workbooks, too
  bool unmerge = false;
  bool plainFormats = false;
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
  bool theme = false;
  SourceArguments sources;
  OutputArguments output;
};

struct ResearchReportArguments {
  std::string report;  ///< a file
  std::string title;
  std::vector<std::string> sources;  ///< URLs, in the order in which they are listed
  OutputArguments output;
};

struct ResearchPresentationArguments {
  std::string deck;      ///< a file
  std::string dataset;   ///< a file of one dataset; empty for none
  std::string datasets;  ///< a file of several; empty for none, and if there is a `dataset`
  std::vector<std::string> allowedDatasets;  ///< identifiers among `datasets`; empty for all
  SourceArguments sources;
  OutputArguments output;  ///< nowhere to print the deck as JSON
};

struct DoctorArguments {
  std::string request;  ///< a file with a request to check; empty to check the machine
};

/// Of every command that starts a process.
struct HostArguments {
  std::string libexec;                ///< the folder of worker and cleaner; empty to find it
  std::int64_t timeoutSeconds = 180;  ///< of each process, by the wall clock
};

/// The arguments of the given command.
using Command =
    std::variant<BatchArguments, InspectArguments, ExtractArguments, CreateArguments, ValidateArguments,
                 CleanArguments, ResearchCheckArguments, ResearchWorkbookArguments, ResearchReportArguments,
                 ResearchPresentationArguments, DoctorArguments>;

}  // namespace zelvo
