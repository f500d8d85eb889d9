#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"

#include <string_view>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/PackageGate.hpp"
#include "DocumentRuntime/PackageIO/Relationships.hpp"
#include "DocumentRuntime/Validation/DocumentReadBack.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentProfile.hpp"
#include "DocumentRuntime/Validation/GeneratedPackage.hpp"
#include "DocumentRuntime/Validation/TableReadBack.hpp"

namespace zelvo {
namespace {

constexpr std::string_view packageRelationships = "_rels/.rels";
constexpr std::string_view officeDocumentType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";

/// The only relationship of the package must be the one to its main part.
void checkMainRelationship(const GeneratedPackage& package, std::string_view mainPart) {
  const auto relationships = package.parsed(packageRelationships);
  const auto relationship = relationships.root().children().only();
  if (!relationship || relationship->attribute("Type") != officeDocumentType ||
      OOXML::resolve(relationship->attribute("Target").value_or(""), packageRelationships) != mainPart) {
    throw DocumentError::validationFailed("main document relationship");
  }
}

}  // namespace

DocumentValidation validateGeneratedDocument(ByteView data, DocumentFormat format,
                                             const SourceTable* expectedTable,
                                             const ChartSelection* expectedChart,
                                             const std::stop_token& stop) {
  const bool isPresentation = format == DocumentFormat::pptx;
  const GeneratedPackage package(data, {.chartWorkbook = isPresentation}, stop);

  const std::string_view mainPart = isPresentation ? presentationPartName : wordPartName;
  if (!package.contains(mainPart)) throw DocumentError::validationFailed("main document part");
  checkMainRelationship(package, mainPart);
  TableReadBack table(expectedTable);
  if (isPresentation) {
    readPresentation(package, table, expectedTable, expectedChart, stop);
  } else {
    readWord(package, table);
  }
  table.check();

  DocumentValidation result{
      .structurallyValid = true,
      .sourceValuesVerified = expectedTable != nullptr,
      .visuallyVerified = false,
      .validatorVersion = std::string(GeneratedDocumentProfile::version),
      .warnings = {"Layout has not been rendered or checked in Word/PowerPoint."},
      .outputSHA256 = OOXML::hash(data),
  };
  if (expectedTable != nullptr) {
    result.warnings.insert(result.warnings.end(), expectedTable->warnings.begin(),
                           expectedTable->warnings.end());
  }
  return result;
}

}  // namespace zelvo
