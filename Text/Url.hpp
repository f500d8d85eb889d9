#pragma once

#include <optional>
#include <string_view>

namespace zelvo {

/// The components of a URL as they are written, escapes and case included: views into its text.
struct UrlComponents {
  std::string_view scheme;
  std::string_view host;  ///< empty also when there is no authority
  bool hasUserInfo;       ///< something may stand before an "@" in the authority: "http://@h" has user info

  bool operator==(const UrlComponents&) const = default;
};

/// The components of an absolute URL in strict RFC 3986; none for any other text, relative references and
/// characters outside ASCII included.
std::optional<UrlComponents> urlComponents(std::string_view text);

}  // namespace zelvo
