#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Numbers between their JSON text and the machine. A text given to these functions follows the grammar of
/// JSON numbers; the reader has checked that.
namespace zelvo::JsonNumber {

/// The integer that the text stands for, exactly, however it is written: "1", "1.0" and "10e-1" are one. None
/// for a fraction and beyond 64 bits.
std::optional<std::int64_t> integer(std::string_view text);

/// The nearest double; too small a number is zero with its sign. None for a number beyond the largest double.
std::optional<double> number(std::string_view text);

/// Appends the shortest text that reads back as the same double: in fixed notation from 1e-4 up to 2^54 in
/// magnitude, without ".0" for whole values, and scientific outside. `value` is finite.
void append(std::string& out, double value);

}  // namespace zelvo::JsonNumber
