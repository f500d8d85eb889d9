#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::vector<std::string> table = {EXAMPLE_WORKBOOK, "--sheet", "Prices 価格",
                                        "--range",        "A1:D6",   "--cached-formulas"};

std::vector<std::string> joined(std::vector<std::string> words, const std::vector<std::string>& more) {
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

/// Documents of one table, and the table.
class ValidateCommand : public ::testing::Test {
 protected:
  ValidateCommand() {
    folder.write("table.json", zelvo(joined({"extract", "--json"}, table)).output);
    create(word);
    create(slides);
    create(chart, {"--chart", "0:" + std::to_string(valueColumn)});
  }

  void create(const std::string& path, const std::vector<std::string>& options = {}) {
    const ToolRun run = zelvo(joined(joined({"create", "--title", "t", "-o", path}, table), options));
    ASSERT_EQ(run.status, 0) << run;
  }

  static constexpr int valueColumn = 2;
  TemporaryFolder folder;
  const std::string expected = folder.path("table.json");
  const std::string word = folder.path("a.docx");
  const std::string slides = folder.path("a.pptx");
  const std::string chart = folder.path("chart.pptx");
};

TEST_F(ValidateCommand, SaysWhatIsProvedAndWhatIsNot) {
  struct Row {
    std::string path;
    std::vector<std::string> options;
    std::string format;
    std::string values;
    std::string chart;
  };
  const std::string unexpected = "not proved: no table was expected (--expect)";
  const std::string isNone = "not looked for: a Word document has none";
  const std::string presentation = "PowerPoint presentation";
  const std::vector<Row> rows = {
      {word, {}, "Word document", unexpected, isNone},
      {word, {"--expect", expected, "--chart", "x:y"}, "Word document", "proved", isNone},
      {slides, {"--expect", expected}, presentation, "proved", "proved: there is none"},
      {chart,
       {"--chart", "0:2", "--chart-title", "t"},
       presentation,
       unexpected,
       "proved to agree with its own workbook; not with a table (--expect)"},
      {chart,
       {"--chart", "0:2", "--expect", expected},
       presentation,
       "proved",
       "proved: it shows the columns of the expected table"},
  };
  for (const Row& row : rows) {
    const ToolRun run = zelvo(joined({"validate", row.path}, row.options));
    const std::string findings =
        row.path + "\n  Format         " + row.format + "\n  Structure      proved\n  Source values  " +
        row.values + "\n  Chart          " + row.chart +
        "\n  Appearance     not proved\n  Profile        zelvo-ooxml-profile-1\n  SHA-256        " +
        Digest::sha256(bytesOf(contentOf(row.path))) +
        "\n\n  Warning: Layout has not been rendered or checked in Word/PowerPoint.\n";
    EXPECT_EQ(run.status, 0) << run;
    EXPECT_TRUE(run.output.starts_with(findings)) << run;
    // The expected table brings its own warnings.
    EXPECT_EQ(run.output.size() > findings.size(), row.values == "proved") << run;
  }
}

TEST_F(ValidateCommand, PrintsTheRecordOfStandardInput) {
  for (const auto& [path, options] : {std::pair(word, std::vector<std::string>()),
                                      std::pair(chart, std::vector<std::string>{"--chart", "0:2"})}) {
    const ToolRun run = zelvo(joined({"validate", "-", "--json"}, options), contentOf(path));
    ASSERT_EQ(run.status, 0) << run;
    const auto validation = fromJson<DocumentValidation>(run.output);
    EXPECT_EQ(toJson(validation) + "\n", run.output);
    EXPECT_EQ(validation.outputSHA256, Digest::sha256(bytesOf(contentOf(path))));
  }
}

TEST_F(ValidateCommand, RefusesWithTheMessageAlone) {
  std::string otherValue = contentOf(expected);
  char& lastValue = otherValue[otherValue.rfind(R"("_0":")") + 6];
  lastValue = lastValue == '1' ? '2' : '1';
  const std::string other = folder.write("other.json", otherValue);
  const std::string broken = folder.write("broken.json", "{}");
  const std::string invalid = "The generated document did not pass validation: ";
  struct Row {
    std::vector<std::string> arguments;
    int status;
    std::string message;
  };
  const std::vector<Row> rows = {
      {{chart}, 1, invalid + "unexpected chart"},
      {{slides, "--chart", "0:2"}, 1, invalid + "missing chart or orphaned chart workbook"},
      {{chart, "--chart", "0:3", "--expect", expected},
       1,
       invalid + "chart data differs from the approved columns"},
      {{word, "--expect", other}, 1, invalid + "table cells differ from frozen source values"},
      {{word, "--expect", broken}, 1, R"(The key "sourceName" is missing.)"},
      {{word, "--expect", "absent"}, 1, "The file cannot be read: absent: No such file or directory"},
      {{word, "--expect", "/dev/zero"}, 1, "The file is larger than 40 MiB: /dev/zero"},
      {{chart, "--chart", "0:Bags"}, 2, "Without --expect, --chart takes indexes of columns only: 0:Bags"},
      {{folder.write("none.docx", "no document, but longer than 22 bytes")},
       1,
       "The document archive is invalid: missing ZIP directory"},
  };
  for (const Row& row : rows) {
    const ToolRun run = zelvo(joined({"validate"}, row.arguments));
    EXPECT_EQ(run, (ToolRun{row.status, "", "zelvo: " + row.message + "\n"}));
  }
}

}  // namespace
}  // namespace zelvo::testing
