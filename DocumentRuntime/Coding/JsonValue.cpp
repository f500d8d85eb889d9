#include "DocumentRuntime/Coding/JsonValue.hpp"

#include <array>

#include "DocumentRuntime/Coding/Base64.hpp"
#include "DocumentRuntime/Coding/JsonNumber.hpp"
#include "DocumentRuntime/Coding/JsonReader.hpp"

namespace zelvo {
namespace {

std::string nameOf(JsonKind kind) {
  constexpr std::array<std::string_view, 6> names = {"null",     "a boolean", "a number",
                                                     "a string", "an array",  "an object"};
  return std::string(names[static_cast<std::size_t>(kind)]);
}

}  // namespace

JsonKind JsonValue::kind() const {
  return document_->tokens_[index_].kind();
}

void JsonValue::fail(const std::string& message) const {
  throw DecodingError(message, document_->path(index_));
}

void JsonValue::require(JsonKind expected) const {
  if (kind() != expected) fail("Expected " + nameOf(expected) + ", found " + nameOf(kind()) + ".");
}

bool JsonValue::boolean() const {
  require(JsonKind::boolean);
  return document_->tokens_[index_].value() != 0;
}

std::int64_t JsonValue::integer() const {
  require(JsonKind::number);
  const auto value = JsonNumber::integer(document_->text(document_->tokens_[index_]));
  if (!value) fail("Expected an integer of at most 64 bits.");
  return *value;
}

double JsonValue::number() const {
  require(JsonKind::number);
  const auto value = JsonNumber::number(document_->text(document_->tokens_[index_]));
  if (!value) fail("The number is out of range.");
  return *value;
}

std::string_view JsonValue::string() const {
  require(JsonKind::string);
  return document_->text(document_->tokens_[index_]);
}

ByteBuffer JsonValue::bytes() const {
  auto bytes = Base64::decode(string());
  if (!bytes) fail("Expected base64.");
  return std::move(*bytes);
}

JsonArray JsonValue::array() const {
  require(JsonKind::array);
  return JsonArray(*this);
}

JsonObject JsonValue::object() const {
  require(JsonKind::object);
  return JsonObject(*this);
}

std::size_t JsonArray::size() const {
  std::size_t count = 0;
  for (Iterator element = begin(); element != end(); ++element)
    ++count;
  return count;
}

JsonArray::Iterator JsonArray::begin() const {
  return Iterator(JsonValue(*array_.document_, array_.index_ + 1));
}

JsonArray::Iterator JsonArray::end() const {
  return Iterator(JsonValue(*array_.document_, array_.document_->next(array_.index_)));
}

JsonArray::Iterator& JsonArray::Iterator::operator++() {
  value_.index_ = value_.document_->next(value_.index_);
  return *this;
}

JsonObject::Iterator JsonObject::begin() const {
  return Iterator(JsonValue(*object_.document_, object_.index_ + 1));
}

JsonObject::Iterator JsonObject::end() const {
  return Iterator(JsonValue(*object_.document_, object_.document_->next(object_.index_)));
}

JsonMember JsonObject::Iterator::operator*() const {
  return {key_.string(), JsonValue(*key_.document_, key_.index_ + 1)};
}

JsonObject::Iterator& JsonObject::Iterator::operator++() {
  key_.index_ = key_.document_->next(key_.index_ + 1);
  return *this;
}

std::optional<JsonValue> JsonObject::find(std::string_view key) const {
  std::optional<JsonValue> found;
  for (const JsonMember member : *this) {
    if (member.key == key) found = member.value;
  }
  return found;
}

JsonValue JsonObject::required(std::string_view key) const {
  const auto value = find(key);
  if (!value) fail("The key \"" + std::string(key) + "\" is missing.");
  return *value;
}

std::optional<JsonValue> JsonObject::optional(std::string_view key) const {
  const auto value = find(key);
  if (!value || value->isNull()) return std::nullopt;
  return value;
}

}  // namespace zelvo
