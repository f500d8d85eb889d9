#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

/// Writes one JSON text, compact, in the order of the calls. The caller is responsible for the structure:
/// keys only in objects, an end for every begin.
class JsonWriter {
 public:
  /// `expectedBytes` avoids copies if the size is known.
  explicit JsonWriter(std::size_t expectedBytes = 0) { text_.reserve(expectedBytes); }

  void beginObject() { open('{'); }
  void endObject() { close('}'); }
  void beginArray() { open('['); }
  void endArray() { close(']'); }

  /// Names the value that the next call writes.
  void key(std::string_view name);

  void null() { raw("null"); }
  void boolean(bool value) { raw(value ? "true" : "false"); }
  void integer(std::int64_t value);
  /// Throws `DocumentError` validationFailed for infinities and NaN, which JSON cannot represent.
  void number(double value);
  /// `text` is valid UTF-8.
  void string(std::string_view text);
  /// As a base64 string.
  void bytes(ByteView bytes);

  /// Returns the text. The writer must not be used afterwards.
  std::string take() { return std::move(text_); }

 private:
  void separate();
  void raw(std::string_view literal);
  void open(char bracket);
  void close(char bracket);

  std::string text_;
  bool needsComma_ = false;
};

}  // namespace zelvo
