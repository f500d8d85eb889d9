#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// Writing the XML parts of packages.
namespace zelvo::OOXML {

inline void appendPiece(std::string& out, std::string_view text) {
  out += text;
}

/// In decimal, independent of the locale.
template <std::integral Integer>
requires(!std::same_as<Integer, char> && !std::same_as<Integer, bool>) void appendPiece(std::string& out,
                                                                                        Integer value) {
  char digits[24];
  out.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// Writes XML by appending: texts unchanged (escape untrusted ones), integers in decimal.
template <typename... Pieces>
void append(std::string& out, const Pieces&... pieces) {
  (appendPiece(out, pieces), ...);
}

/// Starts every part that is written.
inline constexpr std::string_view xmlDeclaration =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>)";

/// Precedes the last segment of a relationship type's URI.
inline constexpr std::string_view relationshipTypes =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

/// The predefined entity of one of the five special characters; empty for any other character.
std::string_view entity(char character);

/// `text` for an XML text node or attribute value: the five special characters as entities, and without the
/// characters that XML does not allow.
std::string escaped(std::string_view text);

/// The bytes of a part: the XML declaration, then the body.
ByteBuffer data(std::string_view xml);

/// The type of the relationship to the document's properties, which has a prefix of its own.
inline constexpr std::string_view corePropertiesType =
    "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties";

/// One relationship to write. `type` is the last segment of the relationship type's URI, or another URI, and
/// needs no escaping; identifier and target are escaped when written.
struct Relationship {
  std::string identifier;
  std::string type;
  std::string target;
};

/// A whole relationships part.
ByteBuffer relationships(const std::vector<Relationship>& list);

/// A part and its content type. Neither needs escaping.
struct ContentTypeOverride {
  std::string_view partName;  ///< without the leading slash
  std::string_view contentType;
};

/// The content types part: defaults for relationships, XML and, on request, embedded workbooks, then the
/// overrides in order.
ByteBuffer contentTypes(const std::vector<ContentTypeOverride>& overrides, bool embeddedWorkbook);

}  // namespace zelvo::OOXML
