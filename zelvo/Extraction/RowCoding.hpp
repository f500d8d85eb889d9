#pragma once

#include <cstdint>
#include <vector>

#include "DocumentRuntime/Coding/JsonCoding.hpp"
#include "DocumentRuntime/Records/SourceCell.hpp"

/// The JSON of a row of adjacent cells between a confined child and its parent, without what the parent knows
/// or no row form shows. A sheet has tens of thousands of cells: with the keys and addresses of `SourceCell`
/// the JSON would be four times as long, and coding it half of the work.
///
///     {"row": 7, "cells": [null, {"text":{"_0":"x"}}, [{"number":{"_0":"1.5"}}, "0.00", true]], "hidden":
///     true}
///
/// A cell is null if it is missing, its value, or a list of its value, its number format (or null) and
/// whether the value is the saved result of a formula.
namespace zelvo::RowCoding {

/// The cells' hidden marks are equal.
void encode(JsonWriter& writer, std::int64_t row, const std::vector<SourceCell>& cells);

void decode(JsonValue value, SourceCell& cell);

}  // namespace zelvo::RowCoding
