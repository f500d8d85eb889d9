#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "Support/ArchiveBuilder.hpp"

/// Packages described as the texts of their parts, and workbooks that a test fills in.
namespace zelvo::testing {

struct TextPart {
  std::string name;
  std::string text;
};

struct PackageBuilder {
  std::vector<TextPart> parts;

  /// The part of that name, to be edited or renamed; added at the end when it is not there.
  TextPart& part(std::string_view name);
  void remove(std::string_view name);

  PartMap partMap() const;
  /// As this system writes packages: stored, in name order.
  ByteBuffer bytes() const;
  /// As office programs do: deflated, in the order of the list. May still be spoiled.
  ArchiveBuilder archive() const;
};

/// The least that passes for a package: content types, and relationships that lead to one part, "part.xml".
PackageBuilder minimalPackage();

struct WorksheetText {
  std::string name;
  std::string content;          ///< XML inside the worksheet element
  std::string attributes = {};  ///< more attributes of the sheet element: ` state="hidden"`
};

/// A Transitional workbook. What is empty is left out.
struct WorkbookText {
  std::vector<WorksheetText> sheets;
  std::string properties = {};                  ///< XML of the workbook part before its sheets
  std::string calculation = {};                 ///< … and after them
  std::vector<std::string> sharedStrings = {};  ///< XML inside each si element
  std::string styles = {};                      ///< XML inside the styleSheet element
};

/// The sheets are "xl/worksheets/sheet1.xml" and so on.
PackageBuilder workbookPackage(const WorkbookText& workbook);

/// One sheet, "Data", that holds these row elements.
WorkbookText plainWorkbook(std::string_view rows);

/// Such a sheet of so many rows, each a cell in column A that shows the first shared string.
WorkbookText sharedStringColumn(std::size_t rows);

/// Three sheets with something of everything: every type of cell, rich and phonetic strings, dates and
/// currencies, a formula with and one without a stored result, hidden rows, columns and sheets, merged cells
/// and a filter.
WorkbookText richWorkbook();

}  // namespace zelvo::testing
