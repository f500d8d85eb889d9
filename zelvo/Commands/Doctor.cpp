#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>
#include <variant>

#include "DocumentRuntime/Coding/DecodingError.hpp"
#include "DocumentRuntime/Coding/RecordCoding.hpp"
#include "Sandbox/ConfinedRun.hpp"
#include "zelvo/Commands/Commands.hpp"
#include "zelvo/Execution/ConfinedChild.hpp"
#include "zelvo/Execution/InputFile.hpp"
#include "zelvo/Output/Console.hpp"
#include "zelvo/Output/TerminalText.hpp"

namespace zelvo {
namespace {

constexpr std::size_t maximumRequestMebibytes = DocumentWorkerWire::maximumMessageBytes >> 20U;

/// The source name of the requests that try worker and cleaner. Their document is empty.
constexpr const char* trialName = "doctor";

CommandError malformed(const std::string& reason) {
  return {ExitStatus::refused, "The request cannot be used: " + reason};
}

Result<std::string> describeWorkerRequest(JsonValue root) {
  DocumentWorkerRequest request;
  decode(root, request);
  const std::string kind = "a request to the worker, " + std::string(rawValue(request.operation));
  std::string missing;
  for (const std::string_view key : missingKeys(request))
    missing += (missing.empty() ? "" : ", ") + std::string(key);
  if (!missing.empty()) return malformed("It is " + kind + ", and lacks these keys: " + missing + ".");
  return kind;
}

Result<std::string> describeCleanerRequest(JsonValue root) {
  DocumentCleanerRequest request;
  decode(root, request);
  if (request.version != DocumentCleanerWire::version)
    return malformed("version: Expected " + std::to_string(DocumentCleanerWire::version) + ".");
  return std::string("a request to the cleaner");
}

/// What kind of request it is.
Result<std::string> describeRequest(const ByteBuffer& text) {
  try {
    const JsonDocument document{std::string(text.text())};
    const JsonValue root = document.root();
    if (root.object().optional("operation")) return describeWorkerRequest(root);
    if (root.object().optional("version")) return describeCleanerRequest(root);
  } catch (const DecodingError& error) {
    return malformed(error.what());
  }
  return malformed(
      R"(The key "operation" of a request to the worker is missing, and "version" of one to the cleaner.)");
}

ExitStatus checkRequest(const std::string& path) {
  const auto file = readWholeFile(path, maximumRequestMebibytes);
  if (!file) return Console::report(file.error());
  const auto kind = runConfinedChild([&] { return describeRequest(*file); });
  if (!kind) return Console::report(kind.error());
  Console::print("The request is well formed: " + printable(*kind) + ".\n");
  return ExitStatus::success;
}

/// Prints the result of a check.
ExitStatus conclude(const std::string& name, const std::string& success, const std::string& failure) {
  Console::print(name + (failure.empty() ? success : "fails") + "\n");
  return failure.empty() ? ExitStatus::success
                         : Console::report({.status = ExitStatus::workerFailed, .message = failure});
}

/// Empty if the reply is a refusal. Why a process could not confine itself is checked before.
template <typename Response>
std::string failureOf(const std::variant<Response, WorkerFailure>& reply, const std::string& subject) {
  if (const auto* failure = std::get_if<WorkerFailure>(&reply)) return failure->message(subject);
  if (std::get<Response>(reply).error) return {};
  return subject + " did not refuse an empty document.";
}

ExitStatus checkMachine(const Hosts& hosts) {
  Console::print("Executables  " + printable(hosts.folder) + "\n");
  const ExitStatus confinement = conclude("Confinement  ", "in force", explainConfinementFailure());
  const auto worker = hosts.worker.send({.sourceName = trialName});
  const ExitStatus workerAnswers = conclude("Worker       ", "answers", failureOf(worker, "The worker"));
  const auto cleaner = hosts.cleaner.send({.sourceName = trialName});
  const ExitStatus cleanerAnswers = conclude("Cleaner      ", "answers", failureOf(cleaner, "The cleaner"));
  return std::max({confinement, workerAnswers, cleanerAnswers});
}

}  // namespace

ExitStatus doctor(const Hosts& hosts, const DoctorArguments& arguments) {
  return arguments.request.empty() ? checkMachine(hosts) : checkRequest(arguments.request);
}

}  // namespace zelvo
