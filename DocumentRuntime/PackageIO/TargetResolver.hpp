#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelvo::OOXML {

/// `resolve` for all targets of one relationships part, whose folder is then worked out once: a part may hold
/// 200,000 targets and stand a hundred folders deep.
class TargetResolver {
 public:
  explicit TargetResolver(std::string_view relationshipPart);

  /// As `OOXML::resolve`, errors included.
  std::string resolve(std::string_view target) const;

 private:
  /// The folder whose parts the relationships speak for. Absent where relationships cannot stand, which is
  /// said only once a target is in order.
  std::optional<std::string> base_;
};

}  // namespace zelvo::OOXML
