#include "DocumentRuntime/Research/Slides/NumberRange.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;

/// The most gridlines that office programs draw: about a line for each part of the range.
constexpr double gridlines = 10;
/// Below it numbers have no thousands separator, so that the general format is right for them.
constexpr double thousand = 1000;
/// The general format has up to this many decimals before it writes an exponent.
constexpr int generalDecimals = 4;
constexpr int mostAxisDecimals = 9;
constexpr int mostValueDecimals = 3;
constexpr double smallestTwoDigits = 10;
constexpr double threeDigits = 100;
/// Above it a number is too long for a label.
constexpr double longestValue = 1e9;

constexpr double digitWidth = 0.557;  ///< ems
constexpr double markWidth = 0.334;   ///< ems, of the widest of "-", "," and "."
constexpr double exponentWidth = 2;   ///< ems

int decimalsOf(const std::string& number) {
  const std::size_t exponent = number.find('e');
  if (exponent != std::string::npos) return mostAxisDecimals;
  const std::size_t point = number.find('.');
  if (point == std::string::npos || number.substr(point) == ".0") return 0;
  return static_cast<int>(number.size() - point) - 1;
}

std::string formatOf(int decimals) {
  return decimals == 0 ? "#,##0" : "#,##0." + std::string(static_cast<std::size_t>(decimals), '0');
}

/// The width of the number with its separators.
double widthOf(double magnitude, int decimals) {
  double width = digitWidth + markWidth;
  int digits = 1;
  for (double limit = 10; magnitude >= limit; limit *= 10) {
    width += digitWidth;
    if (++digits % 3 == 1) width += markWidth;
  }
  return decimals == 0 ? width : width + markWidth + decimals * digitWidth;
}

}  // namespace

NumberRange::NumberRange(const Binding& binding)
    : isBar_(binding.chart().kind == ResearchSpreadsheet::Chart::Kind::bar) {
  bool isFirst = true;
  for (const std::int64_t column : binding.chart().valueColumns) {
    for (const auto& row : *binding.cells) {
      const auto& cell = row[static_cast<std::size_t>(column)];
      const double* number = cell.number();
      if (number == nullptr) continue;
      least_ = isFirst ? *number : std::min(least_, *number);
      most_ = isFirst ? *number : std::max(most_, *number);
      const double magnitude = std::abs(*number);
      if (magnitude > 0 && (smallest_ == 0 || magnitude < smallest_)) smallest_ = magnitude;
      decimals_ = std::max(decimals_, decimalsOf(cell.displayText()));
      isFirst = false;
    }
  }
}

int NumberRange::axisDecimals() const {
  const double from = isBar_ ? std::min(least_, 0.0) : least_;
  const double to = isBar_ ? std::max(most_, 0.0) : most_;
  double step = (to - from) / gridlines;
  int decimals = 0;
  while (step > 0 && step < 1 && decimals < mostAxisDecimals) {
    step *= 10;
    ++decimals;
  }
  return decimals;
}

std::string NumberRange::axisFormat() const {
  const int decimals = axisDecimals();
  return decimals > 0 && std::max(-least_, most_) < thousand ? "General" : formatOf(decimals);
}

double NumberRange::axisWidth() const {
  const int decimals = axisDecimals();
  // The axis may end at a number with one more digit.
  const double width = widthOf(std::max(-least_, most_) * 2, std::min(decimals, generalDecimals));
  return decimals > generalDecimals ? width + exponentWidth : width;
}

int NumberRange::valueDecimals() const {
  double smallest = smallest_;
  int decimals = 0;
  while (decimals < std::min(decimals_, mostValueDecimals) && smallest < threeDigits) {
    smallest *= 10;
    ++decimals;
  }
  return decimals;
}

std::string NumberRange::valueFormat() const {
  const int decimals = valueDecimals();
  double smallest = smallest_;
  for (int i = 0; i < decimals; ++i)
    smallest *= 10;
  const bool showsAll = decimals == decimals_ || smallest >= smallestTwoDigits;
  return showsAll && std::max(-least_, most_) < longestValue ? formatOf(decimals) : std::string();
}

double NumberRange::valueWidth() const {
  return widthOf(std::max(-least_, most_), valueDecimals());
}

}  // namespace zelvo
