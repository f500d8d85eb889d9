#include <unistd.h>

#include "zelvo_document_cleaner/CleanerDispatcher.hpp"
#include "zelvo_document_worker/WorkerEntry.hpp"

int main() {
  // Not `exit`: exit handlers would run under confinement.
  _exit(zelvo::runWorkerProcess(zelvo::answerCleaningRequest));
}
