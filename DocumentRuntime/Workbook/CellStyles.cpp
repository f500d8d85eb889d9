#include "DocumentRuntime/Workbook/CellStyles.hpp"

#include <map>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "DocumentRuntime/Workbook/XMLInteger.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {

CellStyles CellStyles::read(XMLNode root) {
  CellStyles styles;
  std::map<std::int64_t, std::uint32_t> codeOfID;
  const auto addCode = [&](std::int64_t id, std::string code) {
    const auto index = static_cast<std::uint32_t>(styles.codes_.size());
    if (!codeOfID.emplace(id, index).second) return false;
    styles.codes_.push_back(std::move(code));
    return true;
  };

  if (const auto formats = root.child("numFmts")) {
    for (const XMLNode format : formats->all("numFmt")) {
      const auto id = xmlInteger(format.attribute("numFmtId"));
      const auto code = format.attribute("formatCode");
      if (!id || !code || Unicode::exceeds(*code, maximumCodeCharacters) ||
          !addCode(*id, std::string(*code))) {
        throw DocumentError::invalidArchive("number format");
      }
    }
  }

  if (const auto cellFormats = root.child("cellXfs")) {
    for (const XMLNode style : cellFormats->all("xf")) {
      const auto id = xmlInteger(style.attribute("numFmtId"));
      if (!id) {
        styles.codeOfStyle_.push_back(noCode);
        continue;
      }
      if (!codeOfID.contains(*id)) {
        const auto builtin = DocumentNumberFormat::builtin(*id);
        addCode(*id, builtin ? std::string(*builtin) : "unsupported-format-" + std::to_string(*id));
      }
      styles.codeOfStyle_.push_back(codeOfID.at(*id));
    }
  }
  return styles;
}

std::optional<std::string_view> CellStyles::operator[](std::size_t index) const {
  const std::uint32_t code = codeOfStyle_[index];
  if (code == noCode) return std::nullopt;
  return codes_[code];
}

}  // namespace zelvo
