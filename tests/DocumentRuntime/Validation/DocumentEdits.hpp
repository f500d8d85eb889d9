#pragma once

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "DocumentRuntime/Validation/EditedDocument.hpp"
#include "Support/RefusalTable.hpp"

/// Refusals of edited documents, as tables of text.
namespace zelvo::testing {

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
