#include "zelvo/InspectCommand.hpp"

#include <algorithm>
#include <string>
#include <variant>

#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/InspectionText.hpp"
#include "zelvo/TerminalText.hpp"
#include "zelvo/WorkerExchange.hpp"

namespace zelvo {
namespace {

/// Inspects one file after the other, and keeps their outputs apart.
class Inspector {
 public:
  Inspector(const DocumentWorkerHost& host, const InspectArguments& arguments)
      : host_(host), json_(arguments.json), isOneOfSeveral_(arguments.files.size() > 1) {}

  ExitStatus inspect(const std::string& path) {
    const auto request = requestAbout(path);  // inspecting is what a request asks for by itself
    if (const auto* complaint = std::get_if<Complaint>(&request)) return complain(path, *complaint);
    const auto answer = ask(host_, *std::get_if<DocumentWorkerRequest>(&request));
    if (const auto* complaint = std::get_if<Complaint>(&answer)) return complain(path, *complaint);
    const WorkbookInspection& inspection = *std::get_if<DocumentWorkerResponse>(&answer)->inspection;
    if (json_) {
      Console::printJson(toJson(inspection) + "\n");
    } else {
      printSection(path, describe(inspection));
    }
    return ExitStatus::success;
  }

 private:
  ExitStatus complain(const std::string& path, const Complaint& complaint) {
    // Among several files the message alone would not say which one it is about.
    if (isOneOfSeveral_ && !json_)
      printSection(path, "  Not inspected: " + printable(complaint.message) + "\n");
    Console::complain(complaint.message);
    return complaint.status;
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
