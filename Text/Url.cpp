#include "Text/Url.hpp"

#include <boost/url/parse.hpp>
#include <boost/url/url_view.hpp>

namespace zelvo {
namespace {

/// A parsed component as a view into the input text.
std::string_view standard(boost::urls::string_view piece) {
  return {piece.data(), piece.size()};
}

}  // namespace

std::optional<UrlComponents> urlComponents(std::string_view text) {
  const auto url = boost::urls::parse_uri({text.data(), text.size()});
  if (!url) return std::nullopt;
  // The parser accepts a path without a leading slash after the host, and reads "http://h:port" as one.
  const std::string_view path = standard(url->encoded_path());
  if (url->has_authority() && !path.empty() && !path.starts_with('/')) return std::nullopt;
  return UrlComponents{
      .scheme = standard(url->scheme()),
      .host = standard(url->encoded_host()),
      .hasUserInfo = url->has_userinfo(),
  };
}

}  // namespace zelvo
