#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

using Words = std::vector<std::string>;

const Words table = {EXAMPLE_WORKBOOK, "--sheet", "Prices 価格", "--range", "A1:D6", "--cached-formulas"};

Words joined(Words arguments, const Words& more) {
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
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

  void create(const std::string& path, const Words& options = {}) {
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
  const auto expectFindings = [](const std::string& path, const Words& options, const std::string& format,
                                 const std::string& values, const std::string& shown) {
    const ToolRun run = zelvo(joined({"validate", path}, options));
    const std::string findings =
        path + "\n  Format         " + format + "\n  Structure      proved\n  Source values  " + values +
        "\n  Chart          " + shown +
        "\n  Appearance     not proved\n  Profile        zelvo-ooxml-profile-1" + "\n  SHA-256        " +
        Digest::sha256(bytesOf(contentOf(path))) +
        "\n\n  Warning: Layout has not been rendered or checked in Word/PowerPoint.\n";
    EXPECT_EQ(run.status, 0) << run;
    EXPECT_TRUE(run.output.starts_with(findings)) << run;
    // The expected table brings its own warnings.
    EXPECT_EQ(run.output.size() > findings.size(), values == "proved") << run;
  };
  const std::string unexpected = "not proved: no table was expected (--expect)";
  const std::string isNone = "not looked for: a Word document has none";
  const std::string deck = "PowerPoint presentation";
  const Words expect = {"--expect", expected};
  expectFindings(word, {}, "Word document", unexpected, isNone);
  expectFindings(word, joined(expect, {"--chart", "x:y"}), "Word document", "proved", isNone);
  expectFindings(slides, expect, deck, "proved", "proved: there is none");
  expectFindings(chart, {"--chart", "0:2", "--chart-title", "t"}, deck, unexpected,
                 "proved to agree with its own workbook; not with a table (--expect)");
  expectFindings(chart, joined(expect, {"--chart", "0:2"}), deck, "proved",
                 "proved: it shows the columns of the expected table");
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
  const auto validated = [](const Words& arguments) { return zelvo(joined({"validate"}, arguments)); };
  const auto invalidity = [](const std::string& detail) {
    return failure(1, "The generated document did not pass validation: " + detail);
  };
  EXPECT_EQ(validated({chart}), invalidity("unexpected chart"));
  EXPECT_EQ(validated({slides, "--chart", "0:2"}), invalidity("missing chart or orphaned chart workbook"));
  EXPECT_EQ(validated({chart, "--chart", "0:3", "--expect", expected}),
            invalidity("chart data differs from the approved columns"));
  EXPECT_EQ(validated({word, "--expect", other}), invalidity("table cells differ from frozen source values"));
  EXPECT_EQ(validated({word, "--expect", broken}), failure(1, R"(The key "sourceName" is missing.)"));
  EXPECT_EQ(validated({word, "--expect", "absent"}),
            failure(1, "The file cannot be read: absent: No such file or directory"));
  EXPECT_EQ(validated({word, "--expect", "/dev/zero"}),
            failure(1, "The file is larger than 40 MiB: /dev/zero"));
  const std::string noColumns = "The chart does not name two columns: ";
  EXPECT_EQ(validated({chart, "--chart", characters(500) + ":x", "--expect", expected}),
            failure(1, noColumns + characters(500 - noColumns.size())));
  EXPECT_EQ(validated({chart, "--chart", "0:Bags"}),
            failure(2, "Without --expect, --chart takes indexes of columns only: 0:Bags"));
  EXPECT_EQ(validated({folder.write("none.docx", "no document, but longer than 22 bytes")}),
            failure(1, "The document archive is invalid: missing ZIP directory"));
}

}  // namespace
}  // namespace zelvo::testing
