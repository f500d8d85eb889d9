#pragma once

#include <string>
#include <string_view>

#include "DocumentRuntime/Cleaning/WorkbookCleaner.hpp"
#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "Support/AllowedMarkup.hpp"
#include "Support/PackageBuilder.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo::testing {

/// A report in one line: "Data 3/1 hyperlinks 2@0 …", cells and formulas of the sheets, then the kinds. Parts
/// are in brackets; what every workbook loses is left out.
inline std::string dump(const CleaningReport& report) {
  std::string out;
  const auto count = [&](const auto& item) {
    out += "; " + item.kind + ' ' + std::to_string(item.count);
    for (const SheetCount& sheet : item.sheets.value_or(std::vector<SheetCount>()))
      out += " " + std::to_string(sheet.count) + "@" + std::to_string(sheet.sheet);
  };
  for (const CleanedSheet& sheet : report.sheets)
    out += sheet.name + ' ' + std::to_string(sheet.cells) + '/' + std::to_string(sheet.formulas) + "; ";
  if (!out.empty()) out.resize(out.size() - 2);
  for (const DroppedContent& dropped : report.dropped) {
    count(dropped);
    for (const std::string& part : dropped.parts)
      out += " [" + part + "]";
    for (const std::string& name : dropped.names.value_or(std::vector<std::string>()))
      out += " \"" + name + "\"";
  }
  for (const ChangedContent& changed : report.changed) {
    count(changed);
    if (changed.code) out += " {" + *changed.code + "}";
  }
  return out;
}

struct CleanedBook {
  CleanedWorkbook cleaned;
  PartMap parts = PartMap();

  /// The text of a part, from the first `from` to the last `to`, both left out.
  std::string part(std::string_view name, std::string_view from, std::string_view to) const {
    const std::string text(parts.find(name)->text());
    const std::size_t start = text.find(from);
    const std::size_t end = text.rfind(to);
    if (start == std::string::npos || end == std::string::npos) return {};
    return text.substr(start + from.size(), end - start - from.size());
  }
  std::string rows(std::size_t sheet = 1) const {
    return part("xl/worksheets/sheet" + std::to_string(sheet) + ".xml", "<sheetData>", "</sheetData>");
  }
  std::string report() const { return dump(cleaned.report); }
};

/// Cleans a package, and compares the result with the allow-list and with cleaning it again.
inline CleanedBook clean(const PackageBuilder& package, const CleaningOptions& options = {}) {
  CleanedBook book{.cleaned = cleanWorkbook(package.bytes(), "book.xlsx", options)};
  book.parts = BoundedZIP::read(book.cleaned.data.view());
  EXPECT_EQ(notAllowed(book.parts), "");
  const auto again = cleanWorkbook(ByteBuffer::copyOf(book.cleaned.data.view()), "book.xlsx");
  EXPECT_TRUE(again.data == book.cleaned.data) << "cleaning twice changes bytes";
  return book;
}
inline CleanedBook clean(const WorkbookText& workbook, const CleaningOptions& options = {}) {
  return clean(workbookPackage(workbook), options);
}

/// What cleaning refuses, or nothing.
template <typename Workbook>
Outcome refusalOf(const Workbook& workbook, const CleaningOptions& options = {}) {
  return outcomeOf([&] { clean(workbook, options); });
}

}  // namespace zelvo::testing
