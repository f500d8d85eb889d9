// The command-line tool. It never parses a document: it passes documents to confined workers and children,
// and escapes what they return before it is written to a terminal.

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <exception>
#include <fcntl.h>
#include <new>
#include <unistd.h>
#include <variant>

#include "System/SignalCleanup.hpp"
#include "zelvo/Batch/Batch.hpp"
#include "zelvo/CommandLine/CommandLine.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Execution/WorkerExchange.hpp"
#include "zelvo/Output/Console.hpp"

namespace zelvo {
namespace {

void openStandardStreams() {
  struct Stream {
    int number;
    int flags;  // opened in the wrong direction, so that using the stream is still an error
  };
  constexpr std::array<Stream, 3> streams = {
      {{STDIN_FILENO, O_WRONLY}, {STDOUT_FILENO, O_RDONLY}, {STDERR_FILENO, O_RDONLY}}};
  for (const auto [number, flags] : streams) {
    // `open` takes the lowest free number, and all below this one are open.
    if (fcntl(number, F_GETFD) < 0) static_cast<void>(open("/dev/null", flags));
  }
}

/// Establishes what the tool relies on, whatever its parent passed on:
///
/// - The three standard streams are open, so that no file or pipe of the tool gets the number of one. Using a
///   stream that was closed fails.
/// - A write beyond the limit on file sizes fails and does not end the process.
/// - Children can be waited for.
/// - A signal that ends the tool ends its children and removes its temporary files.
void setUpProcess() {
  openStandardStreams();
  // Neither fails for a signal that exists.
  static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
  static_cast<void>(std::signal(SIGCHLD, SIG_DFL));
  SignalCleanup::install();
}

struct RunCommand {
  const Hosts& hosts;

  ExitStatus operator()(const BatchArguments& arguments) const { return batch(hosts, arguments); }
  ExitStatus operator()(const InspectArguments& arguments) const { return inspect(hosts, arguments); }
  ExitStatus operator()(const ExtractArguments& arguments) const { return extract(hosts, arguments); }
  ExitStatus operator()(const CreateArguments& arguments) const { return create(hosts, arguments); }
  ExitStatus operator()(const ValidateArguments& arguments) const { return validate(hosts, arguments); }
  ExitStatus operator()(const CleanArguments& arguments) const { return clean(hosts, arguments); }
  ExitStatus operator()(const ResearchCheckArguments& arguments) const { return researchCheck(arguments); }
  ExitStatus operator()(const ResearchWorkbookArguments& arguments) const {
    return researchWorkbook(arguments);
  }
  ExitStatus operator()(const ResearchReportArguments& arguments) const { return researchReport(arguments); }
  ExitStatus operator()(const ResearchPresentationArguments& arguments) const {
    return researchPresentation(arguments);
  }
  ExitStatus operator()(const DoctorArguments& arguments) const { return doctor(hosts, arguments); }
};

ExitStatus run(int count, const char* const* arguments) {
  const auto parsed = parseCommandLine(count, arguments);
  if (!parsed) return Console::report(parsed.error());
  if (const auto* information = std::get_if<Information>(&*parsed)) {
    Console::print(information->text);
    return ExitStatus::success;
  }
  const auto& [command, hostArguments] = std::get<Invocation>(*parsed);
  setConfinedChildTimeout(std::chrono::seconds(hostArguments.timeoutSeconds));
  const Hosts hosts = findHosts(hostArguments);
  return std::visit(RunCommand{hosts}, command);
}

ExitStatus runAndFinish(int count, const char* const* arguments) {
  const ExitStatus status = run(count, arguments);
  if (Console::finish()) return status;
  Console::printError("Standard output cannot be written.");
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
    zelvo::Console::printError("Out of memory.");
  } catch (const std::exception& error) {
    zelvo::Console::printError(error.what());
  }
  return static_cast<int>(ExitStatus::workerFailed);
}
