#include "DocumentRuntime/Records/SourceCell.hpp"

#include <utility>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"

namespace zelvo {

SourceCellValue::SourceCellValue(Kind kind, std::string payload, bool isTrue)
    : kind_(kind), payload_(std::move(payload)), isTrue_(isTrue) {}

SourceCellValue SourceCellValue::text(std::string payload) {
  return {Kind::text, std::move(payload), false};
}
SourceCellValue SourceCellValue::number(std::string payload) {
  return {Kind::number, std::move(payload), false};
}
SourceCellValue SourceCellValue::boolean(bool payload) {
  return {Kind::boolean, {}, payload};
}
SourceCellValue SourceCellValue::date(std::string payload) {
  return {Kind::date, std::move(payload), false};
}
SourceCellValue SourceCellValue::missing() {
  return {Kind::missing, {}, false};
}
SourceCellValue SourceCellValue::error(std::string payload) {
  return {Kind::error, std::move(payload), false};
}

std::string SourceCellValue::displayText() const {
  if (kind_ == Kind::boolean) return isTrue_ ? "TRUE" : "FALSE";
  return payload_;
}

std::string SourceCell::displayText() const {
  if (value.kind() == SourceCellValue::Kind::number && numberFormat) {
    if (const auto numeric = DocumentNumberFormat::numeric(*numberFormat)) {
      return numeric->render(value.payload());
    }
  }
  return value.displayText();
}

}  // namespace zelvo
