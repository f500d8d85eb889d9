#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "DocumentRuntime/Records/ByteBuffer.hpp"
#include "Text/Digest.hpp"
#include "ToolRunner.hpp"

namespace zelvo::testing {
namespace {

const std::string points =
    R"({"title":"T","slides":[{"sources":[],"title":"A","body":["a"]},{"title":"B","body":["b"],)"
    R"("sources":["http://h/1"]},{"title":"C","body":["c"],"sources":[]}],"report":"R"})";
const std::string data =
    R"({"report":"R","columns":[{"name":"K","kind":"text"},{"name":"V","kind":"number"}],)"
    R"("rows":[{"cells":["x",0.5],"sources":["http://h/1"]}],)"
    R"("charts":[{"title":"D","kind":"bar","categoryColumn":0,"valueColumns":[1]}]})";
const std::string collection = R"([{"id":"d","content":)" + data + R"(},{"id":"e","content":)" + data + "}]";

/// The deck with a chart on its last slide.
std::string withChart(const std::string& binding) {
  return replaced(points, R"("title":"C")", binding + R"(,"title":"C")");
}
const std::string shared = withChart(R"("chartIndex":0)");
const std::string referring = withChart(R"("chartReference":{"datasetID":"d","chartIndex":0})");

struct ResearchPresentationCommand : ::testing::Test {
  TemporaryFolder folder;
  std::string deck = folder.write("deck.PPTX", "old");
  std::string withDataset = "--dataset " + folder.write("dataset.json", data);
  std::string withDatasets = "--datasets " + folder.write("datasets.json", collection);

  static ToolRun present(const std::string& options, const std::string& input) {
    return zelvo(words("research presentation - " + options), input);
  }

  /// Draws a deck into a file and, again, on standard output, which must give the same.
  void expectDrawn(const std::string& options, const std::string& input, bool hasChart) const {
    const ToolRun drawn = present(options + " -o " + deck, input);
    const std::string document = contentOf(deck);
    const std::string facts =
        std::to_string(document.size()) + " bytes\n  SHA-256  " + Digest::sha256(bytesOf(document));
    EXPECT_EQ(drawn,
              (ToolRun{0, deck + "\n  Format   PowerPoint presentation\n  Size     " + facts + "\n", ""}));
    EXPECT_EQ(document.find("ppt/charts/chart1.xml") != std::string::npos, hasChart);
    EXPECT_EQ(present(options + " -o -", input), (ToolRun{0, document, ""}));
  }
};

TEST_F(ResearchPresentationCommand, PrintsTheCanonicalDeck) {
  const std::string canonical =
      R"({"report":"R","slides":[{"body":["a"],"sources":[],"title":"A"},{"body":["b"],"sources":["http://h/1"],)"
      R"("title":"B"},{"body":["c"],"sources":[],"title":"C"}],"title":"T"})";
  EXPECT_EQ(present("--source http://h/1", points), (ToolRun{0, canonical + "\n", ""}));
  // What is printed is a deck again, with the host's data, which was attached.
  const ToolRun attached = present(withDatasets, referring);
  EXPECT_TRUE(attached.output.starts_with(R"({"datasets":[{"content":{"charts":[)")) << attached;
  EXPECT_EQ(present(withDatasets, attached.output), attached);
}

TEST_F(ResearchPresentationCommand, DrawsADeckWithTheHostsData) {
  expectDrawn("", points, false);
  expectDrawn(withDataset, shared, true);
  expectDrawn(withDatasets, referring, true);
  expectDrawn(withDatasets + " --allow-dataset e --allow-dataset d", referring, true);
}

TEST_F(ResearchPresentationCommand, LeavesNothingBehindWhenItFails) {
  const auto refused = [&](const std::string& options, const std::string& input, int status,
                           const std::string& message) {
    EXPECT_EQ(present(options + " -o " + deck, input), failure(status, message));
  };
  const std::string invalid = "The generated document did not pass validation: ";
  refused(withDatasets + " --allow-dataset e", referring, 1,
          invalid + "The presentation references a dataset outside its declared result scope.");
  refused("--no-sources", points, 1, invalid + "Slide sources must be returned research URLs.");
  const std::string one = folder.path("dataset.json");
  refused("--datasets " + one, points, 1, one + ": Expected an array, found an object.");
  refused(withDataset + " --allow-dataset d", shared, 2,
          "--allow-dataset requires --datasets (see zelvo --help)");
  refused(withDataset + " " + withDatasets, shared, 2, "--dataset excludes --datasets (see zelvo --help)");
  EXPECT_EQ(contentOf(deck), "old");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path("")), {}), 3);
  for (const char* option : {"--dataset", "--datasets", "--scope"})
    EXPECT_EQ(zelvo({"research", "presentation", "-", option, ""}, points),
              failure(2, std::string(option) + ": The file's name is empty (see zelvo --help)"));
  EXPECT_EQ(onTerminal("research presentation - -o -"),
            failure(2, "A document is not written to a terminal."));
}

}  // namespace
}  // namespace zelvo::testing
