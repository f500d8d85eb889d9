#pragma once

#include <string>
#include <vector>

#include "DocumentRuntime/PackageIO/XMLTree.hpp"
#include "DocumentRuntime/Records/DocumentModels.hpp"

namespace zelvo {

/// A table as its document shows it: rows of cell texts, the header first.
using TableTexts = std::vector<std::vector<std::string>>;

/// Adds the rows of a `tbl` element of either vocabulary: its `tr` children, their `tc` children, and of each
/// all `t` at any depth, joined.
void appendTableTexts(TableTexts& rows, XMLNode table);

/// Throws `DocumentError` validationFailed "table dimensions" unless there are 1 to 201 rows of 1 to 8 cells,
/// all as many.
void checkTableDimensions(const TableTexts& rows);

/// Throws what the input rules throw for `expected`, then validationFailed "table cells differ from frozen
/// source values" unless `rows` are exactly the expected titles and display texts.
void compareTable(const TableTexts& rows, const SourceTable& expected);

}  // namespace zelvo
