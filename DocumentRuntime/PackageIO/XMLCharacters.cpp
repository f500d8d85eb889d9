#include "DocumentRuntime/PackageIO/XMLCharacters.hpp"

#include <algorithm>

#include "Text/Unicode.hpp"

namespace zelvo::OOXML {
namespace {

struct ScalarRange {
  char32_t first;
  char32_t last;
};

constexpr ScalarRange nameStarts[] = {
    {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
    {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
    {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF},
};
constexpr ScalarRange nameRests[] = {{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}};

bool isWithin(const auto& ranges, char32_t scalar) {
  return std::ranges::any_of(
      ranges, [&](const ScalarRange& range) { return scalar >= range.first && scalar <= range.last; });
}

}  // namespace

bool isNameScalar(char32_t scalar, bool first) {
  return isWithin(nameStarts, scalar) || (!first && isWithin(nameRests, scalar));
}

std::string withoutForbidden(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t position = 0; position < text.size();) {
    const char32_t scalar = Unicode::nextScalar(text, position);
    if (isAllowed(scalar)) Unicode::append(result, scalar);
  }
  return result;
}

}  // namespace zelvo::OOXML
