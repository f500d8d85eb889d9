#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "DocumentRuntime/Cleaning/AllowList.hpp"

namespace zelvo::Cleaning {

/// Writes the XML of one part after another. Every name comes from the allow-list, every value is escaped,
/// and the limits of the strict reader on a part are enforced.
class PartWriter {
 public:
  PartWriter();

  /// Starts a part. Errors name it by `place`.
  void begin(Tag root, std::string place);
  /// Ends the part and returns its text, valid until the next `begin`.
  std::string_view finish();

  /// Each of these throws `DocumentError` resourceLimit "more than 16 MiB of XML in PLACE" or "more than
  /// 200,000 XML elements in PLACE" before it passes the limit.
  void start(Tag tag);
  void attribute(Attribute attribute, std::string_view value);
  void attribute(Attribute attribute, std::integral auto value) {
    number(attribute, static_cast<std::int64_t>(value));
  }
  void text(std::string_view text);
  void end(Tag tag);

  /// The bytes written so far.
  std::size_t size() const { return xml_.size(); }
  /// Follows the place in errors: ", cell B7".
  void setDetail(std::string detail) { detail_ = std::move(detail); }
  /// Throws the error above if `bytes` more bytes would exceed the size limit.
  void requireCapacity(std::size_t bytes) const;

 private:
  /// Not inline, so that the checks are.
  [[noreturn]] void refuse(const char* limit) const;
  void number(Attribute attribute, std::int64_t value);
  void closeStartTag();
  void append(std::string_view fixed);
  void appendEscaped(std::string_view text, const std::array<bool, 256>& isEscaped);

  std::string xml_;
  std::size_t elements_ = 0;
  bool isTagOpen_ = false;
  Tag root_ = Tag::workbook;
  std::string place_;
  std::string detail_;
};

}  // namespace zelvo::Cleaning
