#include "DocumentRuntime/Research/SlideChart.hpp"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "DocumentRuntime/Research/ResearchChartAuthor.hpp"
#include "DocumentRuntime/Research/ResearchChartWorkbook.hpp"
#include "DocumentRuntime/Research/SlideText.hpp"

namespace zelvo {
namespace {

using Binding = ResearchPresentation::ResolvedChartBinding;

/// The room for all category labels, the size that office programs give them, and the one for labels of many
/// lines, in points.
constexpr double axisWidth = 780;
constexpr int labelSize = 10;
constexpr int smallLabelSize = 7;
constexpr int hundredthsPerPoint = 100;

/// Without a word of it office programs bend lines, past values that nobody found.
constexpr std::string_view straightLine = R"(<c:smooth val="0"/>)";
constexpr std::string_view labelsAtAxis = R"(<c:tickLblPos val="nextTo"/><c:crossAx val="200"/>)";
constexpr std::string_view labelsBelow = R"(<c:tickLblPos val="low"/>)";

bool showsNegativeValues(const Binding& binding) {
  return std::ranges::any_of(binding.chart().valueColumns, [&](std::int64_t column) {
    return std::ranges::any_of(binding.cells, [&](const auto& row) {
      const double* number = row[static_cast<std::size_t>(column)].number();
      return number != nullptr && *number < 0;
    });
  });
}

/// The lines that the longest label takes at the usual size.
double labelLines(const Binding& binding) {
  const double roomEach = axisWidth / static_cast<double>(binding.cells.size());
  double most = 0;
  for (const auto& row : binding.cells) {
    const std::string label = row[static_cast<std::size_t>(binding.chart().categoryColumn)].displayText();
    most = std::max(most, SlideText::lines(ResearchChartAuthor::cleaned(label), roomEach / labelSize));
  }
  return most;
}

/// Has labels wrapped, not turned.
std::string wrappedLabels(int size) {
  return R"(<c:txPr><a:bodyPr rot="0" vert="horz"/><a:lstStyle/><a:p><a:pPr><a:defRPr sz=")" +
         std::to_string(size * hundredthsPerPoint) +
         R"("/></a:pPr><a:endParaRPr lang="en-US"/></a:p></c:txPr>)";
}

/// Texts are escaped, so that an element is found nowhere else.
void insertBeforeEach(std::string& xml, std::string_view element, std::string_view text) {
  for (std::size_t at = 0; (at = xml.find(element, at)) != std::string::npos;
       at += text.size() + element.size())
    xml.insert(at, text);
}

}  // namespace

std::string slideChartXML(const Binding& binding) {
  std::string xml =
      ResearchChartAuthor::xml(binding.dataset, binding.cells, binding.chart(), /*embedded=*/true,
                               ResearchChartWorkbook::columnMap(binding.chart()), /*zeroBaseline=*/true);
  if (binding.chart().kind == ResearchSpreadsheet::Chart::Kind::line)
    insertBeforeEach(xml, "</c:ser>", straightLine);
  // Found in the category axis alone.
  const std::size_t axis = xml.find(labelsAtAxis);
  if (showsNegativeValues(binding)) {
    constexpr std::size_t replaced = labelsAtAxis.find("<c:crossAx");
    xml.replace(axis, replaced, labelsBelow);
  }
  const double lines = labelLines(binding);
  if (lines > 1) {
    const int size = lines > 2 ? smallLabelSize : labelSize;
    xml.insert(xml.find("<c:crossAx", axis), wrappedLabels(size));
  }
  return xml;
}

}  // namespace zelvo
