#include "DocumentRuntime/Workbook/CellReader.hpp"

#include <utility>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

/// The text of the cell's formula. Returns nullopt if there is none.
std::optional<std::string> formulaOf(XMLNode element, const CellReader::Options& options,
                                     const std::string& name) {
  const auto formula = element.child("f");
  if (!formula) return std::nullopt;
  // The text of a shared or array formula is in another cell: the provenance of this one would be incomplete.
  if (formula->attribute("t").value_or("normal") != "normal") {
    throw DocumentError::unsupported(RefusalDetail::sharedFormula + name);
  }
  const auto result = element.child("v");
  if (!options.allowCache || !result || (!result->hasContent() && !options.acceptEmptyFormula)) {
    throw DocumentError::formulaValueUnavailable(name);
  }
  return formula->content();
}

SourceCellValue booleanValue(std::string_view raw) {
  if (raw != "0" && raw != "1") throw DocumentError::invalidArchive("boolean value");
  return SourceCellValue::boolean(raw == "1");
}

SourceCellValue isoDate(std::string_view raw) {
  if (!SerialDate::parseISODateTime(raw) && !SerialDate::isoDateOnly(raw))
    throw DocumentError::invalidArchive("ISO date");
  return SourceCellValue::date(std::string(raw));
}

/// The texts of an inline string: its direct ones, and those inside every other child, in order.
std::string stringValue(XMLNode inlineString) {
  std::string text;
  std::string scratch;
  for (const XMLNode piece : inlineString.children()) {
    if (piece.name() == "t") {
      text += piece.content(scratch);
    } else {
      for (const XMLNode inner : piece.all("t"))
        text += inner.content(scratch);
    }
  }
  return text;
}

}  // namespace

SourceCell CellReader::cell(std::optional<XMLNode> element, const CellAddress& address,
                            const Options& options) const {
  SourceCell cell;
  cell.address = address.name();
  cell.hidden = options.hidden;
  if (!element) return cell;

  cell.formula = formulaOf(*element, options, cell.address);
  cell.usesCachedFormulaValue = cell.formula.has_value();
  const auto stored = element->child("v");
  std::string scratch;
  const std::string_view raw = stored ? stored->content(scratch) : std::string_view();
  const auto format = formatOf(*element);
  if (format) cell.numberFormat = *format;
  cell.value = value(*element, raw, format, cell.address);
  if (Unicode::exceeds(cell.value.payload(), maximumTextCharacters)) {
    throw DocumentError::resourceLimit(RefusalDetail::cellText);
  }
  return cell;
}

std::optional<std::string_view> CellReader::formatOf(XMLNode element) const {
  const auto attribute = element.attribute("s");
  if (!attribute) return std::nullopt;
  const auto index = xmlInteger(*attribute);
  if (!index || *index < 0 || std::cmp_greater_equal(*index, styles_.size())) {
    throw DocumentError::invalidArchive("cell style index");
  }
  return styles_[static_cast<std::size_t>(*index)];
}

SourceCellValue CellReader::value(XMLNode element, std::string_view raw,
                                  std::optional<std::string_view> format, const std::string& name) const {
  const std::string_view type = element.attribute("t").value_or("n");
  if (type == "s") return sharedString(raw);
  if (type == "inlineStr") {
    const auto inlineString = element.child("is");
    return SourceCellValue::text(inlineString ? stringValue(*inlineString) : std::string());
  }
  if (type == "str") return SourceCellValue::text(std::string(raw));
  if (type == "b") return booleanValue(raw);
  if (type == "e") return SourceCellValue::error(std::string(raw));
  if (type == "d") return isoDate(raw);
  if (type == "n" || type.empty()) return numeric(raw, format, name);
  throw DocumentError::unsupported("cell type " + std::string(type));
}

SourceCellValue CellReader::sharedString(std::string_view raw) const {
  const auto index = xmlInteger(raw);
  if (!index || *index < 0 || std::cmp_greater_equal(*index, sharedStrings_.size())) {
    throw DocumentError::invalidArchive("shared string index");
  }
  return SourceCellValue::text(std::string(sharedStrings_[static_cast<std::size_t>(*index)]));
}

SourceCellValue CellReader::numeric(std::string_view raw, std::optional<std::string_view> format,
                                    const std::string& name) const {
  if (raw.empty()) return SourceCellValue::missing();
  if (!NumberText::isValid(raw)) throw DocumentError::invalidArchive("numeric cell");
  if (format && *format != "General" && *format != "@") {
    if (DocumentNumberFormat::isDate(*format) || DocumentNumberFormat::isTime(*format)) {
      return SourceCellValue::date(SerialDate::excelDate(raw, name, *format, uses1904Dates_));
    }
    // An unsupported number format is refused, not approximated.
    if (!DocumentNumberFormat::numeric(*format))
      throw DocumentError::unsupported(RefusalDetail::numberFormat + name);
  }
  return SourceCellValue::number(std::string(raw));
}

}  // namespace zelvo
