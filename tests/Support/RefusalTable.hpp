#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Support/Cases.hpp"
#include "Support/TextEdits.hpp"

namespace zelvo::testing {

/// The result of a call in one line: "unsupported: worksheet type" for an error of that case and detail,
/// nothing where nothing is refused.
struct Outcome {
  std::string text;

  // NOLINTBEGIN(google-explicit-constructor): tables hold errors and lines alike.
  Outcome(std::string line) : text(std::move(line)) {}
  Outcome(const char* line) : text(line) {}
  Outcome(const DocumentError& error) {
    const auto cases = words(
        "invalidArchive unsupported resourceLimit unsafeContent invalidSelection formulaValueUnavailable "
        "validationFailed");
    text = cases.at(static_cast<std::size_t>(error.errorCase())) + ": " + error.detail();
  }
  // NOLINTEND(google-explicit-constructor)
  bool operator==(const Outcome&) const = default;
  friend std::ostream& operator<<(std::ostream& stream, const Outcome& outcome) {
    return stream << (outcome.text.empty() ? "nothing was refused" : outcome.text);
  }
};

template <typename Act>
Outcome outcomeOf(const Act& act) {
  try {
    act();
  } catch (const DocumentError& error) {
    return error;
  }
  return "";
}

/// One thing that a reader refuses: how to spoil a good input, and what the reader must then say.
template <typename Input>
struct Refusal {
  std::string name;
  std::function<void(Input&)> spoil;
  Outcome expected;
  /// Rows that spoil the same place, or a place and a place within it ("sheet" and "sheet/row"), cannot be
  /// combined; an empty place combines with all.
  std::string place = {};
};

/// The texts that "or" separates.
inline std::vector<std::string> alternatives(const std::string& text) {
  std::vector<std::string> result;
  std::string rest = " " + text + " ";
  for (std::size_t end = 0; (end = rest.find(" or ")) != std::string::npos; rest.erase(0, end + 3))
    result.push_back(end == 0 ? "" : rest.substr(1, end - 1));
  result.push_back(rest.substr(1, rest.size() - 2));
  return result;
}

/// Rows that edit a text each, `from => to | refusal | place` in a line; `find` returns the text of an input.
/// Alternatives of `to` are rows of their own.
template <typename Input, typename Find>
std::vector<Refusal<Input>> edits(const Find& find, std::string_view table) {
  std::vector<Refusal<Input>> rows;
  for (const auto& [from, allTo, expected, place] : cases<4>(table)) {
    for (const std::string& to : alternatives(allTo)) {
      const auto spoil = [=, from = from](Input& input) { replace(find(input), from, to); };
      rows.push_back({std::string(from).append(" becomes ").append(to), spoil, expected, place});
    }
  }
  return rows;
}

template <typename Input>
std::vector<Refusal<Input>> joined(const std::vector<std::vector<Refusal<Input>>>& groups) {
  std::vector<Refusal<Input>> rows;
  for (const auto& group : groups)
    rows.insert(rows.end(), group.begin(), group.end());
  return rows;
}

inline bool isWithin(const std::string& place, const std::string& other) {
  return !other.empty() && (place == other || place.starts_with(other + '/'));
}

/// Checks a table of refusals that is in the order of the reader's checks: every row alone, and every pair
/// that combines, in which the earlier row must be refused. The good input itself must pass.
template <typename Input, typename Read>
void expectRefusals(const std::function<Input()>& good, const std::vector<Refusal<Input>>& rows,
                    const Read& read) {
  const Input untouched = good();
  EXPECT_EQ(outcomeOf([&] { read(untouched); }), "") << "the good input";
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Input alone = good();
    rows[i].spoil(alone);
    EXPECT_EQ(outcomeOf([&] { read(alone); }), rows[i].expected) << rows[i].name;
    for (std::size_t j = i + 1; j < rows.size(); ++j) {
      if (isWithin(rows[i].place, rows[j].place) || isWithin(rows[j].place, rows[i].place)) continue;
      Input both = good();
      rows[j].spoil(both);
      rows[i].spoil(both);
      EXPECT_EQ(outcomeOf([&] { read(both); }), rows[i].expected)
          << rows[i].name << " before " << rows[j].name;
    }
  }
}

/// A limit: how to make an input that reaches a size, the last size that passes, and the outcome of one more.
template <typename Input>
struct Limit {
  std::string name;
  std::size_t last;
  Outcome beyond;
  std::function<void(Input&, std::size_t)> reach;
};

template <typename Input, typename Read>
void expectLimits(const std::vector<Limit<Input>>& limits, const Read& read) {
  for (const Limit<Input>& limit : limits) {
    for (const bool isBeyond : {false, true}) {
      Input input;
      limit.reach(input, limit.last + (isBeyond ? 1 : 0));
      EXPECT_EQ(outcomeOf([&] { read(input); }), isBeyond ? limit.beyond : "") << limit.name;
    }
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

/// The table of messages, "key | message", and of the reader's refusals, "edits | key | place". Alternatives
/// of edits are rows of their own.
template <typename Input, typename Read>
void expectEditRefusals(const std::function<Input()>& good, const auto& messages, std::string_view table,
                        const Read& read) {
  std::vector<Refusal<Input>> rows;
  for (const auto& [allEdits, key, place] : cases<3>(table)) {
    for (const std::string& edits : alternatives(allEdits)) {
      const auto spoil = [edits](Input& input) { edit(input.text, edits); };
      rows.push_back({edits, spoil, refusalIn(messages, key), place});
    }
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
