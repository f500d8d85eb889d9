#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cleaning/Findings.hpp"

namespace zelvo::Cleaning {

/// What a number format that the strict reader cannot show becomes: a date, a time, or the stored number.
/// None for one that it can show, and for elapsed times.
std::optional<std::string_view> plainCode(std::string_view code);

/// The same for a built-in format that has no code in the strict reader's table. None for an id whose meaning
/// depends on the language.
std::optional<std::string_view> plainCodeOfBuiltin(std::int64_t id);

inline constexpr std::string_view generalCode = "General";

/// Counts the cells whose number format was replaced.
class PlainFormats {
 public:
  /// A format that was replaced; gives its number, for `addStyle`.
  std::size_t addFormat(std::string code);
  /// The next cell style, and the number of its replaced format, if it has one.
  void addStyle(std::optional<std::size_t> format) { formatOfStyle_.push_back(format); }

  void enterSheet(std::int64_t index) { sheet_ = index; }
  void countCell(std::int64_t style);
  void report(Findings& findings);

 private:
  std::vector<ChangedContent> formats_;
  std::vector<std::optional<std::size_t>> formatOfStyle_;
  std::int64_t sheet_ = 0;
};

}  // namespace zelvo::Cleaning
