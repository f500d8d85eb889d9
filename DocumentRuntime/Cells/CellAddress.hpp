#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* addressBounds = "cell address bounds";
inline constexpr const char* address = "cell address";
inline constexpr const char* oneRange = "use one rectangular A1 range";
inline constexpr const char* reversedRange = "reversed range";

}  // namespace RefusalDetail

/// One cell in A1 notation. Column and row are one-based: A is 1, XFD is 16384. Ordered row-major: B1 before
/// A2.
struct CellAddress {
  static constexpr std::int64_t maximumColumn = 16'384;
  static constexpr std::int64_t maximumRow = 1'048'576;

  std::int64_t column = 1;
  std::int64_t row = 1;

  /// Parses "B7", "b7" or "$B$7". Throws `DocumentError` invalidSelection "cell address" or "cell address
  /// bounds".
  static CellAddress parse(std::string_view text);

  /// Column letters and row, without "$". A column below 1 prints no letters.
  std::string name() const;

  bool operator==(const CellAddress&) const = default;
  std::strong_ordering operator<=>(const CellAddress& other) const;
};

/// The letters of a one-based column: 1 is "A", 27 is "AA"; empty below 1.
std::string columnLetters(std::int64_t column);

/// A rectangle of cells, both corners included; `first` is never right of or below `last`.
struct CellRange {
  CellAddress first;
  CellAddress last;

  /// Parses "A1" or "A1:B2". Throws the errors of `CellAddress::parse`, and `DocumentError` invalidSelection
  /// "use one rectangular A1 range" or "reversed range".
  static CellRange parse(std::string_view text);

  /// The corners' names around a colon, also for a single cell.
  std::string name() const;
  bool contains(const CellAddress& address) const;
  bool intersects(const CellRange& other) const;

  bool operator==(const CellRange&) const = default;
};

}  // namespace zelvo
