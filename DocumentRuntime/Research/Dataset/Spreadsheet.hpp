#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Formula.hpp"
#include "DocumentRuntime/Research/Provenance/SourceScope.hpp"

namespace zelvo {

/// Details of errors that hosts compare.
namespace RefusalDetail {

inline constexpr const char* rowSources =
    "Each researched row needs an exact URL returned by the research tools.";
inline constexpr const char* noChart = "The requested chart is missing.";

}  // namespace RefusalDetail

/// A bounded research dataset, as a language model returns it: a report, a typed table whose rows carry
/// their sources, charts, and calculations that fill blank cells. Nothing in it is trusted before `validate`.
///
/// Texts are valid UTF-8; the JSON reader checks that.
struct ResearchSpreadsheet {
  /// Numbers of this magnitude and above are refused. Below it, doubles still represent eighths exactly.
  static constexpr double numberBound = 1e15;

  // Limits that keep a workbook readable and bound the work of every function over a dataset.
  static constexpr std::size_t maximumColumns = 12;
  static constexpr std::size_t maximumRows = 500;
  static constexpr std::size_t maximumCharts = 4;

  struct Column {
    enum class Kind { text, number, date };

    std::string name;
    Kind kind = Kind::text;
    std::optional<std::string> unit;

    /// The name, and the unit in parentheses if there is one, even an empty one.
    std::string headerLabel() const;
    /// The unit for comparisons; empty for a column without a unit.
    std::string_view unitText() const { return unit ? std::string_view(*unit) : std::string_view(); }

    bool operator==(const Column&) const = default;
  };

  /// A text, a number, or blank.
  class Cell {
   public:
    Cell() = default;  ///< blank
    explicit Cell(std::string text) : kind_(Kind::text), text_(std::move(text)) {}
    explicit Cell(double number) : kind_(Kind::number), number_(number) {}

    bool isBlank() const { return kind_ == Kind::blank; }
    /// Null unless this is a text.
    const std::string* text() const { return kind_ == Kind::text ? &text_ : nullptr; }
    /// Null unless this is a number.
    const double* number() const { return kind_ == Kind::number ? &number_ : nullptr; }

    /// The text itself, the number's `DoubleText::shortest`, or the empty text.
    std::string displayText() const;

    bool operator==(const Cell&) const = default;

   private:
    // Not a std::variant: if memory runs out while a text is copied into it, that of GCC 12 destroys a value
    // that does not exist.
    enum class Kind : std::uint8_t { blank, number, text };

    Kind kind_ = Kind::blank;
    double number_ = 0;
    std::string text_;
  };

  struct Row {
    std::vector<Cell> cells;           ///< one per column
    std::vector<std::string> sources;  ///< URLs
    std::optional<std::vector<std::string>> sourceIDs;

    /// A line "Source ID: …" for each identifier, then the URLs, one per line, without a final line feed.
    std::string provenanceText() const;

    bool operator==(const Row&) const = default;
  };

  struct Chart {
    enum class Kind { line, bar };

    static constexpr std::size_t maximumSeries = 4;

    std::string title;
    Kind kind = Kind::line;
    std::int64_t categoryColumn = 0;  ///< zero-based
    std::vector<std::int64_t> valueColumns;

    bool operator==(const Chart&) const = default;
  };

  std::string report;
  std::vector<Column> columns;
  std::vector<Row> rows;
  std::vector<Chart> charts;
  std::optional<std::vector<Calculation>> calculations;

  /// Decodes and validates a model's response: the dataset's JSON, in a Markdown code fence or bare. Throws
  /// `DocumentError` resourceLimit "spreadsheet response", `DecodingError`, and what `validate` throws.
  static ResearchSpreadsheet decode(std::string_view text, bool requiresChart,
                                    const AllowedSources& allowedSources,
                                    const std::optional<ResearchSourceScope>& sourceScope);

  /// Throws `DocumentError` for the first rule that the dataset breaks. With a scope, sources are checked
  /// against the scope only, not against `allowedSources`.
  void validate(bool requiresChart, const AllowedSources& allowedSources,
                const std::optional<ResearchSourceScope>& sourceScope) const;

  /// The rows' cells, with every calculation's value in its output cell; the cell stays blank if there is no
  /// value. Throws what `ResearchFormulaEvaluator::resolve` throws.
  std::vector<std::vector<Cell>> resolvedCells() const;

  /// The canonical JSON: compact, keys sorted, absent fields left out. Equal datasets have equal bytes.
  std::string encoded() const;

  /// Whether the text is a calendar date written exactly YYYY-MM-DD.
  static bool validDate(std::string_view text);

  /// Empty if there are no calculations.
  const std::vector<Calculation>& calculationList() const;

  bool operator==(const ResearchSpreadsheet&) const = default;
};

}  // namespace zelvo
