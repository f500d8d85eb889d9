#pragma once

#include <string_view>
#include <vector>

namespace zelvo::SlideScript {

/// Whether the first letter with a direction runs from right to left, as in Hebrew and Arabic.
bool isRightToLeft(std::string_view text);

/// Finds the language of texts by their script: the language tag with which office programs choose fonts and
/// check spelling. Ideographs alone do not tell Chinese, Japanese and Korean apart: the letters in the deck's
/// other texts do.
class Languages {
 public:
  explicit Languages(const std::vector<std::string_view>& texts);

  /// Of the first letter of a known script that is not Latin; "en-US" if there is none, or if nearly all
  /// letters are Latin. A string literal.
  std::string_view tagOf(std::string_view text) const;

 private:
  std::string_view ideographs_;  ///< the tag
};

}  // namespace zelvo::SlideScript
