// Owns DocumentRuntime/Cells: addresses and ranges, number texts, number formats, dates and times.
#include <bit>
#include <cmath>
#include <random>
#include <string>

#include <gtest/gtest.h>
#include <unicode/numberformatter.h>

#include "DocumentRuntime/Cells/CellAddress.hpp"
#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using namespace testing;

/// The canonical name of an address or a range, or why there is none.
template <typename Place>
std::string nameOf(const std::string& text) {
  std::string name;
  const auto refusal = testing::outcomeOf([&] { name = Place::parse(text).name(); });
  return refusal == "" ? name : refusal.text;
}

TEST(CellAddress, ParsesAndNames) {
  for (const auto& [text, name] : cases<2>(R"(
      a1 => A1 ; $A$1 => A1 ; $$aB$0$5 => AB5 ; XFD1048576 => XFD1048576 ; A0000007 => A7 ; ı1 => I1 ; ﬀ2 => FF2
      => bounds ; $$ => bounds ; A => bounds ; A0 => bounds ; 7 => bounds ; XFE1 => bounds ; XFE! => bounds
      A1048577 => bounds ; A00000001 => bounds ; A00000001! => bounds)"))
    EXPECT_EQ(nameOf<CellAddress>(text), name == "bounds" ? "invalidSelection: cell address bounds" : name);
  for (const std::string& text : words("1A A1B A1000000! A-1 A␠1 A1␠ é1 A１ A1␀"))
    EXPECT_EQ(nameOf<CellAddress>(text), "invalidSelection: cell address") << text;
  for (std::int64_t column = 1; column <= CellAddress::maximumColumn; ++column) {
    const CellAddress address = {column, column * 64};
    ASSERT_EQ(CellAddress::parse(address.name()), address) << address.name();
    ASSERT_LT(address, (CellAddress{1, address.row + 1}));
  }
}

TEST(CellRange, ParsesAndOverlaps) {
  for (const auto& [text, name] : cases<2>(R"(
      b2:$D$40 => B2:D40 ; C3 => C3:C3 ; A1:B2:C3 => invalidSelection: use one rectangular A1 range
      !:: => invalidSelection: use one rectangular A1 range ; A1: => invalidSelection: cell address bounds
      :A1 => invalidSelection: cell address bounds ; => invalidSelection: cell address bounds
      A1;B2 => invalidSelection: cell address ; B1:A2 => invalidSelection: reversed range
      A2:B1 => invalidSelection: reversed range)"))
    EXPECT_EQ(nameOf<CellRange>(text), name);

  const CellRange middle = CellRange::parse("B2:C3");
  for (const auto& text : words("A1 B2 A1:D1 A1:B2 C3:D4 D1:D4 A4:D4 A1:A4 A3:D3 A1:D4")) {
    const CellRange other = CellRange::parse(text);
    bool shared = false;
    for (const CellAddress cell : {CellAddress{2, 2}, {2, 3}, {3, 2}, {3, 3}})
      shared = shared || other.contains(cell);
    EXPECT_TRUE(middle.intersects(other) == shared && other.intersects(middle) == shared) << text;
  }
}

TEST(NumberText, ValuesAndTheirNotation) {
  for (const auto& [text, expected] : cases<2>(R"(
      0 => 0.0 ; -0 => -0.0 ; 2024 => 2024.0 ; -12.5 => -12.5 ; 0.0001 => 0.0001 ; 0.00009999 => 9.999e-05
      1e-5 => 1e-05 ; 999999999999999 => 999999999999999.0 ; 9007199254740993 => 9007199254740992.0 ; 1e17 => 1e+17
      0.30000000000000004 => 0.30000000000000004 ; -1.7976931348623157e308 => -1.7976931348623157e+308
      +1.5 => 1.5 ; -.5e+1 => -5.0 ; 5. => 5.0 ; 007E-2 => 0.07 ; -1e-400 => 0.0 ; 1e-99999999999999999999 => 0.0
      1111111111111111111111111111111111111111111111111111111111111111 => 1.1111111111111112e+63)"))
    EXPECT_EQ(DoubleText::shortest(NumberText::value(text).value()), expected) << text;
  for (const std::string& text : words(R"(+ - . e1 .e1 1e 1e+ 1e1.5 +-1 1␠ ␠1 1,000 0x1p3 1f inf nan
      1␊ １ 1..2 1e309 -1.8e308 1e99999999999999999999 1␀
      11111111111111111111111111111111111111111111111111111111111111111)"))
    EXPECT_FALSE(NumberText::isValid(text)) << text;
  EXPECT_FALSE(NumberText::isValid(""));

  std::mt19937_64 random(1);
  for (int round = 0; round < 200'000; ++round) {
    const auto value = std::bit_cast<double>(std::uint64_t{random()});
    if (!std::isfinite(value)) continue;
    const std::string text = DoubleText::shortest(value);
    ASSERT_EQ(NumberText::value(text), value) << text;
  }
}

/// The number as the code shows it; "none" if the code is not numeric.
std::string rendered(const std::string& code, const std::string& number) {
  const auto format = DocumentNumberFormat::numeric(code);
  return format ? format->render(number) : "none";
}

TEST(DocumentNumberFormat, Codes) {
  for (const auto& [code, numbers] : cases<2>(R"(
      0 => 1234 -0 ; #,##0.00 => 1,234.00 -0.12 ; 0.0## => 1234.0 -0.123 ; 0.#00 => 1234.00 -0.123
      #,##0.0% => 123,400.0% -12.3% ; 0.############ => 1234 -0.123456789012 ; £0 GBP => £1234 GBP £-0 GBP
      "$"0$ => $1234$ $-0$ ; $€0 => €1234 €-0 ; $ €0 => €1234 €-0 ; => none none)"))
    EXPECT_EQ(rendered(code, "1234") + " " + rendered(code, "-0.1234567890123"), numbers) << code;
  for (const std::string& code :
       words(R"($ General @ # 00 #,## ##,##0 0. 0.% 0.0000000000000 0%% 0%␠ $0% 0%␠kr
      $0$ 0␠␠kr 0;-0 0␠ ␠0 0.00E+00 [Red]0 0␊ KR0 m/d/yy)"
             " 0\u00A0kr"))
    EXPECT_EQ(rendered(code, "1"), "none") << code;
  for (const std::string& sign : words("$ € £ kr NOK USD EUR GBP")) {
    for (const std::string& code : {sign, '"' + sign + '"'}) {
      for (const std::string space : {"", " "}) {
        EXPECT_EQ(rendered(code + space + "0", "-1"), sign + space + "-1");
        EXPECT_EQ(rendered("0" + space + code, "-1"), "-1" + space + sign);
      }
    }
  }
}

TEST(DocumentNumberFormat, BuiltinCodesAndKinds) {
  const auto kindOf = [](std::string_view code) {
    if (DocumentNumberFormat::numeric(code)) return "numeric";
    return DocumentNumberFormat::isDate(code)   ? "date"
           : DocumentNumberFormat::isTime(code) ? "time"
                                                : "other";
  };
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
  for (const auto& [code, kind] : cases<2>(R"(
      DD/mm/yyyy => date ; dd.mm.yy => date ; yyyy/MM/dd => date ; hh:mm => time ; yyyy-mm-dd;@ => other
      hh:mm am/pm => other ; => other)"))
    EXPECT_EQ(kindOf(code), kind) << code;
}

TEST(DocumentNumberFormat, RendersAsICUDoes) {
  const std::string zeros(127, '0');
  for (const auto& [code, text, expected] : cases<3>(R"(
      #,##0 | -1234567 => -1,234,567 ; 0.00 | -0.001 => -0.00 ; 0.00 | -0 => 0.00 ; #,##0.0 | +999999.95 => 1,000,000.0
      0 | 12.50000000000000000000000000000000000000000000000000000000001 => 13 ; 0 | 000. => 0 ; 0.0 | .05 => 0.0
      $0 | 0e999999999 => 0e999999999 ; $0 | n/a => n/a ; $0 | 1,5 => 1,5 ; $0 | =>
      0 | 1e128 => 1e128 ; 0.0 | 1e-127 => 0.0 ; 0.0 | 1e-128 => 1e-128 ; 0.0 | 1.0e-127 => 1.0e-127
      0 | 1e127 => 1)" + zeros + " ; 0% | 1e127 => 1" +
                                                     zeros + "00%"))
    EXPECT_EQ(rendered(code, text), expected) << code << ' ' << text;

  using icu::number::Precision;
  std::mt19937 random(1);
  for (const std::string code : {"0", "#,##0", "0.00", "#,##0.0###", "0.############", "0%", "#,##0.0#%"}) {
    const auto format = DocumentNumberFormat::numeric(code).value();
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

/// The text of a serial number at B7, or which of the two errors there is.
std::string dateOf(const std::string& raw, const std::string& format, bool uses1904Dates) {
  std::string text;
  const auto error =
      testing::outcomeOf([&] { text = SerialDate::excelDate(raw, "B7", format, uses1904Dates); });
  if (error == "unsupported: Excel date at B7") return "no date";
  return error == "unsupported: time value spans multiple days at B7" ? "no time" : text + error.text;
}

TEST(SerialDate, Texts) {
  // The last rows of 1900: an hour, a second before midnight and 10:37:42 as office suites save them, some a
  // little short; then the millisecond decides: 0.4 ms short of noon is noon, 0.6 ms short is 11:59:59.
  for (const auto& [system, raw, format, expected] : cases<4>(R"(
      1900 | 0 | m/d/yy => 1899-12-31 ; 1900 | 366 | D-MMM => 1900-12-31 ; 1900 | 4.5351E4 | yyyy-mm-dd => 2024-02-29
      1900 | 2958465 | yyyy-mm-dd => 9999-12-31 ; 1900 | 45000.25 | yyyy-mm-dd => 2023-03-15 06:00:00
      1900 | 60 | m/d/yy => no date ; 1900 | 60.5 | h:mm => no date ; 1900 | 60.999 | m/d/yy => no date
      1900 | -0.001 | m/d/yy => no date ; 1900 | 2958465.001 | m/d/yy => no date ; 1900 | x | m/d/yy => no date
      1900 | 1e999 | h:mm => no date ; 1900 | 1 | h:mm => no time ; 1900 | 4.1666666666666664E-2 | h:mm:ss => 01:00:00
      1900 | 0.99998842592592596 | hh:mm:ss => 23:59:59 ; 1900 | 0.99999999999 | hh:mm:ss => 00:00:00
      1900 | 0.499999995371 | hh:mm:ss => 12:00:00 ; 1900 | 0.499999993055 | hh:mm:ss => 11:59:59
      1900 | 45000.9999999999 | yyyy-mm-dd => 2023-03-16 00:00:00
      1904 | 0 | m/d/yy => 1904-01-01 ; 1904 | 60 | m/d/yy => 1904-03-01 ; 1904 | 60 | mm:ss => no time
      1904 | 2957004 | m/d/yy => 10000-01-01 ; 1904 | 2958465 | m/d/yy => 10004-01-01)"))
    EXPECT_EQ(dateOf(raw, format, system == "1904"), expected) << raw << ' ' << format;
}

/// A calendar that counts: the days of both systems, one after the other.
TEST(SerialDate, EveryDayOfTwoCenturies) {
  int serial = 1;
  for (int year = 1900; year <= 2101; ++year) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    for (int month = 1; month <= 12; ++month) {
      const int length = month == 2 ? (leap ? 29 : 28) : 30 + (month + month / 8) % 2;
      for (int day = 1; day <= 32; ++day) {
        const std::string date =
            std::to_string(year * 10000 + month * 100 + day).insert(6, "-").insert(4, "-");
        ASSERT_EQ(SerialDate::isoDateOnly(date), day <= length) << date;
        if (day > length) continue;
        if (serial == 60) ++serial;
        ASSERT_EQ(dateOf(std::to_string(serial), "m/d/yy", false), date);
        ASSERT_EQ(dateOf(std::to_string(serial - 1462), "m/d/yy", true), year < 1904 ? "no date" : date);
        ++serial;
      }
    }
  }
}

TEST(SerialDate, ISODatesAndTimes) {
  EXPECT_TRUE(SerialDate::isoDateOnly("0001-01-01") && SerialDate::isoDateOnly("9999-12-31"));
  for (const auto& text : words(R"(
      2024-2-3 2024-00-10 2024-13-01 2024-01-00 0000-01-01 10000-01-01 -024-01-01 2024/01/01 2024-01-01␠
      2024-01-01T00:00:00Z 20２4-01-1)"))
    EXPECT_FALSE(SerialDate::isoDateOnly(text)) << text;
  for (const auto& [text, instant] : cases<2>(R"(
      2024-02-29T23:59:59Z => 2024-02-29T23:59:59Z ; 2024-02-29T00:00:00.5Z => 2024-02-29T00:00:00Z
      2024-02-29T00:00:01.123456789+14:00 => 2024-02-28T10:00:01Z ; 0999-12-31T23:40:00-00:30 => 1000-01-01T00:10:00Z
      2024-02-29T23:59:00+23:59 => 2024-02-29T00:00:00Z)"))
    EXPECT_EQ(SerialDate::isoDateTimeText(SerialDate::parseISODateTime(text).value()), instant);
  for (const auto& time : words(R"(
      12:00:00 12:00Z 12:00:00z 24:00:00Z 12:60:00Z 23:59:60Z 12:00:00.Z 12:00:00.5 12:00:00,5Z 12:00:00+1:00
      12:00:00+24:00 12:00:00+00:60 12:00:00+0100 12:00:00+01 12:00:00ZZ 12:00:00Z␠ 12:00:00␠Z)"))
    EXPECT_FALSE(SerialDate::parseISODateTime("2024-02-29T" + time)) << time;
  EXPECT_FALSE(SerialDate::isoDateOnly("") || SerialDate::parseISODateTime(""));
}

}  // namespace
}  // namespace zelvo
