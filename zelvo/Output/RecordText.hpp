#pragma once

#include <string>

#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// A document that was made of a table, for people.
std::string describe(const GeneratedDocument& document, const SourceTable& table);

/// A document that was authored of research results, for people.
std::string describe(const std::string& format, ByteView document);

/// What a validation was asked to prove.
struct ValidationScope {
  DocumentFormat format = DocumentFormat::docx;
  bool expectsTable = false;
  bool expectsChart = false;
};

/// What was proved of a document, and what was not, for people.
std::string describe(const DocumentValidation& validation, const ValidationScope& scope);

}  // namespace zelvo
