#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/SampleTable.hpp"

namespace zelvo::testing {

/// Puts `to` in the place of the first `from`, which must be there: an edit that does nothing tests nothing.
inline void replace(std::string& text, std::string_view from, std::string_view to) {
  const auto position = text.find(from);
  if (position == std::string::npos) throw std::logic_error("nothing to edit: " + std::string(from));
  text.replace(position, from.size(), to);
}

inline void replaceAll(std::string& text, std::string_view from, std::string_view to) {
  replace(text, from, to);
  for (auto position = text.find(to) + to.size(); (position = text.find(from, position)) != std::string::npos;
       position += to.size()) {
    text.replace(position, from.size(), to);
  }
}

/// The first element of that qualified name, tags included; it must not hold another of its name.
inline std::string element(const std::string& text, const std::string& name) {
  const auto start = text.find('<' + name + '>');
  const std::string endTag = "</" + name + '>';
  const auto end = text.find(endTag, start);
  if (start == std::string::npos || end == std::string::npos) throw std::logic_error("no element " + name);
  return text.substr(start, end + endTag.size() - start);
}

inline PackageBuilder unpacked(ByteView bytes) {
  PackageBuilder package;
  for (const Part& part : BoundedZIP::read(bytes))
    package.part(part.name).text = part.bytes.text();
  return package;
}

/// A document that the authors made, taken apart to be spoiled, with what is expected of it.
struct EditedDocument {
  DocumentFormat format;
  PackageBuilder package;
  std::optional<SourceTable> table;
  std::optional<ChartSelection> chart = {};

  std::string& part(std::string_view name) { return package.part(name).text; }

  /// Renames the main part and everything that leads to it.
  void renameMainPart(std::string_view name, std::string_view newName) {
    package.part(name).name = newName;
    replace(part("_rels/.rels"), name, newName);
  }

  /// Spoils the workbook behind the chart.
  void editWorkbook(const std::function<void(PackageBuilder&)>& edit) {
    std::string& bytes = part("ppt/embeddings/chart-data.xlsx");
    PackageBuilder workbook = unpacked(bytesOf(bytes));
    edit(workbook);
    bytes = workbook.bytes().text();
  }

  DocumentValidation validate() const {
    return DocumentEngine::validate(package.bytes().view(), format, table ? &*table : nullptr,
                                    chart ? &*chart : nullptr);
  }
};

inline EditedDocument wordDocument() {
  const SourceTable table = tableOf(3, 4);
  return {.format = DocumentFormat::docx,
          .package = unpacked(DocumentAuthor::docx(table, "Title").view()),
          .table = table};
}

/// A table that takes two slides, its second column numbers.
inline SourceTable deckTable() {
  SourceTable table = tableOf(3, 12);
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    table.rows[i][1].value = SourceCellValue::number(std::to_string(i) + ".25");
    table.rows[i][1].numberFormat = "0.0";
  }
  return table;
}

inline EditedDocument deck() {
  const SourceTable table = deckTable();
  return {.format = DocumentFormat::pptx,
          .package = unpacked(DocumentAuthor::pptx(table, "Title", {}).view()),
          .table = table};
}

inline EditedDocument chartDeck() {
  const SourceTable table = deckTable();
  const ChartSelection chart{.categoryColumn = 0, .valueColumn = 1, .title = "Chart"};
  return {.format = DocumentFormat::pptx,
          .package = unpacked(DocumentAuthor::pptx(table, "Title", chart).view()),
          .table = table,
          .chart = chart};
}

}  // namespace zelvo::testing
