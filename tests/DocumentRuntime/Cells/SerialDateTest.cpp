#include <array>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

/// The text of a serial number at B7, or why there is none.
std::string dateOf(const std::string& raw, const std::string& format, bool uses1904Dates = false) {
  std::string text;
  const auto refusal =
      testing::outcomeOf([&] { text = SerialDate::excelDate(raw, "B7", format, uses1904Dates); });
  return text + refusal.text;
}

TEST(SerialDate, Texts) {
  for (const auto& [raw, format, expected] : testing::cases<3>(R"(
      0 | m/d/yy => 1899-12-31 ; 1 | m/d/yy => 1900-01-01 ; 59 | m/d/yy => 1900-02-28 ; 61 | m/d/yy => 1900-03-01
      366 | D-MMM => 1900-12-31 ; 36526 | yyyy-mm-dd => 2000-01-01 ; 4.5351E4 | yyyy-mm-dd => 2024-02-29
      2958465 | yyyy-mm-dd => 9999-12-31 ; 45000.25 | yyyy-mm-dd => 2023-03-15 06:00:00
      59.5 | m/d/yy => 1900-02-28 12:00:00 ; 0.5 | h:mm => 12:00:00 ; 0 | h:mm AM/PM => 00:00:00
      -0 | mm:ss => 00:00:00)"))
    EXPECT_EQ(dateOf(raw, format), expected) << raw;
  for (const auto& [raw, format, expected] : testing::cases<3>(R"(
      0 | m/d/yy => 1904-01-01 ; 60 | m/d/yy => 1904-03-01 ; 43889 | m/d/yy => 2024-02-29
      2957003 | m/d/yy => 9999-12-31 ; 2957004 | m/d/yy => 10000-01-01 ; 2958465 | m/d/yy => 10004-01-01
      1e-400 | h:mm => 00:00:00 ; 45000.041666666664 | yyyy-mm-dd hh:mm:ss => 2027-03-16 01:00:00)"))
    EXPECT_EQ(dateOf(raw, format, true), expected) << raw;
  // One hour, one second before midnight and 10:37:42 as office suites save them, some a little short; then
  // the millisecond decides: 0.4 ms short of noon is noon, 0.6 ms short is the second before.
  for (const auto& [raw, format, expected] : testing::cases<3>(R"(
      4.1666666666666664E-2 | h:mm:ss => 01:00:00 ; 0.99998842592592596 | hh:mm:ss => 23:59:59
      45000.442847222221 | yyyy-mm-dd hh:mm:ss => 2023-03-15 10:37:42
      0.499999995371 | hh:mm:ss => 12:00:00 ; 0.499999993055 | hh:mm:ss => 11:59:59
      45000.9999999999 | yyyy-mm-dd => 2023-03-16 00:00:00 ; 0.99999999999 | hh:mm:ss => 00:00:00)"))
    EXPECT_EQ(dateOf(raw, format), expected) << raw;
}

TEST(SerialDate, Refusals) {
  const std::string date = "unsupported: Excel date at B7";
  const std::string time = "unsupported: time value spans multiple days at B7";
  for (const std::string raw : {"-0.001", "2958465.001", "60", "60.999", "x"})
    EXPECT_EQ(dateOf(raw, "m/d/yy"), date) << raw;
  for (const std::string raw : {"60.5", "1e999"})
    EXPECT_EQ(dateOf(raw, "h:mm"), date) << raw;
  for (const std::string raw : {"2958466", ""})
    EXPECT_EQ(dateOf(raw, "h:mm", true), date) << raw;
  for (const std::string raw : {"61", "1"})
    EXPECT_EQ(dateOf(raw, "h:mm"), time) << raw;
  EXPECT_EQ(dateOf("60", "mm:ss", true), time);
}

/// A calendar that counts: the days of both systems, one after the other.
TEST(SerialDate, EveryDayOfTwoCenturies) {
  int serial1900 = 1;
  for (int year = 1900; year <= 2101; ++year) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const std::array<int, 12> lengths = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= lengths.at(static_cast<std::size_t>(month - 1)); ++day, ++serial1900) {
        if (serial1900 == 60) ++serial1900;
        const std::string expected =
            std::to_string(year * 10000 + month * 100 + day).insert(6, "-").insert(4, "-");
        ASSERT_EQ(SerialDate::excelDate(std::to_string(serial1900), "A1", "m/d/yy", false), expected);
        ASSERT_TRUE(SerialDate::isoDateOnly(expected)) << expected;
        if (year < 1904) continue;
        ASSERT_EQ(SerialDate::excelDate(std::to_string(serial1900 - 1462), "A1", "m/d/yy", true), expected);
      }
    }
  }
}

TEST(SerialDate, ISODates) {
  for (const auto& text : testing::words("2024-02-29 2000-02-29 0001-01-01 9999-12-31"))
    EXPECT_TRUE(SerialDate::isoDateOnly(text)) << text;
  for (const auto& text : testing::words(R"(
      2024-02-30 2023-02-29 1900-02-29 2024-2-3 2024-00-10 2024-13-01 2024-01-00 2024-01-32 0000-01-01
      10000-01-01 -024-01-01 2024/01/01 2024-01-01␠ 2024-01-01T00:00:00Z 20２4-01-1)"))
    EXPECT_FALSE(SerialDate::isoDateOnly(text)) << text;
  EXPECT_FALSE(SerialDate::isoDateOnly(""));
}

TEST(SerialDate, ISODateTimes) {
  for (const auto& text : testing::words(R"(
      2024-02-29T23:59:59Z 2024-02-29T00:00:00.5Z 2024-02-29T00:00:00.123456789+14:00
      2024-02-29T12:00:00-00:30 2024-02-29T12:00:00+23:59)"))
    EXPECT_TRUE(SerialDate::parseISODateTime(text)) << text;
  for (const auto& text : testing::words(R"(
      2024-02-29 2024-02-29T12:00:00 2024-02-29T12:00Z 2024-02-29␠12:00:00Z 2024-02-29t12:00:00Z
      2024-02-29T12:00:00z 2023-02-29T12:00:00Z 2024-02-29T24:00:00Z 2024-02-29T12:60:00Z 2024-02-29T23:59:60Z
      2024-02-29T12:00:00.Z 2024-02-29T12:00:00.5 2024-02-29T12:00:00,5Z 2024-02-29T12:00:00+1:00
      2024-02-29T12:00:00+24:00 2024-02-29T12:00:00+00:60 2024-02-29T12:00:00+0100 2024-02-29T12:00:00+01
      2024-02-29T12:00:00ZZ 2024-02-29T12:00:00Z␠ 2024-02-29T12:00:00␠Z)"))
    EXPECT_FALSE(SerialDate::parseISODateTime(text)) << text;
  EXPECT_FALSE(SerialDate::parseISODateTime(""));
}

}  // namespace
}  // namespace zelvo
