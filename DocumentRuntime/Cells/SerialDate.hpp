#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace zelvo::RefusalDetail {

/// Details of errors that hosts compare.
inline constexpr const char* date = "Excel date at ";
inline constexpr const char* timeSpan = "time value spans multiple days at ";

}  // namespace zelvo::RefusalDetail

/// Dates and times as workbooks store them: serial day counts, and ISO 8601 texts. All dates are Gregorian,
/// all times without a zone.
namespace zelvo::SerialDate {

/// The display text of a serial: "yyyy-MM-dd" for a whole one, "yyyy-MM-dd HH:mm:ss" for one with a fraction,
/// and "HH:mm:ss" under a time format. In the 1904 system, serials past 9999-12-31 have years of five digits.
///
/// `format` is a code that `DocumentNumberFormat::isDate` or `isTime` accepts; `cellName` is the cell's A1
/// name. Throws `DocumentError` unsupported "Excel date at A1" or "time value spans multiple days at A1".
std::string excelDate(std::string_view raw, std::string_view cellName, std::string_view format,
                      bool uses1904Dates);

/// Whether the text is a calendar date from 0001-01-01 to 9999-12-31 written exactly YYYY-MM-DD.
bool isoDateOnly(std::string_view text);

/// The instant of such a date with a time of day and a zone: YYYY-MM-DDThh:mm:ss, an optional fraction, which
/// is cut off, then "Z" or ±hh:mm. Returns nullopt for any other text; hour 24 and second 60 are not
/// accepted.
std::optional<std::chrono::sys_seconds> parseISODateTime(std::string_view text);

/// The instant as YYYY-MM-DDThh:mm:ssZ.
std::string isoDateTimeText(std::chrono::sys_seconds instant);

}  // namespace zelvo::SerialDate
