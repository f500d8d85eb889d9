#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"

/// The native chart of a dataset, over a sheet named "Data" whose first row holds the headings.
namespace zelvo::ResearchChartAuthor {

/// The chart part, without the XML declaration. The dataset and the chart must have passed validation:
/// `cells` are the resolved cells, one per column in each row.
///
/// `embedded`: the sheet is in a workbook of its own, related to the part as "rId1". `columnMap` maps the
/// dataset's columns to the sheet's where they differ; both are zero-based. `zeroBaseline` fixes one end of
/// the value axis of a bar chart at zero if all values are on one side of it.
std::string xml(const ResearchSpreadsheet& content,
                const std::vector<std::vector<ResearchSpreadsheet::Cell>>& cells,
                const ResearchSpreadsheet::Chart& chart, bool embedded,
                const std::map<std::int64_t, std::int64_t>& columnMap, bool zeroBaseline);

/// The letter of a zero-based column. One letter is enough: a dataset has at most twelve columns.
char letter(std::int64_t index);

/// The name of a series in legends: the column's name, with its unit if that is not empty.
std::string seriesName(const ResearchSpreadsheet::Column& column);

/// A text without control characters, as charts show it. Not escaped.
std::string cleaned(std::string_view text);

/// The theme part of documents with such charts, without the XML declaration. Its first four accents are the
/// colours of a chart's series: they differ in hue and in lightness, so that they are told apart in greyscale
/// and by colour-blind readers.
std::string themeXML();

}  // namespace zelvo::ResearchChartAuthor
