// Owns Cells/SerialDate: serial numbers shown as dates and times, and ISO 8601 texts.
#include <array>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

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
  for (const auto& [raw, format, in1900] : testing::cases<3>(R"(
      0 | m/d/yy => 1899-12-31 ; 366 | D-MMM => 1900-12-31 ; 4.5351E4 | yyyy-mm-dd => 2024-02-29
      2958465 | yyyy-mm-dd => 9999-12-31 ; 45000.25 | yyyy-mm-dd => 2023-03-15 06:00:00
      59.5 | m/d/yy => 1900-02-28 12:00:00 ; 0.5 | h:mm => 12:00:00 ; 0 | h:mm AM/PM => 00:00:00
      -0 | mm:ss => 00:00:00 ; 60 | m/d/yy => no date ; 60.5 | h:mm => no date ; 60.999 | m/d/yy => no date
      -0.001 | m/d/yy => no date ; 2958465.001 | m/d/yy => no date ; x | m/d/yy => no date ; 1e999 | h:mm => no date
      1 | h:mm => no time ; 4.1666666666666664E-2 | h:mm:ss => 01:00:00 ; 0.99998842592592596 | hh:mm:ss => 23:59:59
      45000.442847222221 | yyyy-mm-dd hh:mm:ss => 2023-03-15 10:37:42 ; 0.99999999999 | hh:mm:ss => 00:00:00
      0.499999995371 | hh:mm:ss => 12:00:00 ; 0.499999993055 | hh:mm:ss => 11:59:59
      45000.9999999999 | yyyy-mm-dd => 2023-03-16 00:00:00)"))
    EXPECT_EQ(dateOf(raw, format, false), in1900) << raw << ' ' << format;
  for (const auto& [raw, format, in1904] : testing::cases<3>(R"(
      0 | m/d/yy => 1904-01-01 ; 60 | m/d/yy => 1904-03-01 ; 60 | mm:ss => no time ; 2957003 | m/d/yy => 9999-12-31
      2957004 | m/d/yy => 10000-01-01 ; 2958465 | m/d/yy => 10004-01-01 ; 1e-400 | h:mm => 00:00:00
      45000.041666666664 | yyyy-mm-dd hh:mm:ss => 2027-03-16 01:00:00 ; 2958466 | h:mm => no date ; | h:mm => no date)"))
    EXPECT_EQ(dateOf(raw, format, true), in1904) << raw << ' ' << format;
}

/// A calendar that counts: the days of both systems, one after the other.
TEST(SerialDate, EveryDayOfTwoCenturies) {
  int serial = 1;
  for (int year = 1900; year <= 2101; ++year) {
    const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const std::array<int, 12> lengths = {31, leap ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (int month = 1; month <= 12; ++month) {
      for (int day = 1; day <= 32; ++day) {
        const std::string date =
            std::to_string(year * 10000 + month * 100 + day).insert(6, "-").insert(4, "-");
        const bool exists = day <= lengths.at(static_cast<std::size_t>(month - 1));
        ASSERT_EQ(SerialDate::isoDateOnly(date), exists) << date;
        if (!exists) continue;
        if (serial == 60) ++serial;
        ASSERT_EQ(dateOf(std::to_string(serial), "m/d/yy", false), date);
        ASSERT_EQ(dateOf(std::to_string(serial - 1462), "m/d/yy", true), year < 1904 ? "no date" : date);
        ++serial;
      }
    }
  }
}

TEST(SerialDate, ISODatesAndTimes) {
  for (const auto& text : testing::words("0001-01-01 9999-12-31"))
    EXPECT_TRUE(SerialDate::isoDateOnly(text)) << text;
  for (const auto& text : testing::words(R"(
      2024-2-3 2024-00-10 2024-13-01 2024-01-00 0000-01-01 10000-01-01 -024-01-01 2024/01/01 2024-01-01␠
      2024-01-01T00:00:00Z 20２4-01-1)"))
    EXPECT_FALSE(SerialDate::isoDateOnly(text)) << text;
  for (const auto& time :
       testing::words("23:59:59Z 00:00:00.5Z 00:00:00.123456789+14:00 12:00:00-00:30 12:00:00+23:59"))
    EXPECT_TRUE(SerialDate::parseISODateTime("2024-02-29T" + time)) << time;
  for (const auto& time : testing::words(R"(
      12:00:00 12:00Z 12:00:00z 24:00:00Z 12:60:00Z 23:59:60Z 12:00:00.Z 12:00:00.5 12:00:00,5Z 12:00:00+1:00
      12:00:00+24:00 12:00:00+00:60 12:00:00+0100 12:00:00+01 12:00:00ZZ 12:00:00Z␠ 12:00:00␠Z)"))
    EXPECT_FALSE(SerialDate::parseISODateTime("2024-02-29T" + time)) << time;
  for (const auto& text : testing::words(R"(
      2024-02-29 2024-02-29␠12:00:00Z 2024-02-29t12:00:00Z 2023-02-29T12:00:00Z)"))
    EXPECT_FALSE(SerialDate::parseISODateTime(text)) << text;
  EXPECT_FALSE(SerialDate::isoDateOnly("") || SerialDate::parseISODateTime(""));
}

}  // namespace
}  // namespace zelvo
