#include <string>

#include <gtest/gtest.h>

#include "Text/Url.hpp"

namespace zelvo {
namespace {

TEST(Url, ComponentsAreAsWritten) {
  const struct {
    std::string text;
    UrlComponents expected;
  } rows[] = {
      {"https://example.org/a?b=c#d", {"https", "example.org", false}},
      {"HTTP://Example.ORG", {"HTTP", "Example.ORG", false}},
      {"http://ex%41mple.org:8080", {"http", "ex%41mple.org", false}},
      {"http://192.0.2.1/", {"http", "192.0.2.1", false}},
      {"http://[2001:db8::1]:80/", {"http", "[2001:db8::1]", false}},
      {"http://user@h/", {"http", "h", true}},
      {"http://user:secret@h/", {"http", "h", true}},
      {"http://:@h/", {"http", "h", true}},
      {"http://@h", {"http", "h", true}},
      {"http://h/@x", {"http", "h", false}},
      {"http:///path", {"http", "", false}},
      {"http://:80/", {"http", "", false}},
      {"mailto:someone@example.org", {"mailto", "", false}},
      {"http:path", {"http", "", false}},
  };
  for (const auto& row : rows) {
    const auto components = urlComponents(row.text);
    ASSERT_TRUE(components) << row.text;
    EXPECT_EQ(*components, row.expected) << row.text << ": " << components->scheme << ' ' << components->host
                                         << ' ' << components->hasUserInfo;
  }
}

TEST(Url, WhatIsNoAbsoluteUrl) {
  for (const std::string text : {"",
                                 "example.org",
                                 "/a",
                                 "//h/a",
                                 "?a",
                                 "://h",
                                 "1http://h",
                                 "http//h",
                                 " http://h",
                                 "http://h ",
                                 "http://h/a b",
                                 "http://h/\n",
                                 "http://h/%",
                                 "http://h/%4",
                                 "http://h/%gg",
                                 "http://h\\a",
                                 "http://[::1",
                                 "http://[h]",
                                 "http://h:port/",
                                 "http://a@b@h/",
                                 "http://é.example/",
                                 "http://h/é",
                                 "http://h/{a}",
                                 "http://h/|",
                                 "http://h/\"",
                                 "http://h/#a#b"}) {
    EXPECT_FALSE(urlComponents(text)) << text;
  }
  EXPECT_FALSE(urlComponents(std::string("http://h/\0", 10)));
}

}  // namespace
}  // namespace zelvo
