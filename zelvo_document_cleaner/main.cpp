#include <unistd.h>

#include "zelvo_document_cleaner/CleanerDispatcher.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

int main() {
  // Ends at once: what would run at exit would run under confinement.
  _exit(zelvo::runWorkerProcess(zelvo::answerCleaningRequest));
}
