#pragma once

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Authoring/DocumentAuthor.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Validation/GeneratedDocumentValidation.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"
#include "Support/Tables.hpp"
#include "Support/Texts.hpp"

/// Generated documents to be edited, and refusals of the edited ones as tables of text.
namespace zelvo::testing {

inline PackageBuilder unpacked(ByteView bytes) {
  PackageBuilder package;
  for (const Part& part : BoundedZIP::read(bytes))
    package.part(part.name).text = part.bytes.text();
  return package;
}

/// A generated document as editable parts, with the expected table and chart.
struct EditedDocument {
  DocumentFormat format;
  PackageBuilder package;
  std::optional<SourceTable> table;
  std::optional<ChartSelection> chart = {};

  std::string& part(std::string_view name) { return package.part(name).text; }

  /// Renames the main part and its relationship.
  void renameMainPart(std::string_view name, std::string_view newName) {
    package.part(name).name = newName;
    replace(part("_rels/.rels"), name, newName);
  }

  DocumentValidation validate() const {
    return validateGeneratedDocument(package.bytes().view(), format, table ? &*table : nullptr,
                                     chart ? &*chart : nullptr);
  }
};

/// A table that takes two slides, its second column numbers.
inline SourceTable deckTable() {
  SourceTable table = tableOf(3, 12);
  for (std::size_t i = 0; i < table.rows.size(); ++i) {
    table.rows[i][1].value = SourceCellValue::number(std::to_string(i) + ".25");
    table.rows[i][1].numberFormat = "0.0";
  }
  return table;
}

inline EditedDocument wordDocument() {
  const SourceTable table = tableOf(3, 4);
  return {DocumentFormat::docx, unpacked(DocumentAuthor::docx(table, "Title").view()), table};
}

inline EditedDocument deck(const std::optional<ChartSelection>& chart = {}) {
  const SourceTable table = deckTable();
  return {DocumentFormat::pptx, unpacked(DocumentAuthor::pptx(table, "Title", chart).view()), table, chart};
}

inline EditedDocument chartDeck() {
  return deck(ChartSelection{.categoryColumn = 0, .valueColumn = 1, .title = "Chart"});
}

inline constexpr const char* otherMainPart = "other.xml";

/// Edits a part: "A…B" is the text from A to the next B; no text at all is the whole part. "*" after the name
/// edits every place, "book:" before it edits a part of the chart's workbook.
inline void edit(PackageBuilder& package, std::string name, std::string from, const std::string& to) {
  if (name.starts_with("book:")) {
    std::string& bytes = package.part("ppt/embeddings/chart-data.xlsx").text;
    PackageBuilder workbook = unpacked(bytesOf(bytes));
    edit(workbook, name.substr(5), from, to);
    bytes = workbook.bytes().text();
    return;
  }
  const bool isEverywhere = name.ends_with('*');
  if (isEverywhere) name.pop_back();
  const auto part = std::ranges::find(package.parts, name, &TextPart::name);
  // A row may have given the main part another name.
  std::string& text = part == package.parts.end() && !from.empty() ? package.part(otherMainPart).text
                                                                   : package.part(name).text;
  if (const auto gap = from.find("…"); gap != std::string::npos) {
    const std::size_t start = text.find(from.substr(0, gap));
    const std::string end = from.substr(gap + std::string("…").size());
    from = text.substr(start, text.find(end, start) + end.size() - start);
  }
  if (from.empty())
    text = multiplied(to);
  else if (isEverywhere)
    replaceAll(text, from, multiplied(to));
  else
    replace(text, from, multiplied(to));
}

using DocumentChanges = std::map<std::string, std::function<void(EditedDocument&)>>;

/// Checks a table of refusals, "part | from => to | error | place". A row of a name in `changes` makes that
/// change. Alternatives are rows of their own. Without a case, an error is a validationFailed.
inline void expectDocumentRefusals(const std::function<EditedDocument()>& good, std::string_view table,
                                   const DocumentChanges& changes) {
  std::vector<Refusal<EditedDocument>> rows;
  const auto addRow = [&](const std::string& name, const std::string& from, const std::string& to,
                          const std::string& error, const std::string& place) {
    const auto change = changes.find(name);
    const auto spoil = [=](EditedDocument& edited) { edit(edited.package, name, from, to); };
    rows.push_back({name + " " + from + " becomes " + to, change == changes.end() ? spoil : change->second,
                    error.find(": ") == std::string::npos ? "validationFailed: " + error : error, place});
  };
  for (const auto& [names, allFrom, allTo, error, place] : cases<5>(table)) {
    for (const std::string& name : alternatives(names)) {
      for (const std::string& from : alternatives(allFrom)) {
        for (const std::string& to : alternatives(allTo))
          addRow(name, from, to, error, place);
      }
    }
  }
  expectRefusals<EditedDocument>(good, rows, [](const auto& edited) { edited.validate(); });
}

}  // namespace zelvo::testing
