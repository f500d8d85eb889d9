#pragma once

#include <array>
#include <functional>
#include <regex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "Support/RefusalTable.hpp"

/// Inputs that are edited as text: refusals and limits of their readers, a line each.
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

/// The refusal with that key in a table "key | message"; none for no key. Without a case, a message is a
/// validationFailed.
inline Outcome refusalIn(const std::vector<std::array<std::string, 2>>& messages, const std::string& key) {
  if (key.empty()) return "";
  for (const auto& [other, message] : messages)
    if (other == key)
      return message.find(": ") == std::string::npos ? "validationFailed: " + message : message;
  throw std::logic_error("no message " + key);
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

/// The table of messages, "key | message", and of the reader's refusals, "edits | key | place". Edits that
/// are separated by "or" are rows of their own.
template <typename Input, typename Read>
void expectEditRefusals(const std::function<Input()>& good, const auto& messages, std::string_view table,
                        const Read& read) {
  std::vector<Refusal<Input>> rows;
  for (const auto& [alternatives, key, place] : cases<3>(table)) {
    eachPiece(alternatives, "or", [&, &key = key, &place = place](const std::string& edits) {
      const auto spoil = [edits](Input& input) { edit(input.text, edits); };
      rows.push_back({edits, spoil, refusalIn(messages, key), place});
    });
  }
  expectRefusals<Input>(good, rows, read);
}

/// The table of limits, "edits with an entry | the last count that is accepted | key".
template <typename Input, typename Read>
void expectEditLimits(const auto& messages, std::string_view table, const Read& read) {
  for (const auto& [edits, last, key] : cases<3>(table)) {
    for (const std::size_t more : {0U, 1U}) {
      Input input;
      edit(input.text, filled(edits, std::stoul(last) + more));
      EXPECT_EQ(outcomeOf([&] { read(input); }), more ? refusalIn(messages, key) : "") << edits;
    }
  }
}

}  // namespace zelvo::testing
