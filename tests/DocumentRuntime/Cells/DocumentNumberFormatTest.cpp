// Owns Cells/DocumentNumberFormat: which codes are numeric, dates or times, and how numbers are rendered.
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <unicode/numberformatter.h>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "Support/Cases.hpp"

namespace zelvo {
namespace {

using DocumentNumberFormat::numeric;

/// How a code shows two numbers; "none" if it is not numeric.
std::string shown(const std::string& code) {
  const auto format = numeric(code);
  return format ? format->render("1234") + " " + format->render("-0.1234567890123") : "none";
}

TEST(DocumentNumberFormat, NumericCodes) {
  for (const auto& [code, numbers] : testing::cases<2>(R"(
      0 => 1234 -0 ; #,##0.00 => 1,234.00 -0.12 ; 0.0## => 1234.0 -0.123 ; 0.#00 => 1234.00 -0.123
      #,##0.0% => 123,400.0% -12.3% ; 0.############ => 1234 -0.123456789012 ; £0 GBP => £1234 GBP £-0 GBP
      "$"0$ => $1234$ $-0$ ; $€0 => €1234 €-0 ; $ €0 => €1234 €-0 ; => none)"))
    EXPECT_EQ(shown(code), numbers) << code;
  for (const std::string& code : testing::words(R"($ General @ # 00 #,## ##,##0 0. 0.% 0.0000000000000 0%% 0%␠
      $0% 0%␠kr $0$ 0␠␠kr 0;-0 0␠ ␠0 0.00E+00 [Red]0 0␊ KR0 m/d/yy)"))
    EXPECT_EQ(shown(code), "none") << code;
  EXPECT_EQ(shown("0\u00A0kr"), "none");
  for (const std::string& sign : testing::words("$ € £ kr NOK USD EUR GBP")) {
    for (const std::string& code : {sign, '"' + sign + '"'}) {
      EXPECT_EQ(shown(code + "0") + shown("0" + code),
                sign + "1234 " + sign + "-01234" + sign + " -0" + sign);
      EXPECT_EQ(shown(code + " 0") + shown("0 " + code),
                sign + " 1234 " + sign + " -01234 " + sign + " -0 " + sign);
    }
  }
}

std::string kindOf(std::string_view code) {
  if (numeric(code)) return "numeric";
  return DocumentNumberFormat::isDate(code) ? "date" : DocumentNumberFormat::isTime(code) ? "time" : "other";
}

TEST(DocumentNumberFormat, BuiltinCodesAndKinds) {
  std::string builtins;
  for (std::int64_t id = -1; id < 200; ++id) {
    if (const auto code = DocumentNumberFormat::builtin(id))
      builtins += std::to_string(id).append(" ").append(*code) + " " + kindOf(*code) + "; ";
  }
  EXPECT_EQ(
      builtins,
      "0 General other; 1 0 numeric; 2 0.00 numeric; 3 #,##0 numeric; 4 #,##0.00 numeric; 9 0% numeric; "
      "10 0.00% numeric; 14 m/d/yy date; 15 d-mmm-yy date; 16 d-mmm date; 17 mmm-yy date; "
      "18 h:mm AM/PM time; 19 h:mm:ss AM/PM time; 20 h:mm time; 21 h:mm:ss time; 22 m/d/yy h:mm date; "
      "45 mm:ss time; 46 [h]:mm:ss other; 47 mmss.0 other; 49 @ other; ");
  for (const auto& [code, kind] : testing::cases<2>(R"(
      DD/mm/yyyy => date ; dd.mm.yyyy => date ; dd/mm/yy => date ; dd.mm.yy => date ; yyyy/MM/dd => date
      yyyy-mm-dd => date ; YYYY-MM-DD hh:MM:ss => date ; hh:mm => time ; HH:mm:SS => time ; yyyy-mm-dd;@ => other
      hh:mm am/pm => other ; => other)"))
    EXPECT_EQ(kindOf(code), kind) << code;
}

TEST(DocumentNumberFormat, Rendering) {
  const std::string zeros(127, '0');
  for (const auto& [code, text, expected] : testing::cases<3>(R"(
      #,##0.00 | 1234.5 => 1,234.50 ; #,##0 | -1234567 => -1,234,567 ; 0.00 | -0.001 => -0.00 ; 0.00 | -0 => 0.00
      0 | 12.50000000000000000000000000000000000000000000000000000000001 => 13 ; #,##0.0 | +999999.95 => 1,000,000.0
      $0 | -5 => $-5 ; #,##0 kr | 1e3 => 1,000 kr ; 0 | 000. => 0 ; 0.0 | .05 => 0.0 ; 0 | 1e128 => 1e128
      0.0 | 1e-127 => 0.0 ; 0.0 | 1e-128 => 1e-128 ; 0.0 | 1.0e-127 => 1.0e-127 ; $0 | 0e999999999 => 0e999999999
      $0 | n/a => n/a ; $0 | 1,5 => 1,5 ; $0 | =>
      0 | 1e127 => 1)" + zeros + " ; 0% | 1e127 => 1" + zeros +
                                                              "00%"))
    EXPECT_EQ(numeric(code).value().render(text), expected) << code << ' ' << text;
}

TEST(DocumentNumberFormat, RenderingAgreesWithICU) {
  using icu::number::Precision;
  std::mt19937 random(1);
  for (const std::string code : {"0", "#,##0", "0.00", "#,##0.0###", "0.############", "0%", "#,##0.0#%"}) {
    const auto format = numeric(code).value();
    const auto reference =
        icu::number::NumberFormatter::withLocale(icu::Locale::getUS())
            .precision(Precision::minMaxFraction(format.minimumFractionDigits, format.maximumFractionDigits))
            .roundingMode(UNUM_ROUND_HALFEVEN)
            .grouping(format.grouped ? UNUM_GROUPING_ON_ALIGNED : UNUM_GROUPING_OFF)
            .scale(icu::number::Scale::powerOfTen(format.percent ? 2 : 0));
    for (int round = 0; round < 3000; ++round) {
      std::string text = "5";  // so that it is not zero, which has no sign here, unlike in ICU
      for (auto length = random() % 26; length > 0; --length)
        text.insert(0, 1, "05990123456789"[random() % 14]);  // ties and carries are common
      if (random() % 4 != 0) text.insert(random() % text.size(), ".");
      if (random() % 3 == 0) text.insert(0, "-");
      if (random() % 3 == 0) text += 'e' + std::to_string(static_cast<int>(random() % 60) - 30);
      UErrorCode status = U_ZERO_ERROR;
      std::string expected;
      reference.formatDecimal(text, status).toString(status).toUTF8String(expected);
      ASSERT_EQ(format.render(text), expected + (format.percent ? "%" : "")) << code << ' ' << text;
    }
  }
}

}  // namespace
}  // namespace zelvo
