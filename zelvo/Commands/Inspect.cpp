#include <algorithm>
#include <optional>
#include <string>
#include <utility>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Commands/WorkbookInput.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"
#include "zelvo/Output/TerminalText.hpp"
#include "zelvo/Output/TextTable.hpp"

namespace zelvo {
namespace {

struct InspectedWorkbook {
  WorkbookInspection inspection;
  std::optional<CleaningRecord> cleaning;
};

Result<InspectedWorkbook> inspected(const Hosts& hosts, const std::string& path,
                                    const CleaningArguments& cleaning) {
  if (Failure failure = checkKeptFile(path, cleaning)) return *std::move(failure);
  auto workbook = readWorkbook(hosts, path, cleaning);  // the request's default operation is to inspect
  if (!workbook) return workbook.error();
  auto response = ask(hosts, *workbook);
  if (!response) return response.error();
  if (Failure failure = keepCleaned(*workbook, cleaning)) return *std::move(failure);
  return InspectedWorkbook{*std::move(response->inspection), std::move(workbook->cleaning)};
}

/// Inspects one file after the other and separates their outputs.
class Inspector {
 public:
  Inspector(const Hosts& hosts, const InspectArguments& arguments)
      : hosts_(hosts), arguments_(arguments), isOneOfSeveral_(arguments.files.size() > 1) {}

  ExitStatus inspect(const std::string& path) {
    const auto workbook = inspected(hosts_, path, arguments_.cleaning);
    if (!workbook) return report(path, workbook.error());
    const auto& [inspection, cleaning] = *workbook;
    if (arguments_.json) {
      Console::printJson(withCleaning(cleaning, toJson(inspection)) + "\n");
    } else {
      printSection(path, describe(inspection, cleaning ? cleaningNotes(*cleaning) : ""));
    }
    return ExitStatus::success;
  }

 private:
  ExitStatus report(const std::string& path, const CommandError& error) {
    // With several files the message alone would not show which one failed.
    if (isOneOfSeveral_ && !arguments_.json)
      printSection(path, indentedLine("Not inspected: " + printable(error.message)));
    return Console::report(error);
  }

  void printSection(const std::string& path, const std::string& text) {
    if (!isFirstSection_) Console::print("\n");
    isFirstSection_ = false;
    Console::print(printable(path) + "\n" + text);
  }

  const Hosts& hosts_;
  const InspectArguments& arguments_;
  bool isOneOfSeveral_;
  bool isFirstSection_ = true;
};

}  // namespace

ExitStatus inspect(const Hosts& hosts, const InspectArguments& arguments) {
  Inspector inspector(hosts, arguments);
  ExitStatus worst = ExitStatus::success;
  for (const std::string& path : arguments.files)
    worst = std::max(worst, inspector.inspect(path));
  return worst;
}

}  // namespace zelvo
