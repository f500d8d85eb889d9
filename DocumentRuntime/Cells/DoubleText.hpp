#pragma once

#include <string>

/// Decimal texts of doubles.
namespace zelvo::DoubleText {

/// The shortest text that reads back as the same double, whole values with ".0": in fixed notation from 1e-4
/// up to 2^54 in magnitude ("2024.0", "0.25", "-0.0"), scientific outside ("1e-05", "1e+17"). `value` is
/// finite.
std::string shortest(double value);

}  // namespace zelvo::DoubleText
