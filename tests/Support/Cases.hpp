#pragma once

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Tables that are written as text, so that a case is a line however the rest of the file is formatted.
namespace zelvo::testing {

/// Calls take(piece) for what stands between the separators, without the spaces around it. A separator has a
/// space, or an end, on both sides; what has none is content.
template <typename Take>
void eachPiece(std::string_view text, std::string_view separator, const Take& take) {
  const std::string padded = std::string(" ").append(text).append(" ");
  const std::string between = std::string(" ").append(separator).append(" ");
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + between.size() - 1) {
    end = padded.find(between, start);
    const std::string piece = padded.substr(start, end == std::string::npos ? end : end - start);
    const std::size_t first = std::min(piece.find_first_not_of(' '), piece.size());
    take(piece.substr(first, piece.find_last_not_of(' ') + 1 - first));
  }
}

/// The text with pictures of control characters (␀ ␉ ␊ ␍ ␠ …) made what they show.
inline std::string unpictured(std::string text) {
  for (std::size_t at = 0; (at = text.find("\xE2\x90", at)) != std::string::npos; ++at)
    text.replace(at, 3, 1, static_cast<char>(text.at(at + 2) & 0x3F));
  return text;
}

/// The cases of a table: one a line, or several parted by `;`, each of that many fields parted by `|` or
/// `=>`.
template <std::size_t fields>
std::vector<std::array<std::string, fields>> cases(std::string_view table) {
  std::vector<std::array<std::string, fields>> result;
  const auto addCase = [&](const std::string& text) {
    if (text.empty()) return;
    std::size_t count = 0;
    auto& row = result.emplace_back();
    eachPiece(text, "|", [&](const std::string& part) {
      eachPiece(part, "=>", [&](const std::string& field) {
        if (count == fields) throw std::logic_error("too many fields: " + text);
        row[count++] = unpictured(field);
      });
    });
    if (count != fields) throw std::logic_error("too few fields: " + text);
  };
  for (std::size_t start = 0; start < table.size();) {
    const std::size_t end = std::min(table.find('\n', start), table.size());
    eachPiece(table.substr(start, end - start), ";", addCase);
    start = end + 1;
  }
  return result;
}

/// What stands between spaces and line breaks.
inline std::vector<std::string> words(std::string_view text) {
  std::vector<std::string> result;
  for (std::size_t start = 0; (start = text.find_first_not_of(" \n", start)) != std::string_view::npos;) {
    const std::size_t end = std::min(text.find_first_of(" \n", start), text.size());
    result.push_back(unpictured(std::string(text.substr(start, end - start))));
    start = end;
  }
  return result;
}

}  // namespace zelvo::testing
