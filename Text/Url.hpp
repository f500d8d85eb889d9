#pragma once

#include <optional>
#include <string_view>

namespace zelvo {

/// The components of a URL as they are written, escapes and case included: views into its text.
struct UrlComponents {
  std::string_view scheme;
  std::string_view host;  ///< empty also when there is no authority
  bool hasUserInfo;       ///< the authority has an "@", also after an empty user ("http://@h")

  bool operator==(const UrlComponents&) const = default;
};

/// The components of an absolute URL by strict RFC 3986. Returns nullopt for any other text, also for
/// relative references and characters outside ASCII.
std::optional<UrlComponents> urlComponents(std::string_view text);

}  // namespace zelvo
