#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "DocumentRuntime/Records/ByteBuffer.hpp"

namespace zelvo {

class JsonArray;
class JsonDocument;
class JsonObject;

enum class JsonKind : std::uint8_t { null, boolean, number, string, array, object };

/// A handle to one value of a `JsonDocument`, passed by value.
///
/// Every reading function throws `DecodingError`, with the value's path, when the value is of another kind.
class JsonValue {
 public:
  JsonKind kind() const;
  bool isNull() const { return kind() == JsonKind::null; }

  bool boolean() const;
  /// A number without fraction within 64 bits, also when written 1.0 or 1e0.
  std::int64_t integer() const;
  /// A number within the range of doubles.
  double number() const;
  std::string_view string() const;
  /// A string of strict base64.
  ByteBuffer bytes() const;
  JsonArray array() const;
  JsonObject object() const;

  /// Throws `DecodingError` with this value's path.
  [[noreturn]] void fail(const std::string& message) const;

 private:
  friend class JsonArray;
  friend class JsonDocument;
  friend class JsonObject;
  JsonValue(const JsonDocument& document, std::uint32_t index) : document_(&document), index_(index) {}
  void require(JsonKind kind) const;

  const JsonDocument* document_;
  std::uint32_t index_;
};

/// The elements of an array, in order.
class JsonArray {
 public:
  class Iterator {
   public:
    JsonValue operator*() const { return value_; }
    Iterator& operator++();
    bool operator==(const Iterator& other) const { return value_.index_ == other.value_.index_; }

   private:
    friend class JsonArray;
    explicit Iterator(JsonValue value) : value_(value) {}
    JsonValue value_;
  };

  /// Counts the elements.
  std::size_t size() const;
  Iterator begin() const;
  Iterator end() const;

 private:
  friend class JsonValue;
  explicit JsonArray(JsonValue array) : array_(array) {}

  JsonValue array_;
};

struct JsonMember {
  std::string_view key;
  JsonValue value;
};

/// The members of an object. Where a key occurs more than once, the last member counts.
class JsonObject {
 public:
  class Iterator {
   public:
    JsonMember operator*() const;
    Iterator& operator++();
    bool operator==(const Iterator& other) const { return key_.index_ == other.key_.index_; }

   private:
    friend class JsonObject;
    explicit Iterator(JsonValue key) : key_(key) {}
    JsonValue key_;
  };

  /// The member of that key, which must exist (it may be null).
  JsonValue required(std::string_view key) const;
  /// The member of that key. Returns nullopt if it is absent or null.
  std::optional<JsonValue> optional(std::string_view key) const;

  bool boolean(std::string_view key) const { return required(key).boolean(); }
  std::string_view string(std::string_view key) const { return required(key).string(); }

  /// All members in the order of the text, those that a later one replaces included.
  Iterator begin() const;
  Iterator end() const;

  [[noreturn]] void fail(const std::string& message) const { object_.fail(message); }

 private:
  friend class JsonValue;
  explicit JsonObject(JsonValue object) : object_(object) {}
  std::optional<JsonValue> find(std::string_view key) const;

  JsonValue object_;
};

}  // namespace zelvo
