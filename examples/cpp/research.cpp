// The research library: a dataset becomes a workbook, a deck with its datasets a presentation. What models
// write is decoded and checked first; a host that does not trust it runs this in a confined process.
//
//   research DATASET.json OUT.xlsx DECK.json DATASETS.json OUT.pptx

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "DocumentRuntime/Research/Dataset/Spreadsheet.hpp"
#include "DocumentRuntime/Research/PresentationModel/HostDatasets.hpp"
#include "DocumentRuntime/Research/PresentationModel/RendererVersion.hpp"
#include "DocumentRuntime/Research/Slides/Renderer.hpp"
#include "DocumentRuntime/Research/Workbook/DatasetWorkbook.hpp"

namespace {

std::string read(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void write(const char* path, const zelvo::ByteBuffer& document) {
  std::ofstream(path, std::ios::binary) << document.text();
  std::cout << path << ": " << document.size() << " bytes\n";
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 6) return 2;
  const zelvo::AllowedSources anySource;  // a list would name the URLs that may be cited
  const std::optional<zelvo::ResearchSourceScope> noScope;
  try {
    const auto dataset = zelvo::ResearchSpreadsheet::decode(read(arguments[1]), false, anySource, noScope);
    write(arguments[2], zelvo::ResearchWorkbook::make("Research", dataset, anySource, noScope));

    auto datasets = zelvo::hostDatasetsFromJson(read(arguments[4]));
    std::vector<std::string> allowed;
    for (const auto& given : datasets)
      allowed.push_back(given.id);
    const auto deck = zelvo::ResearchPresentation::decode(read(arguments[3]), anySource, std::move(datasets),
                                                          allowed, noScope);
    write(arguments[5], zelvo::renderPresentation(deck, zelvo::PresentationRendererVersion::newest, noScope));
  } catch (const std::exception& refusal) {
    std::cerr << refusal.what() << "\n";
    return 1;
  }
}
