#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/PackageIO/PartMap.hpp"
#include "DocumentRuntime/PackageIO/PartWriting.hpp"

/// The package of every authored workbook: inline strings, without a shared string part.
namespace zelvo::DocumentAuthor {

struct WorkbookSheet {
  std::string name;  ///< escaped here
  std::string xml;   ///< the worksheet part, without the XML declaration
  std::vector<OOXML::Relationship> relationships;
};

/// A part that is not a worksheet: a table, a drawing, a chart.
struct WorkbookPart {
  std::string folder;            ///< within xl/
  std::string name;              ///< within the folder
  std::string_view contentType;  ///< a string literal, needs no escaping
  std::string xml;               ///< without the XML declaration
  std::vector<OOXML::Relationship> relationships;
};

struct WorkbookPlan {
  std::string beforeSheets;  ///< of the workbook element: views
  std::vector<WorkbookSheet> sheets;
  std::string afterSheets;  ///< of the workbook element: calculation properties
  std::string stylesXML;    ///< without the XML declaration; empty for a workbook without styles
  std::string themeXML;     ///< the same; empty for a workbook without a theme
  std::vector<WorkbookPart> parts;
};

/// All parts of a workbook; sheets are numbered from 1 in order.
PartMap workbookPackage(const WorkbookPlan& plan);

inline constexpr std::string_view spreadsheetNamespace =
    "http://schemas.openxmlformats.org/spreadsheetml/2006/main";

/// A cell with an inline string. `attributes` follow the address, with a leading space; `text` must be
/// escaped.
void appendTextCell(std::string& xml, const CellAddress& address, std::string_view attributes,
                    std::string_view text);
/// A cell with a stored value, which must be escaped.
void appendValueCell(std::string& xml, const CellAddress& address, std::string_view attributes,
                     std::string_view value);

}  // namespace zelvo::DocumentAuthor
