#pragma once

#include <string>

#include "zelvo/ExitStatus.hpp"

namespace zelvo {

/// Why there is no result: what to say, and with which status to end.
struct Complaint {
  ExitStatus status;
  std::string message;
};

/// Says it on standard error, and gives the status.
ExitStatus complain(const Complaint& complaint);

}  // namespace zelvo
