#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Number format codes: recognises plain numeric formats and renders numbers with them.
namespace zelvo::DocumentNumberFormat {

/// A parsed numeric format.
struct Numeric {
  int minimumFractionDigits = 0;
  int maximumFractionDigits = 0;  ///< at most 12
  bool grouped = false;           ///< a "," before every three integer digits
  bool percent = false;           ///< shown times 100, with "%"
  std::string prefix;             ///< currency before the number; may end in one space
  std::string suffix;             ///< currency after the number; may start with one space

  /// Renders a number text (see NumberText.hpp), rounding half to even on the exact decimal. A negative
  /// number that rounds to zero keeps its sign ("-0.00"); the sign follows the prefix ("$-5"). Returns any
  /// other text unchanged, and also a number whose last digit's power of ten is beyond ±127.
  std::string render(std::string_view text) const;

  bool operator==(const Numeric&) const = default;
};

/// Parses a plain numeric format code. Returns nullopt for every other code ("General", dates, sections, …).
std::optional<Numeric> numeric(std::string_view code);

/// The code of a built-in id. Returns nullopt for ids without a fixed code.
std::optional<std::string_view> builtin(std::int64_t id);

/// Whether the code, compared in lower case, is one of the supported date formats or time formats.
bool isDate(std::string_view code);
bool isTime(std::string_view code);

}  // namespace zelvo::DocumentNumberFormat
