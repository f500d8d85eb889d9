#pragma once

#include <regex>
#include <string>

#include "Support/Cases.hpp"
#include "Support/Texts.hpp"

/// Short notations for edits of a text.
namespace zelvo::testing {

/// "(3*x)" as "xxx".
inline std::string multiplied(std::string text) {
  const std::regex pattern(R"(\((\d+)\*([^()]*)\))");
  for (std::smatch match; std::regex_search(text, match, pattern);)
    text = match.prefix().str() + repeated(match[2].str(), std::stoul(match[1])) + match.suffix().str();
  return text;
}

/// Makes edits "from→to", separated by spaces. "(3*x)" is "xxx".
inline void edit(std::string& text, const std::string& list) {
  for (const std::string& edit : words(multiplied(list))) {
    const std::size_t arrow = edit.find("→");
    replace(text, edit.substr(0, arrow), edit.substr(arrow + std::string("→").size()));
  }
}

/// A text in which every "#entry#" is repeated, separated by commas if a bracket is before it. "%" in an
/// entry is its number.
inline std::string filled(const std::string& text, std::size_t count) {
  const std::size_t first = text.find('#'), last = text.find('#', first + 1);
  if (first == std::string::npos) return text;
  const std::string entry = text.substr(first + 1, last - first - 1);
  const bool isList = first > 0 && (text[first - 1] == '[' || text[first - 1] == '{');
  std::string result = text.substr(0, first);
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0 && isList) result += ',';
    std::string next = entry;
    if (entry.find('%') != std::string::npos) replaceAll(next, "%", std::to_string(i));
    result += next;
  }
  return result + filled(text.substr(last + 1), count);
}

}  // namespace zelvo::testing
