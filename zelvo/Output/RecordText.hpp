#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

// Records as human-readable text. Lines are indented, so that the file name can precede them. `notes` are
// printed before the warnings: see `cleaningNotes`.
namespace zelvo {

/// The sheets as a table, then the workbook's facts, then the warnings.
std::string describe(const WorkbookInspection& inspection, const std::string& notes = "");

/// A document that was created from a table.
std::string describe(const GeneratedDocument& document, const SourceTable& table,
                     const std::string& notes = "");

/// A document that was authored from research results. `format` is its name, like "Excel workbook".
std::string describe(const std::string& format, ByteView document);

/// What a validation was asked to verify.
struct ValidationScope {
  DocumentFormat format = DocumentFormat::docx;
  bool expectsTable = false;
  bool expectsChart = false;
};

/// What was verified and what was not.
std::string describe(const DocumentValidation& validation, const ValidationScope& scope);

}  // namespace zelvo
