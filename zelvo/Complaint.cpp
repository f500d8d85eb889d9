#include "zelvo/Complaint.hpp"

#include "zelvo/Console.hpp"
#include "zelvo_document_worker/WorkerConfinement.hpp"

namespace zelvo {

Complaint complaintOf(const WorkerFailure& failure, const std::string& subject) {
  using enum WorkerFailure::Kind;
  std::string message = failure.message(subject);
  if (failure.kind == notConfined || failure.kind == killedBeforeReading) {
    const std::string explanation = explainConfinementFailure();
    if (!explanation.empty()) message += " " + explanation;
  }
  return {failure.kind == requestTooLarge ? ExitStatus::refused : ExitStatus::workerFailed, message};
}

ExitStatus complain(const Complaint& complaint) {
  Console::complain(complaint.message);
  return complaint.status;
}

}  // namespace zelvo
