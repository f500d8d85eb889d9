#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Errors/DocumentError.hpp"

namespace zelvo::testing {

/// One thing that a reader refuses: how to spoil a good input, and what the reader must then say.
template <typename Input>
struct Refusal {
  std::string name;
  std::function<void(Input&)> spoil;
  DocumentError expected;
  /// Rows that spoil the same place, or a place and a place within it ("sheet" and "sheet/row"), cannot be
  /// combined; an empty place combines with all.
  std::string place = {};
};

inline bool isWithin(const std::string& place, const std::string& other) {
  return place == other || place.starts_with(other + '/');
}

template <typename Act>
std::optional<DocumentError> errorOf(const Act& act) {
  try {
    act();
  } catch (const DocumentError& error) {
    return error;
  }
  return std::nullopt;
}

inline std::string describe(const std::optional<DocumentError>& error) {
  return error ? error->errorDescription() : "nothing was refused";
}

/// Checks a table of refusals that stands in the order of the reader's checks: every row alone, and of every
/// pair that combines, that the earlier row's refusal comes out. The good input itself must pass.
template <typename Input, typename Read>
void expectRefusals(const std::function<Input()>& good, const std::vector<Refusal<Input>>& rows,
                    const Read& read) {
  {
    const Input input = good();
    const auto error = errorOf([&] { read(input); });
    EXPECT_FALSE(error) << "the good input: " << describe(error);
  }
  for (std::size_t i = 0; i < rows.size(); ++i) {
    Input alone = good();
    rows[i].spoil(alone);
    const auto error = errorOf([&] { read(alone); });
    EXPECT_TRUE(error == rows[i].expected) << rows[i].name << ": " << describe(error);
    for (std::size_t j = i + 1; j < rows.size(); ++j) {
      const bool bothPlaced = !rows[i].place.empty() && !rows[j].place.empty();
      if (bothPlaced && (isWithin(rows[i].place, rows[j].place) || isWithin(rows[j].place, rows[i].place)))
        continue;
      Input both = good();
      rows[j].spoil(both);
      rows[i].spoil(both);
      const auto first = errorOf([&] { read(both); });
      EXPECT_TRUE(first == rows[i].expected)
          << rows[i].name << " before " << rows[j].name << ": " << describe(first);
    }
  }
}

}  // namespace zelvo::testing
