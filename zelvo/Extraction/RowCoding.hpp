#pragma once

#include <cstdint>
#include <vector>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"

/// The JSON of a row of adjacent cells between a confined child and its parent, without what the parent knows
/// or no row form shows. A sheet has tens of thousands of cells: in the form of records the JSON would be
/// several times as long, and coding it half of the work.
///
///     {"row": 7, "cells": [null, "x", true, ["2"], {"date":{"_0":"2024-07-01"}}, [["1.5"], "0.00", true]],
///     "hidden": true}
///
/// A value is null if it is missing, a string if it is text, a boolean, a list of a number's text, or as in
/// records. A cell is its value, or a list of three: its value, its number format (or null) and whether the
/// value is the saved result of a formula.
namespace zelvo::RowCoding {

/// The cells' hidden marks are equal.
void encode(JsonWriter& writer, std::int64_t row, const std::vector<SourceCell>& cells);

void decode(JsonValue value, SourceCell& cell);

}  // namespace zelvo::RowCoding
