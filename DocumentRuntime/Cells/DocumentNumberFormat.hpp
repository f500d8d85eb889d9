#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Number format codes: which of them are plain numeric formats, and how those show a number.
namespace zelvo::DocumentNumberFormat {

/// A numeric format, taken apart.
struct Numeric {
  int minimumFractionDigits = 0;
  int maximumFractionDigits = 0;  ///< at most 12
  bool grouped = false;           ///< a "," before every three integer digits
  bool percent = false;           ///< shown times 100, with "%"
  std::string prefix;             ///< currency before the number; may end in one space
  std::string suffix;             ///< currency after the number; may start with one space

  /// Renders a number text (see NumberText.hpp), rounding half to even on the exact decimal. A negative
  /// number that rounds to zero keeps its sign ("-0.00"); the sign stands behind the prefix ("$-5"). Any
  /// other text comes back unchanged, and so does a number whose last digit's power of ten lies beyond ±127.
  std::string render(std::string_view text) const;

  bool operator==(const Numeric&) const = default;
};

/// The parameters of a plain numeric format code; none for every other code ("General", dates, sections, …).
std::optional<Numeric> numeric(std::string_view code);

/// The code that a built-in id stands for; none for ids that have no fixed code.
std::optional<std::string_view> builtin(std::int64_t id);

/// Whether the code, compared in lower case, is one of the date or of the time formats that are read as such.
bool isDate(std::string_view code);
bool isTime(std::string_view code);

}  // namespace zelvo::DocumentNumberFormat
