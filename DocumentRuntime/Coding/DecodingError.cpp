#include "DocumentRuntime/Coding/DecodingError.hpp"

#include <utility>

namespace zelvo {
namespace {

constexpr std::string_view ellipsis = "\u2026";

/// At most `maximumBytes` of `text`, without a partial scalar. A text that is cut ends in an ellipsis.
std::string shortened(std::string text, std::size_t maximumBytes) {
  if (text.size() <= maximumBytes) return text;
  const auto continuesCharacter = [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
  };
  std::size_t end = maximumBytes;
  while (end > 0 && continuesCharacter(text[end]))
    --end;
  return text.replace(end, std::string::npos, ellipsis);
}

}  // namespace

DecodingError::DecodingError(std::string message, std::string path)
    : message_(shortened(std::move(message), maximumMessageBytes)),
      path_(shortened(std::move(path), maximumPathBytes)),
      description_(path_.empty() ? message_ : path_ + ": " + message_) {}

}  // namespace zelvo
