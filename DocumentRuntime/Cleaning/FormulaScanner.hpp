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

/// A token of a formula. The tokens joined are the formula.
struct FormulaToken {
  enum class Kind : std::uint8_t {
    reference,   ///< "A1", "$A1:B$2", "A:C", "1:3", without the sheet before it
    sheet,       ///< "S!", "S1:S3!", "'It''s'!", "[1]S!", "[1]!"
    function,    ///< the name before a "("
    name,        ///< any other name, except TRUE and FALSE
    structured,  ///< "[...]", and the name of the table before it
    exchange,    ///< "|topic!item": dynamic data exchange
    other,       ///< strings, numbers, errors, operators, white space
  };

  Kind kind;
  std::string_view text;
  ReferenceEnd first = {};
  std::optional<ReferenceEnd> last = {};  ///< of a reference with two ends
};

/// Splits a formula into tokens, in linear time. Accepts any text: unknown characters are `other`.
class FormulaScanner {
 public:
  /// `formula` must outlive the scanner.
  explicit FormulaScanner(std::string_view formula) : rest_(formula) {}

  /// Returns nullopt at the end.
  std::optional<FormulaToken> next();

 private:
  FormulaToken take(FormulaToken::Kind kind, std::size_t size);
  FormulaToken word(bool followsSheet);
  FormulaToken digits();
  std::optional<FormulaToken> reference(std::size_t size);

  std::string_view rest_;
  bool followsSheet_ = false;  ///< the previous token was a `sheet`
};

}  // namespace zelvo::Cleaning
