#pragma once

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>

namespace zelvo::testing {

inline std::string repeated(std::string_view piece, std::size_t count) {
  std::string result;
  while (count-- > 0)
    result += piece;
  return result;
}

/// So many user-perceived characters, each of two scalars and three bytes.
inline std::string characters(std::size_t count) {
  return repeated("e\u0301", count);
}

/// Puts `to` in the place of the first `from`, which must be there: an edit that does nothing tests nothing.
inline void replace(std::string& text, std::string_view from, std::string_view to) {
  const auto position = text.find(from);
  if (position == std::string::npos) throw std::logic_error("nothing to edit: " + std::string(from));
  text.replace(position, from.size(), to);
}

inline std::string replaced(std::string text, std::string_view from, std::string_view to) {
  replace(text, from, to);
  return text;
}

inline void replaceAll(std::string& text, std::string_view from, std::string_view to) {
  replace(text, from, to);
  for (auto position = text.find(to) + to.size(); (position = text.find(from, position)) != std::string::npos;
       position += to.size())
    text.replace(position, from.size(), to);
}

/// The first element of that qualified name, tags included; it must not hold another of its name.
inline std::string element(const std::string& text, const std::string& name) {
  const auto start = text.find('<' + name + '>');
  const std::string endTag = "</" + name + '>';
  const auto end = text.find(endTag, start);
  if (start == std::string::npos || end == std::string::npos) throw std::logic_error("no element " + name);
  return text.substr(start, end + endTag.size() - start);
}

/// The bytes of a file; none where there is none.
inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zelvo::testing
