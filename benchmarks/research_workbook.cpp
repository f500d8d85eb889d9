// research_workbook RUNS FOLDER: writes the workbook of the largest dataset RUNS times in each of three ways,
// alternately, within one process, and prints a line for each: name, CPU seconds, bytes of the package.
//
//   zelvo          checks the dataset, computes, lays out and writes; does not read back
//   deflated       the same, and then compresses the package, which zelvo itself only stores
//   libxlsxwriter  another writer of spreadsheets: the same cells, formulas with results, formats, sizes,
//                  table and charts; it is handed results and layout, and always compresses

#include <charconv>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>
#include <xlsxwriter.h>

#include <zlib.h>

#include "DocumentRuntime/PackageIO/BoundedZIP.hpp"
#include "DocumentRuntime/Research/Charts/ChartAuthor.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"
#include "benchmarks/LargestDataset.hpp"

namespace {

using zelvo::ResearchSheet;
using zelvo::ResearchSpreadsheet;
using zelvo::ResearchWorkbookContent;
using ColumnKind = ResearchSpreadsheet::Column::Kind;

constexpr const char* title = "The largest workbook";

zelvo::ByteBuffer written(const ResearchSpreadsheet& dataset) {
  dataset.validate(false, {}, {});
  return zelvo::BoundedZIP::write(
      zelvo::researchWorkbookPackage(ResearchWorkbookContent::of(title, dataset, {}, {})));
}

std::size_t deflated(const zelvo::ByteBuffer& package) {
  uLongf size = compressBound(package.size());
  std::vector<Bytef> bytes(size);
  compress(bytes.data(), &size, package.view().data(), package.size());
  return size;
}

void expect(lxw_error error) {
  if (error != LXW_NO_ERROR) throw std::runtime_error(lxw_strerror(error));
}

class OtherWriter {
 public:
  OtherWriter(const ResearchWorkbookContent& content, const std::string& path)
      : content_(content), book_(workbook_new(path.c_str())) {
    text_ = format(false);
    heading_ = workbook_add_format(book_);
    format_set_bold(heading_);
    format_set_font_color(heading_, LXW_COLOR_WHITE);
    format_set_bg_color(heading_, 0x334E68);
    format_set_align(heading_, LXW_ALIGN_VERTICAL_CENTER);
    format_set_text_wrap(heading_);
    number_ = format(true);
    format_set_num_format(number_, "#,##0.00");
    date_ = format(true);
    format_set_num_format(date_, "yyyy-mm-dd");
  }

  void write() {
    for (const ResearchSheet& sheet : content_.sheets)
      writeSheet(sheet, workbook_add_worksheet(book_, std::string(sheet.name).c_str()));
    expect(workbook_close(book_));
  }

 private:
  lxw_format* format(bool ofValues) {
    lxw_format* format = workbook_add_format(book_);
    format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
    if (!ofValues) format_set_text_wrap(format);
    return format;
  }

  void writeSheet(const ResearchSheet& sheet, lxw_worksheet* to) {
    const bool data = sheet.kind == ResearchSheet::Kind::data;
    worksheet_gridlines(to, LXW_HIDE_ALL_GRIDLINES);
    if (data) worksheet_freeze_panes(to, 1, 0);
    const auto width = static_cast<lxw_col_t>(sheet.rows.front().size());
    for (lxw_col_t column = 0; column < width; ++column)
      expect(worksheet_set_column(to, column, column, data ? dataWidth(column) : 112, nullptr));
    for (lxw_row_t row = 0; row < sheet.rows.size(); ++row) {
      const auto& cells = sheet.rows[row];
      const std::size_t lines = cells.front().displayText().size() / 100;
      const double height = row == 0 ? 32 : data ? 38 : 24 + 16 * static_cast<double>(lines);
      expect(worksheet_set_row(to, row, height, nullptr));
      for (lxw_col_t column = 0; column < width; ++column)
        writeCell(to, row, column, cells[column], data);
    }
    if (data) addTable(sheet, to);
    if (sheet.kind == ResearchSheet::Kind::overview) addCharts(to);
  }

  double dataWidth(std::size_t column) const {
    const auto& columns = content_.dataset->columns;
    return column == columns.size() ? 48 : columns[column].kind == ColumnKind::number ? 22 : 28;
  }

  void writeCell(lxw_worksheet* to, lxw_row_t row, lxw_col_t column, const ResearchSpreadsheet::Cell& cell,
                 bool data) {
    const auto& columns = content_.dataset->columns;
    const auto calculation = content_.calculations.find({column + 1, std::int64_t{row} + 1});
    if (data && calculation != content_.calculations.end()) {
      expect(worksheet_write_formula_num(to, row, column, ("=" + calculation->second.formula).c_str(),
                                         number_, calculation->second.value.value()));
    } else if (const double* number = cell.number()) {
      expect(worksheet_write_number(to, row, column, *number, number_));
    } else if (data && row > 0 && column < columns.size() && columns[column].kind == ColumnKind::date) {
      lxw_datetime date = dateOf(*cell.text());
      expect(worksheet_write_datetime(to, row, column, &date, date_));
    } else {
      expect(worksheet_write_string(to, row, column, cell.text()->c_str(), row == 0 ? heading_ : text_));
    }
  }

  static lxw_datetime dateOf(const std::string& text) {
    lxw_datetime date{};
    std::from_chars(text.data(), text.data() + 4, date.year);
    std::from_chars(text.data() + 5, text.data() + 7, date.month);
    std::from_chars(text.data() + 8, text.data() + 10, date.day);
    return date;
  }

  void addTable(const ResearchSheet& sheet, lxw_worksheet* to) {
    std::vector<std::string> names;
    for (const auto& cell : sheet.rows.front())
      names.push_back(cell.displayText());
    std::vector<lxw_table_column> columns(names.size());
    std::vector<lxw_table_column*> listed;
    for (std::size_t i = 0; i < names.size(); ++i) {
      columns[i].header = names[i].data();
      columns[i].header_format = heading_;
      listed.push_back(&columns[i]);
    }
    listed.push_back(nullptr);
    std::string name = "ResearchData";
    lxw_table_options options{};
    options.name = name.data();
    options.columns = listed.data();
    options.style_type = LXW_TABLE_STYLE_TYPE_MEDIUM;
    options.style_type_number = 2;
    expect(worksheet_add_table(to, 0, 0, lastRow(), static_cast<lxw_col_t>(names.size() - 1), &options));
  }

  void addCharts(lxw_worksheet* to) {
    lxw_row_t row = 3;
    for (const auto& planned : content_.dataset->charts) {
      const bool line = planned.kind == ResearchSpreadsheet::Chart::Kind::line;
      lxw_chart* chart = workbook_add_chart(book_, line ? LXW_CHART_LINE : LXW_CHART_COLUMN);
      for (const std::int64_t value : planned.valueColumns) {
        lxw_chart_series* series = chart_add_series(chart, nullptr, nullptr);
        const auto first = static_cast<lxw_col_t>(planned.categoryColumn);
        const auto column = static_cast<lxw_col_t>(value);
        chart_series_set_categories(series, "Data", 1, first, lastRow(), first);
        chart_series_set_values(series, "Data", 1, column, lastRow(), column);
        chart_series_set_name(
            series, zelvo::ResearchChartAuthor::seriesName(content_.dataset->columns[column]).c_str());
      }
      chart_title_set_name(chart, planned.title.c_str());
      chart_legend_set_position(chart, LXW_CHART_LEGEND_BOTTOM);
      lxw_chart_options size{};
      size.x_scale = 880.0 / 480;
      size.y_scale = 400.0 / 288;
      expect(worksheet_insert_chart_opt(to, row, 0, chart, &size));
      row += 22;
    }
  }

  lxw_row_t lastRow() const { return static_cast<lxw_row_t>(content_.dataset->rows.size()); }

  const ResearchWorkbookContent& content_;
  lxw_workbook* book_;  ///< closing it frees it and its formats
  lxw_format* text_;
  lxw_format* heading_;
  lxw_format* number_;
  lxw_format* date_;
};

template <typename Work>
void measure(const char* name, const Work& work) {
  const std::clock_t start = std::clock();
  const std::size_t bytes = work();
  const std::clock_t end = std::clock();
  std::cout << name << ' ' << static_cast<double>(end - start) / CLOCKS_PER_SEC << ' ' << bytes << '\n';
}

void measureAll(int runs, const std::string& path) {
  const ResearchSpreadsheet dataset = zelvo::benchmarks::largestDataset();
  const auto content = ResearchWorkbookContent::of(title, dataset, {}, {});
  for (int run = 0; run < runs; ++run) {
    measure("zelvo", [&] { return written(dataset).size(); });
    measure("deflated", [&] { return deflated(written(dataset)); });
    measure("libxlsxwriter", [&] {
      OtherWriter(content, path).write();
      return std::filesystem::file_size(path);
    });
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: research_workbook RUNS FOLDER\n";
    return 2;
  }
  try {
    measureAll(static_cast<int>(std::strtol(argv[1], nullptr, 10)),
               std::string(argv[2]) + "/libxlsxwriter.xlsx");
  } catch (const std::exception& error) {
    std::cerr << "research_workbook: " << error.what() << '\n';
    return 1;
  }
  return 0;
}
