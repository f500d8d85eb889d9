#include "DocumentRuntime/Research/Slides/Chart.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Charts/ChartWorkbook.hpp"
#include "DocumentRuntime/Research/Slides/Text.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;

/// The width for all category labels, their default size in office programs, and the size for labels of many
/// lines, in points.
constexpr double axisWidth = 780;
constexpr int labelSize = 10;
constexpr int smallLabelSize = 7;

bool showsNegativeValues(const Binding& binding) {
  return std::ranges::any_of(binding.chart().valueColumns, [&](std::int64_t column) {
    return std::ranges::any_of(*binding.cells, [&](const auto& row) {
      const double* number = row[static_cast<std::size_t>(column)].number();
      return number != nullptr && *number < 0;
    });
  });
}

/// The lines of the longest label at the usual size.
double labelLines(const Binding& binding) {
  const double widthEach = axisWidth / static_cast<double>(binding.cells->size());
  double most = 0;
  for (const auto& row : *binding.cells) {
    const std::string label = row[static_cast<std::size_t>(binding.chart().categoryColumn)].displayText();
    most = std::max(most, SlideText::lines(ResearchChartAuthor::cleaned(label), widthEach / labelSize));
  }
  return most;
}

/// The font size of wrapped labels; 0 if all labels fit side by side.
int wrappedLabelSize(const Binding& binding) {
  const double lines = labelLines(binding);
  if (lines <= 1) return 0;
  return lines <= 2 ? labelSize : smallLabelSize;
}

}  // namespace

std::string slideChartXML(const Binding& binding) {
  const ResearchChartAuthor::Looks looks{
      .labelsBelow = showsNegativeValues(binding),
      .straightLines = binding.chart().kind == ResearchSpreadsheet::Chart::Kind::line,
      .labelSize = wrappedLabelSize(binding),
  };
  return ResearchChartAuthor::xml(*binding.dataset, *binding.cells, binding.chart(), /*embedded=*/true,
                                  ResearchChartWorkbook::columnMap(binding.chart()), /*zeroBaseline=*/true,
                                  looks);
}

}  // namespace zelvo
