#include <algorithm>
#include <string>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/RecordText.hpp"
#include "zelvo/Output/TerminalText.hpp"
#include "zelvo/Output/TextTable.hpp"

namespace zelvo {
namespace {

Result<DocumentWorkerResponse> inspected(const DocumentWorkerHost& host, const std::string& path) {
  const auto request = requestAbout(path);  // whose default operation is to inspect
  if (!request) return request.error();
  return ask(host, *request);
}

/// Inspects one file after the other and separates their outputs.
class Inspector {
 public:
  Inspector(const DocumentWorkerHost& host, const InspectArguments& arguments)
      : host_(host), json_(arguments.json), isOneOfSeveral_(arguments.files.size() > 1) {}

  ExitStatus inspect(const std::string& path) {
    const auto response = inspected(host_, path);
    if (!response) return report(path, response.error());
    if (json_) {
      Console::printJson(toJson(*response->inspection) + "\n");
    } else {
      printSection(path, describe(*response->inspection));
    }
    return ExitStatus::success;
  }

 private:
  ExitStatus report(const std::string& path, const CommandError& error) {
    // With several files the message alone would not show which one failed.
    if (isOneOfSeveral_ && !json_)
      printSection(path, indentedLine("Not inspected: " + printable(error.message)));
    return Console::report(error);
  }

  void printSection(const std::string& path, const std::string& text) {
    if (!isFirstSection_) Console::print("\n");
    isFirstSection_ = false;
    Console::print(printable(path) + "\n" + text);
  }

  const DocumentWorkerHost& host_;
  bool json_;
  bool isOneOfSeveral_;
  bool isFirstSection_ = true;
};

}  // namespace

ExitStatus inspect(const DocumentWorkerHost& host, const InspectArguments& arguments) {
  Inspector inspector(host, arguments);
  ExitStatus worst = ExitStatus::success;
  for (const std::string& path : arguments.files)
    worst = std::max(worst, inspector.inspect(path));
  return worst;
}

}  // namespace zelvo
