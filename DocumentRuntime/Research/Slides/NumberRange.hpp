#pragma once

#include <string>

#include "DocumentRuntime/Research/PresentationModel/Presentation.hpp"

namespace zelvo {

/// The numbers of a chart: their extremes, and the number formats with which they are shown. Widths are in
/// ems.
class NumberRange {
 public:
  explicit NumberRange(const ResearchPresentation::ResolvedChartBinding& binding);

  double least() const { return least_; }
  double most() const { return most_; }
  /// Whether one end of the value axis is zero: of bars, unless there are values on both sides of zero. The
  /// length of a bar is its value only then.
  bool isPinned() const { return isBar_ && (least_ >= 0 || most_ <= 0); }

  /// The format of the value axis. Office programs choose the distance of the gridlines; the format never
  /// shows two of them as the same number.
  std::string axisFormat() const;
  double axisWidth() const;

  /// The format of the numbers at bars: at least two digits of each, no more decimals than the data has.
  /// Empty if the numbers differ too much for one format.
  std::string valueFormat() const;
  double valueWidth() const;

 private:
  int axisDecimals() const;
  int valueDecimals() const;

  bool isBar_;
  double least_ = 0;
  double most_ = 0;
  double smallest_ = 0;  ///< magnitude above zero
  int decimals_ = 0;     ///< of the number with most
};

}  // namespace zelvo
