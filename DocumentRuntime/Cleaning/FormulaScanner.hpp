#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace zelvo::Cleaning {

/// One end of a reference: a cell, a whole column or a whole row.
struct ReferenceEnd {
  std::int64_t column = 0;  ///< one-based; 0 in a whole row
  std::int64_t row = 0;     ///< one-based; 0 in a whole column
  bool isColumnAbsolute = false;
  bool isRowAbsolute = false;
};

/// A piece of a formula. The pieces joined are the formula.
struct FormulaToken {
  enum class Kind : std::uint8_t {
    reference,   ///< "A1", "$A1:B$2", "A:C", "1:3", without the sheet before it
    sheet,       ///< "S!", "S1:S3!", "'It''s'!", "[1]S!", "[1]!"
    function,    ///< the name before a "("
    name,        ///< any other name, but for TRUE and FALSE
    structured,  ///< "[...]", and the name of the table before it
    exchange,    ///< "|topic!item": dynamic data exchange
    other,       ///< strings, numbers, errors, operators, white space
  };

  Kind kind;
  std::string_view text;
  ReferenceEnd first = {};
  std::optional<ReferenceEnd> last = {};  ///< of a reference with two ends
};

/// Cuts a formula into its pieces from front to back, in linear time. Any text is a formula; what no grammar
/// knows is `other`.
class FormulaScanner {
 public:
  /// `formula` must outlive the scanner.
  explicit FormulaScanner(std::string_view formula) : rest_(formula) {}

  /// None at the end.
  std::optional<FormulaToken> next();

 private:
  FormulaToken take(FormulaToken::Kind kind, std::size_t size);
  FormulaToken word(bool isBehindSheet);
  FormulaToken digits();
  std::optional<FormulaToken> reference(std::size_t size);

  std::string_view rest_;
  bool isBehindSheet_ = false;  ///< the piece before this was a `sheet`
};

}  // namespace zelvo::Cleaning
