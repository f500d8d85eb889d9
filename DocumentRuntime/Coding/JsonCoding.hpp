#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DocumentRuntime/Coding/JsonReader.hpp"
#include "DocumentRuntime/Coding/JsonWriter.hpp"
#include "DocumentRuntime/Records/ByteBuffer.hpp"

/// Conversion of records to and from JSON, for types that have a pair of functions,
///
///     void encode(JsonWriter&, const Type&);
///     void decode(JsonValue, Type&);
///
/// found by argument-dependent lookup. A record that is an object of its fields has these functions if its
/// header lists the fields, in the namespace of the record, once for both directions:
///
///     template <ConstOrNot<Point> Record>
///     void eachField(Record& point, const auto& field) {
///       field("x", point.x);
///       field("label", point.label);  // std::optional: not written when absent; absent when missing or null
///       field("tags", bounded(point.tags, 10));  // a list that is cut when it is decoded
///       field("notes", limited(point.notes, 5));  // a list that fails to decode if it is longer
///     }
namespace zelvo {

/// `T` or `const T`.
template <typename Given, typename T>
concept ConstOrNot = std::same_as<std::remove_const_t<Given>, T>;

inline void decode(JsonValue value, bool& field) {
  field = value.boolean();
}
inline void decode(JsonValue value, std::int64_t& field) {
  field = value.integer();
}
inline void decode(JsonValue value, double& field) {
  field = value.number();
}
inline void decode(JsonValue value, std::string& field) {
  field = value.string();
}
inline void decode(JsonValue value, ByteBuffer& field) {
  field = value.bytes();
}

// No implicit conversions: a string literal must not be written as a boolean.
void encode(JsonWriter& writer, std::same_as<bool> auto field) {
  writer.boolean(field);
}
void encode(JsonWriter& writer, std::same_as<std::int64_t> auto field) {
  writer.integer(field);
}
void encode(JsonWriter& writer, std::same_as<double> auto field) {
  writer.number(field);
}
inline void encode(JsonWriter& writer, const std::string& field) {
  writer.string(field);
}
inline void encode(JsonWriter& writer, const ByteBuffer& field) {
  writer.bytes(field.view());
}

template <typename T>
void decode(JsonValue value, std::vector<T>& list) {
  const JsonArray array = value.array();
  list.clear();
  list.reserve(array.size());
  for (const JsonValue element : array)
    decode(element, list.emplace_back());
}

template <typename T>
void encode(JsonWriter& writer, const std::vector<T>& list) {
  writer.beginArray();
  for (const T& element : list)
    encode(writer, element);
  writer.endArray();
}

/// A field that is a list. Decoding keeps its first `limit` elements, and of a list of lists the first
/// `innerLimit` of each. The others are decoded and dropped, because an element of a few bytes of JSON is
/// many times larger in memory. `limit` must be above the record's own limit, so that its rules refuse the
/// cut list too. Refers to the list.
template <typename List>
struct BoundedList {
  List& list;
  std::size_t limit;
  std::size_t innerLimit;
};

template <typename List>
BoundedList<List> bounded(List& list, std::size_t limit, std::size_t innerLimit = 0) {
  return {list, limit, innerLimit};
}

template <typename T>
void decodeElement(JsonValue value, T& element, std::size_t) {
  decode(value, element);
}
template <typename T>
void decodeElement(JsonValue value, std::vector<T>& list, std::size_t limit) {
  decode(value, bounded(list, limit));
}

template <typename T>
void decode(JsonValue value, BoundedList<std::vector<T>> field) {
  field.list.clear();
  T dropped;
  for (const JsonValue element : value.array()) {
    T& target = field.list.size() < field.limit ? field.list.emplace_back() : dropped;
    decodeElement(element, target, field.innerLimit);
  }
}

/// A field that is a list, optional or not, of at most `limit` elements. Refers to the list.
template <typename List>
struct LimitedList {
  List& list;
  std::size_t limit;
};

template <typename List>
LimitedList<List> limited(List& list, std::size_t limit) {
  return {list, limit};
}

/// Fails at the first element too many. Allocates nothing.
inline void requireAtMost(std::size_t limit, JsonValue list) {
  std::size_t count = 0;
  for (const JsonValue element : list.array()) {
    if (++count > limit) element.fail("Too many elements.");
  }
}

/// Fills fields from the members of an object.
class FieldDecoder {
 public:
  explicit FieldDecoder(JsonObject object) : object_(object) {}

  template <typename T>
  void operator()(std::string_view key, T& field) const {
    decode(object_.required(key), field);
  }
  template <typename T>
  void operator()(std::string_view key, std::optional<T>& field) const {
    field.reset();
    if (const auto value = object_.optional(key)) decode(*value, field.emplace());
  }
  template <typename List>
  void operator()(std::string_view key, const BoundedList<List>& field) const {
    decode(object_.required(key), field);
  }
  template <typename List>
  void operator()(std::string_view key, const LimitedList<List>& field) const {
    if (const auto value = object_.optional(key)) requireAtMost(field.limit, *value);
    (*this)(key, field.list);
  }

 private:
  JsonObject object_;
};

/// Writes fields as the members of an object.
class FieldEncoder {
 public:
  explicit FieldEncoder(JsonWriter& writer) : writer_(writer) {}

  template <typename T>
  void operator()(std::string_view key, const T& field) const {
    writer_.key(key);
    encode(writer_, field);
  }
  template <typename T>
  void operator()(std::string_view key, const std::optional<T>& field) const {
    if (field) (*this)(key, *field);
  }
  template <typename List>
  void operator()(std::string_view key, const BoundedList<List>& field) const {
    (*this)(key, field.list);
  }
  template <typename List>
  void operator()(std::string_view key, const LimitedList<List>& field) const {
    (*this)(key, field.list);
  }

 private:
  JsonWriter& writer_;
};

/// A record whose header lists its fields.
template <typename Record>
concept HasFields = requires(Record& record, const FieldDecoder& decoder) {
  eachField(record, decoder);
};

template <HasFields Record>
void decode(JsonValue value, Record& record) {
  eachField(record, FieldDecoder(value.object()));
}

template <HasFields Record>
void encode(JsonWriter& writer, const Record& record) {
  writer.beginObject();
  eachField(record, FieldEncoder(writer));
  writer.endObject();
}

/// The enumerator with the index of the string in `names`.
template <typename Enumeration>
Enumeration decodeName(JsonValue value, std::span<const std::string_view> names) {
  const std::string_view name = value.string();
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) value.fail("Unknown value.");
  return static_cast<Enumeration>(found - names.begin());
}

/// Decodes a record from its JSON text. Throws `DecodingError`. The text is freed before this returns.
template <typename Record>
Record fromJson(std::string text) {
  const JsonDocument document(std::move(text));
  Record record;
  decode(document.root(), record);
  return record;
}

/// A record's JSON text, compact. `expectedBytes` avoids copies if the size is known.
template <typename Record>
std::string toJson(const Record& record, std::size_t expectedBytes = 0) {
  JsonWriter writer(expectedBytes);
  encode(writer, record);
  return writer.take();
}

}  // namespace zelvo
