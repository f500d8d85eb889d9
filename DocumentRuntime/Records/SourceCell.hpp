#pragma once

#include <optional>
#include <string>

namespace zelvo {

/// One cell's value. Texts are kept as stored: a number stays the stored decimal text.
class SourceCellValue {
 public:
  enum class Kind { text, number, boolean, date, missing, error };

  static SourceCellValue text(std::string payload);
  static SourceCellValue number(std::string payload);
  static SourceCellValue boolean(bool payload);
  static SourceCellValue date(std::string payload);
  static SourceCellValue missing();
  static SourceCellValue error(std::string payload);

  Kind kind() const { return kind_; }
  /// The text of `text`, `number`, `date` and `error`; empty for the other kinds.
  const std::string& payload() const { return payload_; }
  /// The value of `boolean`; false for the other kinds.
  bool isTrue() const { return isTrue_; }

  /// The payload unchanged, "TRUE" or "FALSE", or the empty text for `missing`. No number format is applied.
  std::string displayText() const;

  bool operator==(const SourceCellValue&) const = default;

 private:
  SourceCellValue(Kind kind, std::string payload, bool isTrue);

  Kind kind_;
  std::string payload_;
  bool isTrue_;
};

/// One extracted cell with its provenance.
struct SourceCell {
  std::string address;  ///< A1 notation, for example "B7"
  SourceCellValue value = SourceCellValue::missing();
  std::optional<std::string> formula;   ///< the formula's text, without "="
  bool usesCachedFormulaValue = false;  ///< `value` is the result that the workbook stored for a formula
  std::optional<std::string> numberFormat;
  bool hidden = false;  ///< the cell is in a hidden row

  /// As `SourceCellValue::displayText`, with a number rendered by its numeric format where it has one. Dates
  /// are display texts already.
  std::string displayText() const;

  bool operator==(const SourceCell&) const = default;
};

}  // namespace zelvo
