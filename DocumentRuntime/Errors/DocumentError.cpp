#include "DocumentRuntime/Errors/DocumentError.hpp"

#include <utility>

namespace zelvo {
namespace {

std::string describe(DocumentError::Case errorCase, const std::string& detail) {
  switch (errorCase) {
    case DocumentError::Case::invalidArchive:
      return "The document archive is invalid: " + detail;
    case DocumentError::Case::unsupported:
      return "This document feature is not supported yet: " + detail;
    case DocumentError::Case::resourceLimit:
      return "The document exceeds a safe processing limit: " + detail;
    case DocumentError::Case::unsafeContent:
      return "The document contains unsupported active or external content: " + detail;
    case DocumentError::Case::invalidSelection:
      return "The selected table cannot be used: " + detail;
    case DocumentError::Case::formulaValueUnavailable:
      return "Cell " + detail +
             " needs a verified formula result. This reader does not recalculate formulas.";
    case DocumentError::Case::validationFailed:
      return "The generated document did not pass validation: " + detail;
  }
  return detail;
}

}  // namespace

DocumentError::DocumentError(Case errorCase, std::string detail)
    : errorCase_(errorCase), detail_(std::move(detail)), description_(describe(errorCase_, detail_)) {}

DocumentError DocumentError::invalidArchive(std::string detail) {
  return {Case::invalidArchive, std::move(detail)};
}
DocumentError DocumentError::unsupported(std::string detail) {
  return {Case::unsupported, std::move(detail)};
}
DocumentError DocumentError::resourceLimit(std::string detail) {
  return {Case::resourceLimit, std::move(detail)};
}
DocumentError DocumentError::unsafeContent(std::string detail) {
  return {Case::unsafeContent, std::move(detail)};
}
DocumentError DocumentError::invalidSelection(std::string detail) {
  return {Case::invalidSelection, std::move(detail)};
}
DocumentError DocumentError::formulaValueUnavailable(std::string address) {
  return {Case::formulaValueUnavailable, std::move(address)};
}
DocumentError DocumentError::validationFailed(std::string detail) {
  return {Case::validationFailed, std::move(detail)};
}

ResponseTooLarge::ResponseTooLarge() : DocumentError(Case::resourceLimit, "response size") {}

}  // namespace zelvo
