// The command-line tool: a host for people. Documents are never parsed here, only handed to a confined
// worker or child, and whatever comes back from one is made harmless before a terminal sees it.

#include <algorithm>
#include <exception>
#include <new>
#include <variant>

#include "zelvo/CommandLine.hpp"
#include "zelvo/Console.hpp"
#include "zelvo/CreateCommand.hpp"
#include "zelvo/ExitStatus.hpp"
#include "zelvo/ExtractCommand.hpp"
#include "zelvo/InspectCommand.hpp"
#include "zelvo/ProcessSetup.hpp"
#include "zelvo/ResearchCheckCommand.hpp"
#include "zelvo/ResearchPresentationCommand.hpp"
#include "zelvo/ResearchWorkbookCommand.hpp"
#include "zelvo/ValidateCommand.hpp"
#include "zelvo/WorkerPath.hpp"

namespace zelvo {
namespace {

struct RunCommand {
  const DocumentWorkerHost& host;

  ExitStatus operator()(const InspectArguments& arguments) const { return inspect(host, arguments); }
  ExitStatus operator()(const ExtractArguments& arguments) const { return extract(host, arguments); }
  ExitStatus operator()(const CreateArguments& arguments) const { return create(host, arguments); }
  ExitStatus operator()(const ValidateArguments& arguments) const { return validate(host, arguments); }
  ExitStatus operator()(const ResearchCommand& command) const { return std::visit(*this, command); }
  ExitStatus operator()(const ResearchCheckArguments& arguments) const { return researchCheck(arguments); }
  ExitStatus operator()(const ResearchWorkbookArguments& arguments) const {
    return researchWorkbook(arguments);
  }
  ExitStatus operator()(const ResearchReportArguments& arguments) const { return researchReport(arguments); }
  ExitStatus operator()(const ResearchPresentationArguments& arguments) const {
    return researchPresentation(arguments);
  }
};

ExitStatus end(const Ending& ending) {
  Console::print(ending.output);
  if (!ending.complaint.empty()) Console::complain(ending.complaint);
  return ending.status;
}

ExitStatus run(int count, const char* const* arguments) {
  const auto parsed = parseCommandLine(count, arguments);
  if (const auto* ending = std::get_if<Ending>(&parsed)) return end(*ending);
  const DocumentWorkerHost host(workerBesideTool());
  return std::visit(RunCommand{host}, *std::get_if<Command>(&parsed));
}

ExitStatus runAndFinish(int count, const char* const* arguments) {
  const ExitStatus status = run(count, arguments);
  if (Console::finish()) return status;
  Console::complain("Standard output cannot be written.");
  return std::max(status, ExitStatus::refused);
}

}  // namespace
}  // namespace zelvo

int main(int count, char** arguments) {
  using zelvo::ExitStatus;
  zelvo::setUpProcess();
  try {
    return static_cast<int>(zelvo::runAndFinish(count, arguments));
  } catch (const std::bad_alloc&) {
    zelvo::Console::complain("Memory ran out.");
  } catch (const std::exception& error) {
    zelvo::Console::complain(error.what());
  }
  return static_cast<int>(ExitStatus::workerFailed);
}
