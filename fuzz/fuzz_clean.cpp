// The workbook cleaner: the strict reader inspects every result, which has only elements of the allow-list,
// has the cells of its source, and is cleaned again to the same bytes. It never fails its own verification.

#include <map>
#include <string>

#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "Support/AllowedMarkup.hpp"
#include "fuzz/MutatesPackages.hpp"
#include "fuzz/Require.hpp"

namespace {

using zelvo::ByteBuffer;
using zelvo::PartMap;
using zelvo::XMLNode;

/// The content of each cell of a worksheet, by address. Read by local names, without empty cells.
using Cells = std::map<std::string, std::string>;

/// Whether the part needs no resolution of namespaces.
bool isPlain(XMLNode node, bool isRoot = true) {
  if (node.qualifiedName() != node.name()) return false;
  for (std::size_t i = 0; i < node.attributeCount(); ++i) {
    if (!isRoot && node.attributeName(i).starts_with("xmlns")) return false;
  }
  for (const XMLNode child : node.children()) {
    if (!isPlain(child, false)) return false;
  }
  return true;
}

std::string textOf(XMLNode string) {
  std::string text;
  for (const XMLNode piece : string.children()) {
    if (piece.name() == "t") text += piece.content();
    if (piece.name() != "r") continue;
    for (const XMLNode inner : piece.all("t"))
      text += inner.content();
  }
  return text;
}

Cells cellsOf(XMLNode worksheet) {
  Cells cells;
  const auto sheetData = worksheet.child("sheetData");
  if (!sheetData) return cells;
  for (const XMLNode row : sheetData->all("row")) {
    for (const XMLNode cell : row.all("c")) {
      const auto value = cell.child("v");
      const auto formula = cell.child("f");
      const auto inlineString = cell.child("is");
      const bool isShared = formula && formula->attribute("t") == "shared";
      std::string content;
      if (value && value->hasContent()) content += " v " + value->content();
      if (inlineString && inlineString->hasContent()) content += " is " + textOf(*inlineString);
      if (formula) content += " f " + (isShared ? std::string() : formula->content());
      if (content.empty()) continue;
      // A shared formula's text may be written out: only its address is compared.
      if (isShared) content = " shared";
      cells.emplace(zelvo::CellAddress::parse(cell.attribute("r").value_or("")).name(),
                    content + " t " + std::string(cell.attribute("t").value_or("")) + " s " +
                        std::string(cell.attribute("s").value_or("")));
    }
  }
  return cells;
}

void requireSameCells(const PartMap& before, const PartMap& after, const zelvo::WorkbookReader& source,
                      const zelvo::WorkbookReader& result) {
  if (!isPlain(zelvo::OOXML::xml(*before.find("xl/workbook.xml")).root())) return;
  ZELVO_REQUIRE(source.sheets().size() == result.sheets().size());
  for (std::size_t i = 0; i < source.sheets().size(); ++i) {
    ZELVO_REQUIRE(source.sheets()[i].name == result.sheets()[i].name);
    ZELVO_REQUIRE(source.sheets()[i].hidden == result.sheets()[i].hidden);
    const zelvo::XMLTree sourceTree = zelvo::OOXML::xml(*before.find(source.sheets()[i].path));
    if (!isPlain(sourceTree.root())) continue;
    const zelvo::XMLTree resultTree = zelvo::OOXML::xml(*after.find(result.sheets()[i].path));
    const Cells expected = cellsOf(sourceTree.root());
    const Cells written = cellsOf(resultTree.root());
    ZELVO_REQUIRE(expected.size() == written.size());
    for (const auto& [address, content] : expected) {
      ZELVO_REQUIRE(written.contains(address));
      ZELVO_REQUIRE(content.starts_with(" shared") || written.at(address) == content);
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zelvo::ByteView bytes{data, size};
  const zelvo::CleaningOptions options{.unmerge = size % 2 == 1, .plainFormats = size % 4 > 1};
  try {
    const auto cleaned = zelvo::cleanWorkbook(ByteBuffer::copyOf(bytes), "book.xlsx", options);
    const PartMap after = zelvo::BoundedZIP::read(cleaned.data.view());
    ZELVO_REQUIRE(zelvo::testing::notAllowed(after).empty());
    const zelvo::WorkbookReader result(ByteBuffer::copyOf(cleaned.data.view()), "book.xlsx");
    ZELVO_REQUIRE(result.inspection().sheets.size() == cleaned.report.sheets.size());
    const auto again = zelvo::cleanWorkbook(ByteBuffer::copyOf(cleaned.data.view()), "book.xlsx", options);
    ZELVO_REQUIRE(again.data == cleaned.data);
    try {
      const zelvo::WorkbookReader source(ByteBuffer::copyOf(bytes), "book.xlsx");
      static_cast<void>(source.inspection());
      requireSameCells(zelvo::BoundedZIP::read(bytes), after, source, result);
    } catch (const zelvo::DocumentError&) {
      return 0;  // the strict reader refuses the source
    }
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(error.errorCase() != zelvo::DocumentError::Case::validationFailed);
    ZELVO_REQUIRE(!error.detail().empty());
  }
  return 0;
}
