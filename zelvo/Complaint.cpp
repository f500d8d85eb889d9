#include "zelvo/Complaint.hpp"

#include "zelvo/Console.hpp"

namespace zelvo {

ExitStatus complain(const Complaint& complaint) {
  Console::complain(complaint.message);
  return complaint.status;
}

}  // namespace zelvo
