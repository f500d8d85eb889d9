#include "zelvo/Extraction/RowForms.hpp"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Coding/JsonNumber.hpp"
#include "DocumentRuntime/Coding/JsonWriter.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

using Form = ExtractArguments::Form;
using Kind = SourceCellValue::Kind;

/// What a text may begin with that spreadsheet programs take for a formula.
constexpr std::string_view formulaStarts = "=+-@\t\r";

/// The text with every character that `escapeOf` knows replaced by its escape.
template <typename EscapeOf>
std::string escaped(std::string_view text, EscapeOf escapeOf) {
  std::string result;
  result.reserve(text.size());
  for (const char c : text) {
    const std::string_view escape = escapeOf(c);
    if (escape.empty()) {
      result += c;
    } else {
      result += escape;
    }
  }
  return result;
}

/// Rows of texts.
class TextRowWriter : public RowWriter {
 public:
  TextRowWriter(const CellTextOptions& options, bool isForTerminal)
      : options_(options), isForTerminal_(isForTerminal) {}

  std::string lines(const std::vector<SourceCell>& cells) override {
    std::vector<std::string> fields(cells.size());
    std::ranges::transform(cells, fields.begin(),
                           [&](const SourceCell& cell) { return field(cellText(cell, options_)); });
    return line(fields);
  }

 protected:
  virtual std::string field(const std::string& text) const = 0;
  virtual std::string line(const std::vector<std::string>& fields) = 0;

  std::string shown(std::string text) const { return isForTerminal_ ? printable(text) : std::move(text); }

  static std::string joined(const std::vector<std::string>& fields, std::string_view separator) {
    std::string text;
    for (std::size_t i = 0; i < fields.size(); ++i)
      text.append(i == 0 ? "" : separator).append(fields[i]);
    return text;
  }

 private:
  CellTextOptions options_;
  bool isForTerminal_;
};

class CSVWriter final : public TextRowWriter {
  using TextRowWriter::TextRowWriter;

  std::string field(const std::string& text) const override {
    std::string written = shown(text);
    if (text.find_first_of("\",\r\n") == std::string::npos) return written;
    return '"' + escaped(written, [](char c) { return c == '"' ? "\"\"" : ""; }) + '"';
  }

  std::string line(const std::vector<std::string>& fields) override {
    // Many readers skip an empty line.
    if (fields.size() == 1 && fields.front().empty()) return "\"\"\n";
    return joined(fields, ",") + "\n";
  }
};

std::string_view tsvEscape(char c) {
  switch (c) {
    case '\t':
      return "\\t";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\\':
      return "\\\\";
    default:
      return {};
  }
}

class TSVWriter final : public TextRowWriter {
  using TextRowWriter::TextRowWriter;

  std::string field(const std::string& text) const override { return shown(escaped(text, tsvEscape)); }
  std::string line(const std::vector<std::string>& fields) override { return joined(fields, "\t") + "\n"; }
};

class MarkdownWriter final : public TextRowWriter {
 public:
  MarkdownWriter(const SheetRows& rows, const CellTextOptions& options, bool isForTerminal)
      : TextRowWriter(options, isForTerminal), rows_(rows) {}

 private:
  std::string field(const std::string& text) const override {
    std::string result;
    std::size_t backslashes = 0;  // directly before the character
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char c = text[i];
      const bool endsPair = c == '\n' && i > 0 && text[i - 1] == '\r';
      if (c == '|') {
        result.append(backslashes, '\\').append("\\|");  // they would escape this backslash
      } else if (c != '\n' && c != '\r') {
        result += c;
      } else if (!endsPair) {
        result += "<br>";
      }
      backslashes = c == '\\' ? backslashes + 1 : 0;
    }
    return shown(std::move(result));
  }

  std::string line(const std::vector<std::string>& fields) override {
    std::string text;
    const bool isFirst = std::exchange(isFirst_, false);
    if (isFirst && !rows_.firstRowIsHeader)
      text = pipeLine(std::vector<std::string>(fields.size())) + delimiterLine();
    text += pipeLine(fields);
    if (isFirst && rows_.firstRowIsHeader) text += delimiterLine();
    return text;
  }

  static std::string pipeLine(const std::vector<std::string>& fields) {
    return "| " + joined(fields, " | ") + " |\n";
  }

  /// With columns of numbers aligned to the right.
  std::string delimiterLine() const {
    std::vector<std::string> delimiters;
    for (std::size_t column = 0; column < rows_.columns.size(); ++column)
      delimiters.emplace_back(hasNumber(rows_, column) ? "---:" : "---");
    return pipeLine(delimiters);
  }

  const SheetRows& rows_;
  bool isFirst_ = true;
};

std::size_t digitsAt(std::string_view text, std::size_t position) {
  const std::size_t end = std::min(text.find_first_not_of(ASCII::decimalDigits, position), text.size());
  return end - position;
}

/// Whether a number text follows JSON's grammar, which has no leading plus, zero or point.
bool isJsonNumber(std::string_view text) {
  std::size_t position = text.starts_with('-') ? 1 : 0;
  const std::size_t integer = digitsAt(text, position);
  if (integer == 0 || (integer > 1 && text[position] == '0')) return false;
  position += integer;
  if (position < text.size() && text[position] == '.') {
    const std::size_t fraction = digitsAt(text, ++position);
    if (fraction == 0) return false;
    position += fraction;
  }
  if (position < text.size() && (text[position] == 'e' || text[position] == 'E')) {
    ++position;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) ++position;
    const std::size_t exponent = digitsAt(text, position);
    if (exponent == 0) return false;
    position += exponent;
  }
  return position == text.size();
}

std::string jsonString(std::string_view text) {
  JsonWriter writer;
  writer.string(text);
  return writer.take();
}

std::string jsonNumber(const std::string& text) {
  if (isJsonNumber(text)) return text;
  std::string number;
  // A number text that is no number comes from a broken process only.
  JsonNumber::append(number, NumberText::value(text).value_or(0));
  return number;
}

class JSONLinesWriter final : public RowWriter {
 public:
  JSONLinesWriter(const SheetRows& rows, const CellTextOptions& options)
      : options_(options), isHeader_(rows.firstRowIsHeader) {
    options_.raw = true;
    for (const std::int64_t column : rows.columns)
      letters_.push_back(columnLetters(column));
    if (!isHeader_) setKeys(letters_);
  }

  std::string lines(const std::vector<SourceCell>& cells) override {
    if (std::exchange(isHeader_, false)) {
      setKeys(titlesOf(cells));
      return {};
    }
    std::string line;
    for (std::size_t i = 0; i < cells.size(); ++i)
      line += (i == 0 ? "{" : ",") + keys_[i] + valueOf(cells[i]);
    return line + "}\n";
  }

 private:
  void setKeys(const std::vector<std::string>& names) {
    for (const std::string& name : names)
      keys_.push_back(jsonString(name) + ":");
  }

  std::vector<std::string> titlesOf(const std::vector<SourceCell>& cells) const {
    std::vector<std::string> titles;
    std::set<std::string, std::less<>> taken;
    for (std::size_t i = 0; i < cells.size(); ++i) {
      std::string title = cellText(cells[i], {.escapesFormulas = options_.escapesFormulas});
      if (Unicode::trimmed(title).empty()) title = letters_[i];
      // A title may look like one that was made unique, hence the loop.
      while (taken.contains(title))
        title += " (" + letters_[i] + ")";
      taken.insert(title);
      titles.push_back(std::move(title));
    }
    return titles;
  }

  std::string valueOf(const SourceCell& cell) const {
    const std::string text = cellText(cell, options_);
    switch (cell.value.kind()) {
      case Kind::missing:
        return "null";
      case Kind::boolean:
        return cell.value.isTrue() ? "true" : "false";
      case Kind::number:
        return jsonNumber(text);
      case Kind::error:
        return "{\"error\":" + jsonString(text) + "}";
      case Kind::text:
      case Kind::date:
        return jsonString(text);
    }
    return "null";
  }

  CellTextOptions options_;
  bool isHeader_;
  std::vector<std::string> letters_;
  std::vector<std::string> keys_;  ///< JSON, with their colons
};

}  // namespace

std::string cellText(const SourceCell& cell, const CellTextOptions& options) {
  std::string text = options.raw ? cell.value.displayText() : cell.displayText();
  const bool isFormulaLike = cell.value.kind() == Kind::text && !text.empty() &&
                             formulaStarts.find(text.front()) != std::string_view::npos;
  return options.escapesFormulas && isFormulaLike ? "'" + text : text;
}

std::unique_ptr<RowWriter> rowWriter(Form form, const SheetRows& rows, const CellTextOptions& options,
                                     bool isForTerminal) {
  if (form == Form::jsonl) return std::make_unique<JSONLinesWriter>(rows, options);
  if (form == Form::markdown) return std::make_unique<MarkdownWriter>(rows, options, isForTerminal);
  if (form == Form::tsv) return std::make_unique<TSVWriter>(options, isForTerminal);
  return std::make_unique<CSVWriter>(options, isForTerminal);
}

}  // namespace zelvo
