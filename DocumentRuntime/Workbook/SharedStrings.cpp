#include "DocumentRuntime/Workbook/SharedStrings.hpp"

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/Unicode.hpp"

namespace zelvo {

SharedStrings SharedStrings::read(XMLNode root) {
  SharedStrings strings;
  std::string scratch;
  for (const XMLNode item : root.all("si")) {
    const std::size_t start = strings.text_.size();
    // A plain text, or rich-text runs with a text each. Phonetic runs are not part of the value.
    for (const XMLNode piece : item.children()) {
      if (piece.name() == "t") {
        strings.text_ += piece.content(scratch);
      } else if (piece.name() == "r") {
        for (const XMLNode text : piece.all("t"))
          strings.text_ += text.content(scratch);
      }
    }
    strings.ends_.push(static_cast<std::uint32_t>(strings.text_.size()));
    if (strings.size() > maximumItems ||
        Unicode::exceeds(std::string_view(strings.text_).substr(start), maximumCharacters)) {
      throw DocumentError::resourceLimit(RefusalDetail::sharedStrings);
    }
  }
  return strings;
}

std::string_view SharedStrings::operator[](std::size_t index) const {
  const std::size_t start = index == 0 ? 0 : ends_[index - 1];
  return std::string_view(text_).substr(start, ends_[index] - start);
}

}  // namespace zelvo
