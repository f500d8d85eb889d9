#include "DocumentRuntime/Cells/DocumentNumberFormat.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "DocumentRuntime/Cells/NumberText.hpp"
#include "Text/ASCII.hpp"
#include "Text/Unicode.hpp"

namespace zelvo::DocumentNumberFormat {
namespace {

/// Maximum number of placeholders after the point.
constexpr std::size_t maximumPlaceholders = 12;

/// Largest magnitude of the power of ten of the last digit of a rendered number. Stops "1e999999" from
/// expanding to a megabyte of zeros.
constexpr std::int64_t maximumPower = 127;

constexpr std::array<std::string_view, 8> currencies = {"$", "€", "£", "kr", "NOK", "USD", "EUR", "GBP"};

constexpr std::array<std::string_view, 12> dateFormats = {
    "m/d/yy",     "d-mmm-yy",   "d-mmm",    "mmm-yy",   "m/d/yy h:mm", "yyyy-mm-dd", "yyyy-mm-dd hh:mm:ss",
    "dd/mm/yyyy", "dd.mm.yyyy", "dd/mm/yy", "dd.mm.yy", "yyyy/mm/dd",
};

constexpr std::array<std::string_view, 7> timeFormats = {
    "h:mm am/pm", "h:mm:ss am/pm", "h:mm", "h:mm:ss", "hh:mm", "hh:mm:ss", "mm:ss",
};

constexpr std::array<std::pair<std::int64_t, std::string_view>, 20> builtinFormats = {{
    {0, "General"},      {1, "0"},           {2, "0.00"},           {3, "#,##0"},     {4, "#,##0.00"},
    {9, "0%"},           {10, "0.00%"},      {14, "m/d/yy"},        {15, "d-mmm-yy"}, {16, "d-mmm"},
    {17, "mmm-yy"},      {18, "h:mm AM/PM"}, {19, "h:mm:ss AM/PM"}, {20, "h:mm"},     {21, "h:mm:ss"},
    {22, "m/d/yy h:mm"}, {45, "mm:ss"},      {46, "[h]:mm:ss"},     {47, "mmss.0"},   {49, "@"},
}};

using ASCII::takePrefix;

bool takeSuffix(std::string_view& rest, std::string_view token) {
  if (!rest.ends_with(token)) return false;
  rest.remove_suffix(token.size());
  return true;
}

/// Removes one currency spelling, as a prefix or else as a suffix, with one separating space.
void takeCurrency(std::string_view& rest, std::string_view spelling, std::string_view currency,
                  Numeric& format) {
  if (takePrefix(rest, spelling)) {
    format.prefix = currency;
    if (takePrefix(rest, " ")) format.prefix += ' ';
  } else if (takeSuffix(rest, spelling)) {
    format.suffix = currency;
    if (takeSuffix(rest, " ")) format.suffix.insert(0, 1, ' ');
  }
}

/// Fast path: true if the code cannot contain a currency symbol.
bool isPlain(std::string_view code) {
  constexpr std::string_view firsts = "0#";
  constexpr std::string_view lasts = "0#%";
  return !code.empty() && firsts.find(code.front()) != std::string_view::npos &&
         lasts.find(code.back()) != std::string_view::npos;
}

void takeCurrencies(std::string_view& rest, Numeric& format) {
  for (const std::string_view currency : currencies) {
    takeCurrency(rest, '"' + std::string(currency) + '"', currency, format);
    takeCurrency(rest, currency, currency, format);
  }
}

/// Drops the last `count` digits and rounds half to even. There must be more digits than `count`.
void roundHalfEven(std::string& digits, std::size_t count) {
  const std::string dropped = digits.substr(digits.size() - count);
  digits.resize(digits.size() - count);
  const std::string half = '5' + std::string(count - 1, '0');
  const bool lastIsOdd = (digits.back() - '0') % 2 == 1;
  if (dropped < half || (dropped == half && !lastIsOdd)) return;

  std::size_t end = digits.size();
  while (end > 0 && digits[end - 1] == '9')
    digits[--end] = '0';
  if (end > 0) {
    ++digits[end - 1];
  } else {
    digits.insert(digits.begin(), '1');
  }
}

}  // namespace

std::string Numeric::render(std::string_view text) const {
  const auto number = NumberText::parts(text);
  if (!number) return std::string(text);
  std::int64_t power = number->exponent - static_cast<std::int64_t>(number->fraction.size());
  if (power < -maximumPower || power > maximumPower) return std::string(text);
  if (percent) power += 2;

  // The number is digits × 10^power; from here on, digits with a point before the last `scale` of them.
  std::string digits(number->integer);
  digits += number->fraction;
  const bool negative = number->negative && digits.find_first_not_of('0') != std::string::npos;
  if (power > 0) digits.append(static_cast<std::size_t>(power), '0');
  auto scale = static_cast<std::size_t>(power < 0 ? -power : 0);
  if (digits.size() <= scale) digits.insert(0, scale + 1 - digits.size(), '0');

  const auto most = static_cast<std::size_t>(maximumFractionDigits);
  const auto least = static_cast<std::size_t>(minimumFractionDigits);
  if (scale > most) {
    roundHalfEven(digits, scale - most);
    scale = most;
  }
  std::string integer = digits.substr(0, digits.size() - scale);
  integer.erase(0, std::min(integer.find_first_not_of('0'), integer.size() - 1));
  if (grouped) integer = ASCII::grouped(std::move(integer));
  std::string fraction = digits.substr(digits.size() - scale);
  while (fraction.size() > least && fraction.back() == '0')
    fraction.pop_back();
  if (fraction.size() < least) fraction.append(least - fraction.size(), '0');

  std::string rendered = prefix;
  if (negative) rendered += '-';
  rendered += integer;
  if (!fraction.empty()) rendered += '.' + fraction;
  if (percent) rendered += '%';
  rendered += suffix;
  return rendered;
}

std::optional<Numeric> numeric(std::string_view code) {
  Numeric format;
  if (!isPlain(code)) takeCurrencies(code, format);

  format.grouped = takePrefix(code, "#,##0");
  if (!format.grouped && !takePrefix(code, "0")) return std::nullopt;
  if (takePrefix(code, ".")) {
    const std::string_view placeholders = code.substr(0, code.find_first_not_of("0#"));
    if (placeholders.empty() || placeholders.size() > maximumPlaceholders) return std::nullopt;
    format.minimumFractionDigits =
        static_cast<int>(std::count(placeholders.begin(), placeholders.end(), '0'));
    format.maximumFractionDigits = static_cast<int>(placeholders.size());
    code.remove_prefix(placeholders.size());
  }
  format.percent = takePrefix(code, "%");
  if (!code.empty()) return std::nullopt;
  if (format.percent && !(format.prefix.empty() && format.suffix.empty())) return std::nullopt;
  return format;
}

std::optional<std::string_view> builtin(std::int64_t id) {
  for (const auto& [builtinId, code] : builtinFormats) {
    if (builtinId == id) return code;
  }
  return std::nullopt;
}

bool isDate(std::string_view code) {
  return std::find(dateFormats.begin(), dateFormats.end(), Unicode::lowercased(code)) != dateFormats.end();
}

bool isTime(std::string_view code) {
  return std::find(timeFormats.begin(), timeFormats.end(), Unicode::lowercased(code)) != timeFormats.end();
}

}  // namespace zelvo::DocumentNumberFormat
