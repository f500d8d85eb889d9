#include <array>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Cells/SerialDate.hpp"
#include "Support/RefusalTable.hpp"

namespace zelvo {
namespace {

using testing::describe;
using testing::errorOf;

struct Row {
  std::string raw;
  bool uses1904Dates;
  std::string format;
  std::string expected;
};

TEST(SerialDate, Texts) {
  const Row rows[] = {
      {"0", false, "m/d/yy", "1899-12-31"},
      {"1", false, "m/d/yy", "1900-01-01"},
      {"59", false, "m/d/yy", "1900-02-28"},
      {"61", false, "m/d/yy", "1900-03-01"},
      {"366", false, "D-MMM", "1900-12-31"},
      {"36526", false, "yyyy-mm-dd", "2000-01-01"},
      {"4.5351E4", false, "yyyy-mm-dd", "2024-02-29"},
      {"2958465", false, "yyyy-mm-dd", "9999-12-31"},
      {"0", true, "m/d/yy", "1904-01-01"},
      {"60", true, "m/d/yy", "1904-03-01"},
      {"43889", true, "m/d/yy", "2024-02-29"},
      {"2957003", true, "m/d/yy", "9999-12-31"},
      {"2957004", true, "m/d/yy", "10000-01-01"},
      {"2958465", true, "m/d/yy", "10004-01-01"},
      {"45000.25", false, "yyyy-mm-dd", "2023-03-15 06:00:00"},
      {"59.5", false, "m/d/yy", "1900-02-28 12:00:00"},
      {"0.5", false, "h:mm", "12:00:00"},
      {"0", false, "h:mm AM/PM", "00:00:00"},
      {"-0", false, "mm:ss", "00:00:00"},
      {"1e-400", true, "h:mm", "00:00:00"},
      // One hour, one second before midnight and 10:37:42 as office suites save them, some a little short.
      {"4.1666666666666664E-2", false, "h:mm:ss", "01:00:00"},
      {"0.99998842592592596", false, "hh:mm:ss", "23:59:59"},
      {"45000.442847222221", false, "yyyy-mm-dd hh:mm:ss", "2023-03-15 10:37:42"},
      {"45000.041666666664", true, "yyyy-mm-dd hh:mm:ss", "2027-03-16 01:00:00"},
      // The millisecond decides: 0.4 ms short of noon is noon, 0.6 ms short is the second before.
      {"0.499999995371", false, "hh:mm:ss", "12:00:00"},
      {"0.499999993055", false, "hh:mm:ss", "11:59:59"},
      {"45000.9999999999", false, "yyyy-mm-dd", "2023-03-16 00:00:00"},
      {"0.99999999999", false, "hh:mm:ss", "00:00:00"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(SerialDate::excelDate(row.raw, "B7", row.format, row.uses1904Dates), row.expected) << row.raw;
  }
}

TEST(SerialDate, Refusals) {
  const std::string date = "Excel date at B7";
  const std::string time = "time value spans multiple days at B7";
  const Row rows[] = {
      {"-0.001", false, "m/d/yy", date}, {"2958465.001", false, "m/d/yy", date},
      {"2958466", true, "h:mm", date},   {"60", false, "m/d/yy", date},
      {"60.999", false, "m/d/yy", date}, {"60.5", false, "h:mm", date},
      {"x", false, "m/d/yy", date},      {"", true, "h:mm", date},
      {"1e999", false, "h:mm", date},    {"61", false, "h:mm", time},
      {"1", false, "h:mm", time},        {"60", true, "mm:ss", time},
  };
  for (const Row& row : rows) {
    const auto error = errorOf([&] { SerialDate::excelDate(row.raw, "B7", row.format, row.uses1904Dates); });
    EXPECT_TRUE(error == DocumentError::unsupported(row.expected)) << row.raw << ": " << describe(error);
  }
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

/// Checks that `accepts` answers `expected` for every one of the texts.
template <typename... Texts>
void expectAll(bool expected, bool (*accepts)(std::string_view), const Texts&... texts) {
  for (const std::string_view text : {std::string_view(texts)...})
    EXPECT_EQ(accepts(text), expected) << text;
}

TEST(SerialDate, ISODates) {
  expectAll(true, SerialDate::isoDateOnly, "2024-02-29", "2000-02-29", "0001-01-01", "9999-12-31");
  expectAll(false, SerialDate::isoDateOnly, "", "2024-02-30", "2023-02-29", "1900-02-29", "2024-2-3",
            "2024-00-10", "2024-13-01", "2024-01-00", "2024-01-32", "0000-01-01", "10000-01-01", "-024-01-01",
            "2024/01/01", "2024-01-01 ", "2024-01-01T00:00:00Z", "20２4-01-1");
}

TEST(SerialDate, ISODateTimes) {
  expectAll(true, SerialDate::isoDateTime, "2024-02-29T23:59:59Z", "2024-02-29T00:00:00.5Z",
            "2024-02-29T00:00:00.123456789+14:00", "2024-02-29T12:00:00-00:30", "2024-02-29T12:00:00+23:59");
  expectAll(false, SerialDate::isoDateTime, "", "2024-02-29", "2024-02-29T12:00:00", "2024-02-29T12:00Z",
            "2024-02-29 12:00:00Z", "2024-02-29t12:00:00Z", "2024-02-29T12:00:00z", "2023-02-29T12:00:00Z",
            "2024-02-29T24:00:00Z", "2024-02-29T12:60:00Z", "2024-02-29T23:59:60Z", "2024-02-29T12:00:00.Z",
            "2024-02-29T12:00:00.5", "2024-02-29T12:00:00,5Z", "2024-02-29T12:00:00+1:00",
            "2024-02-29T12:00:00+24:00", "2024-02-29T12:00:00+00:60", "2024-02-29T12:00:00+0100",
            "2024-02-29T12:00:00+01", "2024-02-29T12:00:00ZZ", "2024-02-29T12:00:00Z ",
            "2024-02-29T12:00:00 Z");
}

}  // namespace
}  // namespace zelvo
