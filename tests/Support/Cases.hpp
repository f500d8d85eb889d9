#pragma once

#include <algorithm>
#include <array>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Tables that are written as text, so that a case is a line however the rest of the file is formatted.
namespace zelvo::testing {

/// What is between the separators, without the spaces around it. A separator has a space, or an end, on both
/// sides; what has none is content.
inline std::vector<std::string> pieces(const std::string& text, const std::string& separator) {
  std::vector<std::string> result;
  const std::string padded = " " + text + " ";
  for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + separator.size() + 1) {
    end = padded.find(" " + separator + " ", start);
    const std::string piece = padded.substr(start, end == std::string::npos ? end : end - start);
    const std::size_t first = std::min(piece.find_first_not_of(' '), piece.size());
    result.push_back(piece.substr(first, piece.find_last_not_of(' ') + 1 - first));
  }
  return result;
}

/// The text with pictures of control characters (␀ ␉ ␊ ␍ ␠ …) made what they show.
inline std::string unpictured(std::string text) {
  for (std::size_t at = 0; (at = text.find("\xE2\x90", at)) != std::string::npos; ++at)
    text.replace(at, 3, 1, static_cast<char>(text.at(at + 2) & 0x3F));
  return text;
}

/// The cases of a table: one a line, or several separated by `;`. The fields of a case are separated by `|`
/// or `=>`.
template <std::size_t fields>
std::vector<std::array<std::string, fields>> cases(std::string_view table) {
  std::vector<std::array<std::string, fields>> result;
  const auto addCase = [&](const std::string& text) {
    std::vector<std::string> found;
    for (const std::string& part : pieces(text, "|"))
      std::ranges::transform(pieces(part, "=>"), std::back_inserter(found), unpictured);
    if (found.size() != fields) throw std::logic_error("wrong number of fields: " + text);
    std::ranges::move(found, result.emplace_back().begin());
  };
  std::istringstream lines{std::string(table)};
  for (std::string line; std::getline(lines, line);) {
    for (const std::string& text : pieces(line, ";")) {
      if (!text.empty()) addCase(text);
    }
  }
  return result;
}

/// What is between spaces and line breaks.
inline std::vector<std::string> words(std::string_view text) {
  std::vector<std::string> result;
  std::istringstream stream{std::string(text)};
  for (std::string word; stream >> word;)
    result.push_back(unpictured(word));
  return result;
}

}  // namespace zelvo::testing
