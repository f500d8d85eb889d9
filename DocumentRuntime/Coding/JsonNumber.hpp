#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Conversion between JSON numbers and their texts. A text passed to these functions must follow the grammar
/// of JSON numbers, which the reader has checked.
namespace zelvo::JsonNumber {

/// The exact integer value of the text, in any notation: "1", "1.0" and "10e-1" are equal. Returns nullopt
/// for a fraction, and for a number of more than 64 bits.
std::optional<std::int64_t> integer(std::string_view text);

/// The nearest double. A number that is too small is zero with its sign. Returns nullopt for a number above
/// the largest double.
std::optional<double> number(std::string_view text);

/// Appends the shortest text that reads back as the same double: in fixed notation from 1e-4 up to 2^54 in
/// magnitude, without ".0" for whole values, and scientific outside. `value` is finite.
void append(std::string& out, double value);

}  // namespace zelvo::JsonNumber
