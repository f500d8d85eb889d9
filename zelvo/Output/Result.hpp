#pragma once

#include <string>

#include "DocumentWorkerHost/WorkerFailure.hpp"
#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// Why there is no result: what to say, and with which status to end.
struct Complaint {
  ExitStatus status;
  std::string message;
};

/// Why a worker, or another confined process that is called `subject`, gave no result. The processes that
/// fail in confining themselves do not say why: it is found out and added.
Complaint complaintOf(const WorkerFailure& failure, const std::string& subject = "The worker");

/// Says it on standard error, and gives the status.
ExitStatus complain(const Complaint& complaint);

}  // namespace zelvo
