#pragma once

#include <optional>
#include <string>

#include "zelvo/CommandLine/Arguments.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/CleaningText.hpp"
#include "zelvo/Output/Result.hpp"

// The workbook that a command reads: as it is in its file, or cleaned first.
namespace zelvo {

struct WorkbookInput {
  DocumentWorkerRequest request;           ///< without an operation
  std::optional<CleaningRecord> cleaning;  ///< if the request holds the cleaned workbook
};

/// Checks that the file for the cleaned workbook, if any, is not the workbook. Called before anything is
/// read.
Failure checkKeptFile(const std::string& workbook, const CleaningArguments& cleaning);

/// Reads the file, and has it cleaned if the arguments ask for it.
Result<WorkbookInput> readWorkbook(const Hosts& hosts, const std::string& path,
                                   const CleaningArguments& cleaning);

/// Sends the request. Returns the response, or its error with hints; then the workbook is without its bytes.
Result<DocumentWorkerResponse> ask(const Hosts& hosts, WorkbookInput& workbook);

/// Writes the cleaned workbook to the file that the arguments name, if any. Called once the command has its
/// record: a command that fails writes no file.
Failure keepCleaned(const WorkbookInput& workbook, const CleaningArguments& cleaning);

/// The record of a response that is no refusal. Its document may have been moved out.
CleaningRecord cleaningRecord(DocumentCleanerResponse response);

/// The record's JSON; for a cleaned workbook {"cleaning": …, "record": …}.
std::string withCleaning(const std::optional<CleaningRecord>& cleaning, std::string record);

/// The JSON of what was cleaned: both digests, then the fields of the report.
std::string toJson(const CleaningRecord& cleaning);

}  // namespace zelvo
