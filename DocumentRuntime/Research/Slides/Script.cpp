#include "DocumentRuntime/Research/Slides/Script.hpp"

#include <algorithm>
#include <cstddef>

#include "Text/Unicode.hpp"

namespace zelvo {
namespace {

struct Script {
  char32_t first;
  char32_t last;
  std::string_view tag;
};

constexpr std::string_view japanese = "ja-JP";
constexpr std::string_view korean = "ko-KR";
constexpr std::string_view chinese = "zh-CN";
constexpr std::string_view english = "en-US";

/// A text with more Latin letters for each letter of another script is Latin, with symbols like "β" in it.
constexpr std::size_t latinLettersPerSymbol = 4;

/// Ascending. Of several languages of a script, the one with the most readers.
constexpr Script scripts[] = {
    {0x0370, 0x03FF, "el-GR"}, {0x0400, 0x052F, "ru-RU"}, {0x0531, 0x058F, "hy-AM"},
    {0x05D0, 0x05EA, "he-IL"}, {0x0620, 0x06FF, "ar-SA"}, {0x0900, 0x097F, "hi-IN"},
    {0x0980, 0x09FF, "bn-BD"}, {0x0A00, 0x0A7F, "pa-IN"}, {0x0A80, 0x0AFF, "gu-IN"},
    {0x0B80, 0x0BFF, "ta-IN"}, {0x0C00, 0x0C7F, "te-IN"}, {0x0C80, 0x0CFF, "kn-IN"},
    {0x0D00, 0x0D7F, "ml-IN"}, {0x0E00, 0x0E7F, "th-TH"}, {0x10A0, 0x10FF, "ka-GE"},
    {0x1100, 0x11FF, korean},  {0x1780, 0x17FF, "km-KH"}, {0x3041, 0x30FF, japanese},
    {0x3105, 0x312F, "zh-TW"}, {0x3130, 0x318F, korean},  {0x3400, 0x9FFF, {}},
    {0xAC00, 0xD7AF, korean},  {0xF900, 0xFAFF, {}},      {0xFB1D, 0xFB4F, "he-IL"},
    {0xFB50, 0xFDFF, "ar-SA"}, {0xFE70, 0xFEFC, "ar-SA"}, {0xFF66, 0xFF9D, japanese},
    {0x20000, 0x3FFFF, {}},
};

const Script* scriptOf(char32_t scalar) {
  const auto script = std::ranges::lower_bound(scripts, scalar, {}, &Script::last);
  return script != std::end(scripts) && scalar >= script->first ? script : nullptr;
}

bool isRightToLeftLetter(char32_t scalar) {
  return (scalar >= 0x0590 && scalar <= 0x08FF) || (scalar >= 0xFB1D && scalar <= 0xFDFF) ||
         (scalar >= 0xFE70 && scalar <= 0xFEFC) || (scalar >= 0x10800 && scalar <= 0x10FFF) ||
         (scalar >= 0x1E800 && scalar <= 0x1EFFF);
}

/// Letters below the right-to-left scripts, and all other scripts from the first that follows them. Digits,
/// punctuation and symbols have no direction of their own.
bool isLeftToRightLetter(char32_t scalar) {
  const bool isASCIILetter = (scalar >= U'A' && scalar <= U'Z') || (scalar >= U'a' && scalar <= U'z');
  return isASCIILetter || (scalar >= 0x00C0 && scalar <= 0x058F && scalar != 0x00D7 && scalar != 0x00F7) ||
         (scalar >= 0x0900 && scalar <= 0x1FFF) || (scalar >= 0x3041 && scalar <= 0xD7AF);
}

}  // namespace

bool SlideScript::isRightToLeft(std::string_view text) {
  for (std::size_t at = 0; at < text.size();) {
    const char32_t scalar = Unicode::nextScalar(text, at);
    if (isRightToLeftLetter(scalar)) return true;
    if (isLeftToRightLetter(scalar)) return false;
  }
  return false;
}

SlideScript::Languages::Languages(const std::vector<std::string_view>& texts) : ideographs_(chinese) {
  for (const std::string_view text : texts) {
    for (std::size_t at = 0; at < text.size();) {
      const Script* script = scriptOf(Unicode::nextScalar(text, at));
      if (script == nullptr || (script->tag != japanese && script->tag != korean)) continue;
      ideographs_ = script->tag;
      return;
    }
  }
}

std::string_view SlideScript::Languages::tagOf(std::string_view text) const {
  const Script* first = nullptr;
  std::size_t inScript = 0;
  std::size_t latin = 0;
  for (std::size_t at = 0; at < text.size();) {
    const char32_t scalar = Unicode::nextScalar(text, at);
    const Script* script = scriptOf(scalar);
    if (first == nullptr) first = script;
    if (script != nullptr) ++inScript;
    if (script == nullptr && isLeftToRightLetter(scalar)) ++latin;
  }
  if (first == nullptr || inScript * latinLettersPerSymbol < latin) return english;
  return first->tag.empty() ? ideographs_ : first->tag;
}

}  // namespace zelvo
