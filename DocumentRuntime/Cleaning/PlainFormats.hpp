#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Cleaning/Findings.hpp"

namespace zelvo::Cleaning {

/// The replacement of a number format that the strict reader cannot show: a date, a time, or the stored
/// number. Returns nullopt for a format that it can show, and for elapsed times.
std::optional<std::string_view> plainCode(std::string_view code);

/// The same for a built-in format without a code in the strict reader's table. Returns nullopt for an id
/// whose meaning depends on the language.
std::optional<std::string_view> plainCodeOfBuiltin(std::int64_t id);

inline constexpr std::string_view generalCode = "General";

/// Counts the cells whose number format was replaced.
class PlainFormats {
 public:
  /// Adds a format that was replaced. Returns its index, for `addStyle`.
  std::size_t addFormat(std::string code);
  /// Adds the next cell style, with the index of its replaced format, if any.
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
