#include "DocumentRuntime/Coding/JsonReader.hpp"

#include <algorithm>
#include <functional>

#include <boost/json/basic_parser_impl.hpp>

namespace zelvo {

namespace json = boost::json;

/// Ends each text. No text contains it: strings are valid UTF-8, numbers are ASCII.
constexpr char terminator = '\xFF';

/// Handler of the parser's events: builds the token list, and packs the decoded texts towards the front of
/// the source, each with a terminator.
///
/// `packed_` is the end of the packed texts, without the last one's terminator. It never exceeds the parser's
/// position, because a text is never longer than its source: an escape is longer than the character. The
/// terminator is written when the next text begins: by then the parser has read past the quotation mark,
/// comma or bracket that the terminator overwrites. The parser never reads a byte again after it has reported
/// it.
class JsonDocument::Builder {
 public:
  explicit Builder(JsonDocument& document) : text_(document.text_), tokens_(document.tokens_) {}

  // NOLINTBEGIN(readability-identifier-naming): the parser requires these names.
  static constexpr std::size_t max_object_size = maximumTextBytes;
  static constexpr std::size_t max_array_size = maximumTextBytes;
  static constexpr std::size_t max_key_size = maximumTextBytes;
  static constexpr std::size_t max_string_size = maximumTextBytes;

  using Text = json::string_view;
  using Failure = json::error_code;

  bool on_document_begin(Failure&) { return true; }
  bool on_document_end(Failure&) { return true; }
  bool on_comment_part(Text, Failure&) { return true; }
  bool on_comment(Text, Failure&) { return true; }

  bool on_null(Failure&) { return add(JsonKind::null, 0); }
  bool on_bool(bool value, Failure&) { return add(JsonKind::boolean, value ? 1 : 0); }

  // The parser's conversion of numbers is inexact, so only their texts are used.
  bool on_number_part(Text part, Failure&) { return pack(part); }
  bool on_int64(std::int64_t, Text part, Failure&) { return addText(JsonKind::number, part); }
  bool on_uint64(std::uint64_t, Text part, Failure&) { return addText(JsonKind::number, part); }
  bool on_double(double, Text part, Failure&) { return addText(JsonKind::number, part); }

  bool on_key_part(Text part, std::size_t, Failure&) { return pack(part); }
  bool on_key(Text part, std::size_t, Failure&) { return addText(JsonKind::string, part); }
  bool on_string_part(Text part, std::size_t, Failure&) { return pack(part); }
  bool on_string(Text part, std::size_t, Failure&) { return addText(JsonKind::string, part); }

  bool on_array_begin(Failure&) { return open(JsonKind::array); }
  bool on_array_end(std::size_t, Failure&) { return close(JsonKind::array); }
  bool on_object_begin(Failure&) { return open(JsonKind::object); }
  bool on_object_end(std::size_t, Failure&) { return close(JsonKind::object); }
  // NOLINTEND(readability-identifier-naming)

  /// Ends the last text. Called once, when the parser has read everything. A number at the end of the source
  /// has no terminator.
  void terminate() {
    if (packed_ < text_.size()) text_[packed_] = terminator;
  }

 private:
  bool add(JsonKind kind, std::size_t value) {
    tokens_.emplace_back(kind, value);
    return true;
  }

  /// Appends a piece of the string or number that is being read. A first piece that is a view into the source
  /// is not moved, so a long string is not copied.
  bool pack(Text piece) {
    if (!inText_) {
      beginText(piece);
      inText_ = true;
    }
    char* const target = text_.data() + packed_;
    if (target != piece.data()) std::copy(piece.begin(), piece.end(), target);
    packed_ += piece.size();
    return true;
  }

  void beginText(Text firstPiece) {
    if (!isFirst_) {
      terminate();
      ++packed_;
    }
    isFirst_ = false;
    if (isInSource(firstPiece)) packed_ = static_cast<std::size_t>(firstPiece.data() - text_.data());
    start_ = packed_;
  }

  bool addText(JsonKind kind, Text lastPiece) {
    pack(lastPiece);
    inText_ = false;
    return add(kind, start_);
  }

  bool isInSource(Text piece) const {
    const std::less<> before;
    return !before(piece.data(), text_.data()) && before(piece.data(), text_.data() + text_.size());
  }

  bool open(JsonKind kind) {
    unclosed_.push_back(tokens_.size());
    return add(kind, 0);
  }

  bool close(JsonKind kind) {
    tokens_[unclosed_.back()] = Token(kind, tokens_.size() - unclosed_.back() - 1);
    unclosed_.pop_back();
    return true;
  }

  std::string& text_;
  std::vector<Token>& tokens_;
  std::vector<std::size_t> unclosed_;
  std::size_t packed_ = 0;
  std::size_t start_ = 0;
  bool isFirst_ = true;
  bool inText_ = false;
};

JsonDocument::JsonDocument(std::string text) : text_(std::move(text)) {
  if (text_.size() > maximumTextBytes) throw DecodingError("The JSON is too long.");
  // Every token except the root's takes at least two bytes, with its separator. Reserved memory that is never
  // written is never resident.
  tokens_.reserve(text_.size() / 2 + 1);

  json::parse_options options;
  options.max_depth = maximumDepth;
  json::basic_parser<Builder> parser(options, *this);
  json::error_code failure;
  const std::size_t consumed = parser.write_some(false, text_.data(), text_.size(), failure);
  if (!failure && consumed < text_.size()) failure = json::error::extra_data;
  if (failure) {
    throw DecodingError("The JSON is malformed at byte " + std::to_string(consumed) + ": " +
                        failure.message() + ".");
  }
  parser.handler().terminate();
}

std::string_view JsonDocument::text(const Token& token) const {
  const std::string_view rest = std::string_view(text_).substr(token.value());
  return rest.substr(0, rest.find(terminator));
}

std::uint32_t JsonDocument::next(std::uint32_t index) const {
  const Token& token = tokens_[index];
  const bool holdsTokens = token.kind() == JsonKind::array || token.kind() == JsonKind::object;
  return index + 1 + (holdsTokens ? token.value() : 0);
}

std::string JsonDocument::path(std::uint32_t index) const {
  std::string path;
  std::uint32_t current = 0;
  while (current != index && path.size() <= DecodingError::maximumPathBytes) {
    const bool isObject = tokens_[current].kind() == JsonKind::object;
    std::uint32_t child = current + 1;
    for (std::size_t position = 0;; ++position) {
      const std::uint32_t value = isObject ? child + 1 : child;
      if (index < next(value)) {
        if (!isObject) {
          path += '[' + std::to_string(position) + ']';
        } else {
          if (!path.empty()) path += '.';
          path += text(tokens_[child]).substr(0, DecodingError::maximumPathBytes + 1);
        }
        current = value;
        break;
      }
      child = next(value);
    }
  }
  return path;
}

}  // namespace zelvo
