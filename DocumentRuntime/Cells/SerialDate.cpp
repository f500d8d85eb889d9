#include "DocumentRuntime/Cells/SerialDate.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>

#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"
#include "DocumentRuntime/Cells/NumberText.hpp"
#include "DocumentRuntime/Errors/DocumentError.hpp"
#include "Text/ASCII.hpp"

namespace zelvo::SerialDate {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;

using namespace std::chrono_literals;

/// 9999-12-31 in the 1900 system.
constexpr double maximumSerial = 2'958'465;

/// 1900-02-29 in the 1900 system, a date that does not exist (the historic spreadsheet leap-year bug).
constexpr double falseLeapDay = 60;

constexpr sys_days base1900 = 1899y / 12 / 31;
constexpr sys_days base1904 = 1904y / 1 / 1;

/// The second of a serial. A text of 17 digits can be below the intended time by far less than a millisecond,
/// so the value is rounded to the millisecond first: 1/24 is 01:00:00, not 00:59:59.
sys_seconds instantOf(double serial, bool uses1904Dates) {
  const double wholeDays = std::floor(serial);
  const double fraction = serial - wholeDays;  // exact
  const days skipped = days(!uses1904Dates && serial >= falseLeapDay ? 1 : 0);
  const sys_days day = (uses1904Dates ? base1904 : base1900) + days(static_cast<int>(wholeDays)) - skipped;
  return std::chrono::floor<seconds>(day + milliseconds(std::llround(fraction * 86'400'000)));
}

std::string padded(std::int64_t number, std::size_t width) {
  std::string digits = std::to_string(number);
  if (digits.size() < width) digits.insert(0, width - digits.size(), '0');
  return digits;
}

std::string dateText(sys_seconds instant) {
  const std::chrono::year_month_day date = std::chrono::floor<days>(instant);
  return padded(static_cast<int>(date.year()), 4) + '-' + padded(static_cast<unsigned>(date.month()), 2) +
         '-' + padded(static_cast<unsigned>(date.day()), 2);
}

std::string timeText(sys_seconds instant) {
  const std::chrono::hh_mm_ss time(instant - std::chrono::floor<days>(instant));
  return padded(time.hours().count(), 2) + ':' + padded(time.minutes().count(), 2) + ':' +
         padded(time.seconds().count(), 2);
}

/// Whether the text matches the pattern: a digit where it has 0, the same character elsewhere.
bool hasShape(std::string_view text, std::string_view shape) {
  return std::equal(text.begin(), text.end(), shape.begin(), shape.end(), [](char character, char expected) {
    return expected == '0' ? ASCII::isDigit(character) : character == expected;
  });
}

unsigned number(std::string_view digits) {
  unsigned result = 0;
  for (const char digit : digits)
    result = result * 10 + static_cast<unsigned>(digit - '0');
  return result;
}

/// Whether the text is hh:mm from 00:00 to 23:59.
bool isHourAndMinute(std::string_view text) {
  return hasShape(text, "00:00") && number(text.substr(0, 2)) < 24 && number(text.substr(3)) < 60;
}

/// Of a text that `isHourAndMinute` accepts.
minutes minutesOf(std::string_view text) {
  return hours(number(text.substr(0, 2))) + minutes(number(text.substr(3, 2)));
}

/// The offset from UTC of "Z" or ±hh:mm.
std::optional<minutes> zoneOffset(std::string_view zone) {
  if (zone == "Z") return minutes(0);
  const bool isSigned = zone.starts_with('+') || zone.starts_with('-');
  if (!isSigned || !isHourAndMinute(zone.substr(1))) return std::nullopt;
  const minutes offset = minutesOf(zone.substr(1));
  return zone.starts_with('-') ? -offset : offset;
}

std::optional<sys_days> dateOf(std::string_view text) {
  if (!hasShape(text, "0000-00-00")) return std::nullopt;
  const unsigned year = number(text.substr(0, 4));
  const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(year)),
                                         std::chrono::month(number(text.substr(5, 2))),
                                         std::chrono::day(number(text.substr(8))));
  if (year == 0 || !date.ok()) return std::nullopt;
  return sys_days(date);
}

}  // namespace

std::string excelDate(std::string_view raw, std::string_view cellName, std::string_view format,
                      bool uses1904Dates) {
  const auto serial = NumberText::value(raw);
  if (!serial || *serial < 0 || *serial > maximumSerial ||
      (!uses1904Dates && std::floor(*serial) == falseLeapDay)) {
    throw DocumentError::unsupported(RefusalDetail::date + std::string(cellName));
  }
  const sys_seconds instant = instantOf(*serial, uses1904Dates);
  if (DocumentNumberFormat::isTime(format)) {
    if (*serial >= 1) {
      throw DocumentError::unsupported(RefusalDetail::timeSpan + std::string(cellName));
    }
    return timeText(instant);
  }
  const bool isWhole = *serial == std::floor(*serial);
  return isWhole ? dateText(instant) : dateText(instant) + ' ' + timeText(instant);
}

bool isoDateOnly(std::string_view text) {
  return dateOf(text).has_value();
}

std::optional<sys_seconds> parseISODateTime(std::string_view text) {
  constexpr std::string_view shape = "0000-00-00T00:00:00";
  if (!hasShape(text.substr(0, shape.size()), shape)) return std::nullopt;
  const auto date = dateOf(text.substr(0, 10));
  const unsigned second = number(text.substr(17, 2));
  if (!date || !isHourAndMinute(text.substr(11, 5)) || second > 59) return std::nullopt;

  std::string_view zone = text.substr(shape.size());
  if (zone.starts_with('.')) {
    zone.remove_prefix(1);
    const std::size_t digits = std::min(zone.find_first_not_of("0123456789"), zone.size());
    if (digits == 0) return std::nullopt;
    zone.remove_prefix(digits);
  }
  const auto offset = zoneOffset(zone);
  if (!offset) return std::nullopt;
  return *date + minutesOf(text.substr(11, 5)) + seconds(second) - *offset;
}

std::string isoDateTimeText(sys_seconds instant) {
  return dateText(instant) + 'T' + timeText(instant) + 'Z';
}

}  // namespace zelvo::SerialDate
