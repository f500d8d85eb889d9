#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "DocumentRuntime/Records/DocumentModels.hpp"
#include "zelvo/ExitStatus.hpp"
#include "zelvo/ResearchCommandLine.hpp"

namespace zelvo {

/// Everywhere, "-" as a file is standard input.
struct InspectArguments {
  std::vector<std::string> files;  ///< at least one
  bool json = false;
};

struct ExtractArguments {
  enum class Form { people, json, csv };

  std::string workbook;  ///< a file
  TableSelection selection;
  Form form = Form::people;
};

/// A chart as the command line names it.
struct ChartArguments {
  std::string columns;  ///< "CATEGORY:VALUE"
  std::string title;    ///< may be empty
};

struct CreateArguments {
  std::string workbook;  ///< a file
  TableSelection selection;
  std::string title;
  std::optional<ChartArguments> chart;
  std::string output;  ///< a file, or "-" for standard output
  DocumentFormat format = DocumentFormat::docx;
};

struct ValidateArguments {
  std::string document;  ///< a file
  DocumentFormat format = DocumentFormat::docx;
  std::string expectedTable;  ///< a file with the JSON of a table; empty for none
  std::optional<ChartArguments> chart;
  bool json = false;
};

/// What to do: one alternative a subcommand.
using Command =
    std::variant<InspectArguments, ExtractArguments, CreateArguments, ValidateArguments, ResearchCommand>;

/// Nothing to do but to say this: help, the version, or what is wrong with the command line.
struct Ending {
  ExitStatus status;
  std::string output;     ///< for standard output, with its line feeds
  std::string complaint;  ///< a message without prefix and line feed; empty for none
};

/// Every value comes out as it was given: nothing is split, expanded or taken from the environment.
std::variant<Command, Ending> parseCommandLine(int count, const char* const* arguments);

}  // namespace zelvo
