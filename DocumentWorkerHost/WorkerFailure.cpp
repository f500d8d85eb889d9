#include "DocumentWorkerHost/WorkerFailure.hpp"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <system_error>

#include "DocumentWorkerProtocol/WorkerExitStatus.hpp"
#include "System/ChildProcess.hpp"

namespace zelvo {
namespace {

using Kind = WorkerFailure::Kind;

/// Linux kills with SIGKILL, not SIGXCPU, if the soft and the hard limit of processor time are equal, as the
/// worker sets them: at 45 seconds, counted in ticks. The precise time that it reports afterwards was as low
/// as 41 seconds on a busy virtual machine. A kill for another reason after this much processor time is
/// unlikely: the hardest documents take a few seconds.
constexpr std::chrono::seconds leastCPUTimeOfLimitKill{35};

std::string sentence(Kind kind, int code, const std::string& subject) {
  switch (kind) {
    using enum WorkerFailure::Kind;
    case requestTooLarge:
      return "The document is too large: a request to the worker carries less than 30 MiB.";
    case notFound:
      return subject + " was not found.";
    case notRun:
      return subject + " could not be run: " + std::generic_category().message(code) + ".";
    case timedOut:
      return subject + " did not end in time and was stopped.";
    case responseTooLarge:
      return subject + " wrote more than the largest response and was stopped.";
    case gaveNoResponse:
      return subject +
             " gave no response (status 65): it could not use the request, the response was too "
             "large, or memory ran out.";
    case notConfined:
      return subject + " refused to work because it could not confine itself (status 78).";
    case unknownStatus:
      return subject + " ended with the unknown status " + std::to_string(code) + ".";
    case cpuTimeUsedUp:
      return subject + " used up its processor time.";
    case killedBeforeReading:
      return subject +
             " was killed by a seccomp filter (SIGSYS) before it read the request. The likely cause is an "
             "outer filter, of a service manager or a container, that kills instead of returning an error.";
    case brokenInvariant:
      return subject +
             " was killed by its seccomp filter (SIGSYS): it made a forbidden system call. This is a defect "
             "or an attack; the confinement held.";
    case killed:
      return subject + " was killed (SIGKILL). Memory may have run out.";
    case crashed:
      return subject + " crashed (signal " + std::to_string(code) + ").";
    case unreadableResponse:
      return subject + "'s response cannot be read.";
  }
  return subject + " failed.";
}

/// The first line of standard error, as a loader or a sanitizer writes it. The worker itself writes nothing.
std::string firstLine(const std::string& errorOutput) {
  constexpr std::size_t longest = 200;
  return errorOutput.substr(0, errorOutput.find('\n')).substr(0, longest);
}

WorkerFailure failureOfStatus(const ChildResult& result) {
  switch (result.code) {
    case exitStatus::noResponse:
      return {Kind::gaveNoResponse};
    case exitStatus::notConfined:
      return {Kind::notConfined};
    default:
      return {Kind::unknownStatus, result.code, firstLine(result.errorOutput)};
  }
}

WorkerFailure failureOfSignal(const ChildResult& result) {
  switch (result.code) {
    case SIGXCPU:
      return {Kind::cpuTimeUsedUp};
    case SIGKILL:
      return {result.cpuTime >= leastCPUTimeOfLimitKill ? Kind::cpuTimeUsedUp : Kind::killed};
    case SIGSYS:
      return {result.inputBytesRead == 0U ? Kind::killedBeforeReading : Kind::brokenInvariant};
    default:
      return {Kind::crashed, result.code, firstLine(result.errorOutput)};
  }
}

}  // namespace

std::string WorkerFailure::message(const std::string& subject) const {
  const std::string text = sentence(kind, code, subject);
  return detail.empty() ? text : text + " (" + detail + ")";
}

std::optional<WorkerFailure> WorkerFailure::of(const ChildResult& result, const std::string& workerPath) {
  switch (result.outcome) {
    case ChildOutcome::failed:
      return WorkerFailure{result.code == ENOENT ? Kind::notFound : Kind::notRun, result.code, workerPath};
    case ChildOutcome::timedOut:
      return WorkerFailure{Kind::timedOut};
    case ChildOutcome::outputTooLarge:
      return WorkerFailure{Kind::responseTooLarge};
    case ChildOutcome::killed:
      return failureOfSignal(result);
    case ChildOutcome::exited:
      if (result.code != 0) return failureOfStatus(result);
  }
  return std::nullopt;
}

}  // namespace zelvo
