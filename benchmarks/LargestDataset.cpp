#include "benchmarks/LargestDataset.hpp"

#include <cstddef>
#include <string>
#include <utility>

namespace zelvo::benchmarks {
namespace {

using Cell = ResearchSpreadsheet::Cell;
using Kind = ResearchSpreadsheet::Column::Kind;

constexpr std::int64_t rowCount = 500;
constexpr std::size_t sourcesPerRow = 8;
constexpr std::size_t sourceLength = 300;
constexpr std::size_t noteLength = 80;
constexpr std::size_t reportLength = 60'000;
constexpr std::int64_t firstCalculated = 10;  ///< columns from here on are calculated

/// `start`, followed by one repeated sentence.
std::string filled(std::string start, std::size_t length) {
  constexpr std::string_view sentence = " Prices & volumes as the registers of <2024> have them.";
  while (start.size() < length)
    start += sentence[start.size() % sentence.size()];
  return start;
}

std::string twoDigits(std::int64_t number) {
  return {static_cast<char>('0' + number / 10), static_cast<char>('0' + number % 10)};
}

ResearchSpreadsheet::Row rowAt(std::int64_t row) {
  ResearchSpreadsheet::Row made;
  made.cells.emplace_back("Observation " + std::to_string(row + 1));
  made.cells.emplace_back("20" + twoDigits(row % 30) + '-' + twoDigits(row % 12 + 1) + '-' +
                          twoDigits(row % 28 + 1));
  made.cells.emplace_back(filled("Note " + std::to_string(row), noteLength));
  made.cells.emplace_back(filled("Region " + std::to_string(row % 17), noteLength / 2));
  for (std::int64_t column = 4; column < firstCalculated; ++column)
    made.cells.emplace_back(static_cast<double>(row * column + 1) * 1.0625 +
                            1 / static_cast<double>(row + 3));
  made.cells.resize(made.cells.size() + 2);
  for (std::size_t i = 0; i < sourcesPerRow; ++i) {
    std::string url = "https://registers.example.org/" + std::to_string(row) + "/" + std::to_string(i) + "?";
    made.sources.push_back(url + std::string(sourceLength - url.size(), 'q'));
  }
  return made;
}

Formula cellAt(std::int64_t row, std::int64_t column) {
  return {.op = Formula::Operation::cell, .row = row, .column = column};
}

/// A difference, and the average of a row.
void addCalculations(std::vector<Calculation>& calculations, std::int64_t row) {
  calculations.push_back({row,
                          firstCalculated,
                          {.op = Formula::Operation::subtract,
                           .arguments = std::vector<Formula>{cellAt(row, 4), cellAt(row, 5)}}});
  Formula range = cellAt(row, 4);
  range.op = Formula::Operation::range;
  range.endRow = row;
  range.endColumn = firstCalculated - 1;
  calculations.push_back({row,
                          firstCalculated + 1,
                          {.op = Formula::Operation::average, .arguments = std::vector<Formula>{range}}});
}

}  // namespace

ResearchSpreadsheet largestDataset() {
  ResearchSpreadsheet dataset;
  for (std::size_t i = 0; i < reportLength / 600; ++i)
    dataset.report += filled("Paragraph " + std::to_string(i), 599) + '\n';
  dataset.columns = {{"Observation", Kind::text, {}},
                     {"Closed on", Kind::date, {}},
                     {"Note", Kind::text, {}},
                     {"Region", Kind::text, {}}};
  for (int i = 4; i < 12; ++i)
    dataset.columns.push_back({"Measure " + std::to_string(i), Kind::number, "EUR"});
  dataset.calculations.emplace();
  for (std::int64_t row = 0; row < rowCount; ++row) {
    dataset.rows.push_back(rowAt(row));
    addCalculations(*dataset.calculations, row);
  }
  using Chart = ResearchSpreadsheet::Chart;
  dataset.charts = {Chart{"First measures", Chart::Kind::line, 0, {4, 5, 6, 7}},
                    Chart{"Second measures", Chart::Kind::bar, 0, {8, 9, 10, 11}},
                    Chart{"Calculated", Chart::Kind::line, 0, {10, 11, 4, 5}},
                    Chart{"Both ends", Chart::Kind::bar, 0, {4, 11, 6, 9}}};
  return dataset;
}

}  // namespace zelvo::benchmarks
