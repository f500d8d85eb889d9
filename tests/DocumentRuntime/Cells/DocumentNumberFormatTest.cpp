#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/decimfmt.h>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

using DocumentNumberFormat::Numeric;

/// The parameters in one line: fraction digits, what is switched on, and the texts on both sides.
std::string dump(const Numeric& format) {
  return std::to_string(format.minimumFractionDigits) + '-' + std::to_string(format.maximumFractionDigits) +
         (format.grouped ? " grouped" : "") + (format.percent ? " percent" : "") + " '" + format.prefix +
         "' '" + format.suffix + "'";
}

TEST(DocumentNumberFormat, NumericCodes) {
  for (const auto& [code, expected] : testing::cases<2>(R"(
      0 => 0-0 '' '' ; #,##0.00 => 2-2 grouped '' '' ; 0.0# => 1-2 '' '' ; 0.#0 => 1-2 '' ''
      0.############ => 0-12 '' '' ; #,##0.0% => 1-1 grouped percent '' '' ; "$"#,##0 => 0-0 grouped '$' ''
      $ 0.00 => 2-2 '$ ' '' ; #,##0 kr => 0-0 grouped '' ' kr' ; 0"€" => 0-0 '' '€' ; £0 GBP => 0-0 '£' ' GBP'
      "$"0$ => 0-0 '$' '$' ; $€0 => 0-0 '€' '' ; $ €0 => 0-0 '€' '')")) {
    const auto format = DocumentNumberFormat::numeric(code);
    ASSERT_TRUE(format) << code;
    EXPECT_EQ(dump(*format), expected) << code;
  }
  for (const std::string& text :
       testing::words(R"($ General @ # 00 #,## ##,##0 0. 0.% 0.0000000000000 0%% 0%␠ $0%
      0%␠kr $0$ 0␠␠kr 0;-0 0␠ ␠0 0.00E+00 [Red]0 0␊ KR0 m/d/yy)"))
    EXPECT_FALSE(DocumentNumberFormat::numeric(text)) << text;
  for (const std::string text : {"", "0\u00A0kr"})
    EXPECT_FALSE(DocumentNumberFormat::numeric(text)) << text;
}

TEST(DocumentNumberFormat, BuiltinCodesAreAllOfAKnownKind) {
  for (const auto id : {0, 1, 2, 3, 4, 9, 10, 14, 15, 16, 17, 18, 19, 20, 21, 22, 45, 46, 47, 49}) {
    const auto code = DocumentNumberFormat::builtin(id);
    ASSERT_TRUE(code) << id;
    EXPECT_EQ(DocumentNumberFormat::numeric(*code).has_value(), id >= 1 && id <= 10) << id;
    EXPECT_EQ(DocumentNumberFormat::isDate(*code), (id >= 14 && id <= 17) || id == 22) << id;
    EXPECT_EQ(DocumentNumberFormat::isTime(*code), (id >= 18 && id <= 21) || id == 45) << id;
  }
  for (const auto id : {-1, 5, 11, 23, 44, 48, 50, 164})
    EXPECT_FALSE(DocumentNumberFormat::builtin(id)) << id;
  EXPECT_EQ(DocumentNumberFormat::builtin(47), "mmss.0");
  EXPECT_TRUE(DocumentNumberFormat::isDate("YYYY-MM-DD hh:MM:ss"));
  EXPECT_FALSE(DocumentNumberFormat::isDate("yyyy-mm-dd;@"));
  EXPECT_FALSE(DocumentNumberFormat::isTime("hh:mm am/pm"));
}

TEST(DocumentNumberFormat, Rendering) {
  const auto rendered = [](const std::string& code, const std::string& text) {
    return DocumentNumberFormat::numeric(code).value().render(text);
  };
  for (const auto& [code, text, expected] : testing::cases<3>(R"(
      #,##0.00 | 1234.5 => 1,234.50 ; #,##0 | -1234567 => -1,234,567 ; #,##0 | 999 => 999 ; 0.0# | 3 => 3.0
      0.0# | 3.14159 => 3.14 ; 0% | 0.25 => 25% ; 0.00% | 0.125 => 12.50% ; 0 | 12.5 => 12 ; 0 | 13.5 => 14
      0 | 12.50000000000000000000000000000000000000000000000000000000001 => 13 ; 0.00 | 1.005 => 1.00
      #,##0.0 | +999999.95 => 1,000,000.0 ; 0.00 | -0.001 => -0.00 ; 0.00 | -0 => 0.00 ; $0 | -5 => $-5
      #,##0 kr | 1e3 => 1,000 kr ; 0 | 000. => 0 ; 0.0 | .05 => 0.0 ; 0 | 1e128 => 1e128 ; 0.0 | 1e-127 => 0.0
      0.0 | 1e-128 => 1e-128 ; 0.0 | 1.0e-127 => 1.0e-127 ; $0 | 0e999999999 => 0e999999999 ; $0 | n/a => n/a
      $0 | 1,5 => 1,5 ; $0 | =>)"))
    EXPECT_EQ(rendered(code, text), expected) << code << ' ' << text;
  const std::string zeros(127, '0');
  EXPECT_EQ(rendered("0", "1e127"), "1" + zeros);
  EXPECT_EQ(rendered("0%", "1e127"), "1" + zeros + "00%");
  EXPECT_EQ(rendered("$0", std::string(65, '1')), std::string(65, '1'));
}

/// ICU's formatter, set up from the same parameters.
class SecondOpinion {
 public:
  explicit SecondOpinion(const Numeric& format)
      : formatter_(format.percent ? "0%" : "0", symbols(), status_) {
    formatter_.setRoundingMode(icu::DecimalFormat::kRoundHalfEven);
    formatter_.setMinimumFractionDigits(format.minimumFractionDigits);
    formatter_.setMaximumFractionDigits(format.maximumFractionDigits);
    formatter_.setGroupingUsed(format.grouped ? 1 : 0);
    formatter_.setGroupingSize(3);
  }

  std::string render(const std::string& text) {
    icu::UnicodeString formatted;
    formatter_.format(icu::StringPiece(text), formatted, nullptr, status_);
    EXPECT_TRUE(U_SUCCESS(status_)) << u_errorName(status_) << ' ' << text;
    std::string result;
    return formatted.toUTF8String(result);
  }

 private:
  icu::DecimalFormatSymbols symbols() { return {icu::Locale::getUS(), status_}; }

  UErrorCode status_ = U_ZERO_ERROR;
  icu::DecimalFormat formatter_;
};

TEST(DocumentNumberFormat, RenderingAgreesWithICU) {
  std::mt19937 random(1);
  const auto digits = [&random](std::size_t most) {
    std::string text(random() % (most + 1), '0');
    // Runs of 0, 5 and 9 bring out ties and carries.
    for (char& digit : text)
      digit = random() % 2 == 0 ? "0599"[random() % 4] : "0123456789"[random() % 10];
    return text;
  };
  std::vector<std::string> numbers(3000);
  for (std::string& text : numbers) {
    text = digits(12);
    if (random() % 4 != 0 || text.empty()) text += '.' + digits(15) + "5";
    // A zero has no sign here, unlike in ICU.
    if (random() % 3 == 0 && text.find_first_not_of("0.") != std::string::npos) text.insert(0, "-");
    if (random() % 3 == 0) text += 'e' + std::to_string(static_cast<int>(random() % 60) - 30);
  }
  for (const std::string code : {"0", "#,##0", "0.00", "#,##0.0###", "0.############", "0%", "#,##0.0#%"}) {
    const Numeric format = DocumentNumberFormat::numeric(code).value();
    SecondOpinion icu(format);
    for (const std::string& text : numbers)
      ASSERT_EQ(format.render(text), icu.render(text)) << code << ' ' << text;
  }
}

}  // namespace
}  // namespace zelvo
