// Extraction from arbitrary workbooks: each returned cell has the text that the workbook stores.

#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/PackageIO/BoundedXML.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Workbook/TableExtraction.hpp"
#include "DocumentRuntime/Workbook/WorkbookReader.hpp"
#include "fuzz/MemoryBound.hpp"
#include "fuzz/MutatesPackages.hpp"
#include "fuzz/Require.hpp"

namespace {

using Kind = zelvo::SourceCellValue::Kind;
using zelvo::XMLNode;

/// A second, simple reader of the stored text of a cell: no maps, no caches, every part parsed when it is
/// needed.
class StoredTexts {
 public:
  explicit StoredTexts(zelvo::ByteView archive) : parts_(zelvo::BoundedZIP::read(archive)) {}

  /// The text at an address of a sheet. Returns nullopt if there is no cell.
  std::optional<std::string> at(const std::string& path, const std::string& address) const {
    const zelvo::XMLTree sheet = zelvo::OOXML::xml(*parts_.find(path));
    for (const XMLNode cell : sheet.root().descendants("c")) {
      if (zelvo::CellAddress::parse(cell.attribute("r").value_or("")).name() != address) continue;
      const auto type = cell.attribute("t").value_or("n");
      if (type == "inlineStr") return textsOf(cell, "is", false);
      const auto value = cell.child("v");
      const std::string raw = value ? value->content() : std::string();
      return type == "s" ? sharedString(raw) : raw;
    }
    return std::nullopt;
  }

 private:
  /// The texts of the `t` children of an element's first child with that name, and of the `t` elements in its
  /// other children (in runs only, if `runsOnly`).
  static std::string textsOf(XMLNode parent, std::string_view name, bool runsOnly) {
    std::string text;
    const auto element = name.empty() ? std::optional(parent) : parent.child(name);
    if (!element) return text;
    for (const XMLNode child : element->children()) {
      if (child.name() == "t") {
        text += child.content();
      } else if (!runsOnly || child.name() == "r") {
        for (const XMLNode inner : child.all("t"))
          text += inner.content();
      }
    }
    return text;
  }

  std::string sharedString(const std::string& index) const {
    const zelvo::XMLTree strings = zelvo::OOXML::xml(*parts_.find("xl/sharedStrings.xml"));
    long left = std::stol(index);
    for (const XMLNode item : strings.root().all("si")) {
      if (left-- == 0) return textsOf(item, "", true);
    }
    std::abort();
  }

  zelvo::PartMap parts_;
};

/// Dates and booleans are converted. Every other value is the stored text, and there is one only if something
/// is stored.
void requireStored(const zelvo::SourceCell& cell, const std::optional<std::string>& stored) {
  const auto kind = cell.value.kind();
  if (kind == Kind::missing) ZELVO_REQUIRE(!stored || stored->empty());
  if (kind == Kind::text || kind == Kind::number || kind == Kind::error)
    ZELVO_REQUIRE(stored == cell.value.payload());
  if (kind == Kind::boolean) ZELVO_REQUIRE(stored == (cell.value.isTrue() ? "1" : "0"));
  if (kind == Kind::date) ZELVO_REQUIRE(stored && !stored->empty());
}

/// The properties of every accepted cell.
void requireFaithful(const zelvo::SourceCell& cell, const zelvo::CellRange& range) {
  ZELVO_REQUIRE(range.contains(zelvo::CellAddress::parse(cell.address)));
  ZELVO_REQUIRE(cell.usesCachedFormulaValue == cell.formula.has_value());
  if (cell.value.kind() == Kind::number && !cell.numberFormat) {
    ZELVO_REQUIRE(cell.displayText() == cell.value.payload());
  }
  if (cell.value.kind() == Kind::missing) ZELVO_REQUIRE(cell.displayText().empty());
}

struct ExtractedTable {
  std::string path;  ///< of the sheet's part
  zelvo::SourceTable table;
};

/// Extracts from every sheet, with and without a header.
std::vector<ExtractedTable> extractedTables(zelvo::ByteView archive) {
  std::vector<ExtractedTable> tables;
  try {
    const auto reader = [&] {
      const auto limit = zelvo::fuzzing::documentMemory(archive);
      return zelvo::WorkbookReader(zelvo::ByteBuffer::copyOf(archive), "book.xlsx");
    }();
    for (const zelvo::Sheet& sheet : reader.sheets()) {
      for (const bool header : {true, false}) {
        const zelvo::TableSelection selection{.sheetName = sheet.name,
                                              .range = "A1:E6",
                                              .firstRowIsHeader = header,
                                              .includeHiddenRows = !header,
                                              .allowCachedFormulaValues = true};
        try {
          // All cells may have the same shared string.
          constexpr std::size_t cells = 30;
          const auto limit =
              zelvo::fuzzing::documentMemory(archive, cells * zelvo::fuzzing::expandedBytes(archive));
          tables.push_back({sheet.path, reader.table(selection)});
        } catch (const zelvo::DocumentError& error) {
          ZELVO_REQUIRE(!error.detail().empty());
        }
      }
    }
  } catch (const zelvo::DocumentError& error) {
    ZELVO_REQUIRE(!error.detail().empty());
  }
  return tables;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const zelvo::ByteView archive{data, size};
  const auto tables = extractedTables(archive);
  if (tables.empty()) return 0;
  const StoredTexts storedTexts(archive);
  for (const auto& [path, table] : tables) {
    const auto range = zelvo::CellRange::parse(table.selectedRange);
    for (const auto& row : table.rows) {
      ZELVO_REQUIRE(row.size() == table.columns.size());
      for (const auto& cell : row) {
        requireFaithful(cell, range);
        requireStored(cell, storedTexts.at(path, cell.address));
      }
    }
  }
  return 0;
}
