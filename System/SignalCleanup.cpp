#include "System/SignalCleanup.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <mutex>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zelvo::SignalCleanup {
namespace {

/// SIGPIPE ends the tool when the reader of its output goes away.
constexpr std::array<int, 4> handledSignals = {SIGHUP, SIGINT, SIGTERM, SIGPIPE};

bool isInstalled = false;  // written while there is one thread

std::atomic<int> holdingThreads = 0;
std::atomic<bool> isEnding = false;
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free,
              "A signal handler uses them.");
thread_local int holdsOfThisThread = 0;

/// The list is changed under a `Hold` and the lock. The handler reads it once no thread has a `Hold`: then no
/// thread is changing it.
std::mutex listLock;
Record::Entry* firstEntry = nullptr;

sigset_t setOfHandledSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : handledSignals)
    sigaddset(&set, signal);
  return set;
}

[[noreturn]] void waitForTheEnd() {
  while (true)
    pause();
}

void setDefaultAction(int signal) {
  struct sigaction action = {};
  action.sa_handler = SIG_DFL;
  sigaction(signal, &action, nullptr);
}

/// Kills all children before it waits for one. Only calls that are safe in a signal handler.
void cleanUp() {
  for (const Record::Entry* entry = firstEntry; entry != nullptr; entry = entry->next) {
    if (entry->child > 0) kill(entry->child, SIGKILL);
    if (entry->file != nullptr) unlink(entry->file);
  }
  for (const Record::Entry* entry = firstEntry; entry != nullptr; entry = entry->next) {
    while (entry->child > 0 && waitpid(entry->child, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
}

void endBySignal(int signal) {
  if (isEnding.exchange(true)) waitForTheEnd();  // another thread is cleaning up
  while (holdingThreads > 0)
    poll(nullptr, 0, 1);
  cleanUp();
  setDefaultAction(signal);
  static_cast<void>(raise(signal));  // pending until it is unblocked below
  const sigset_t handled = setOfHandledSignals();
  pthread_sigmask(SIG_UNBLOCK, &handled, nullptr);  // the process ends here
  waitForTheEnd();
}

}  // namespace

void install() {
  struct sigaction action = {};
  action.sa_handler = endBySignal;
  action.sa_mask = setOfHandledSignals();
  for (const int signal : handledSignals) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);
  }
  isInstalled = true;
}

void leaveToParent() {
  if (!isInstalled) return;
  for (const int signal : handledSignals) {
    struct sigaction before = {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler == endBySignal) setDefaultAction(signal);
  }
  sigset_t none;
  sigemptyset(&none);
  pthread_sigmask(SIG_SETMASK, &none, nullptr);
}

Hold::Hold() {
  if (!isInstalled) return;
  const sigset_t handled = setOfHandledSignals();
  pthread_sigmask(SIG_BLOCK, &handled, &before_);
  isHeld_ = true;
  if (holdsOfThisThread++ > 0) return;
  // Either the handler sees this thread, or this thread sees that the process is ending.
  ++holdingThreads;
  if (!isEnding) return;
  --holdingThreads;
  waitForTheEnd();
}

void Hold::release() {
  if (!isHeld_) return;
  isHeld_ = false;
  if (--holdsOfThisThread == 0) --holdingThreads;
  pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

void Record::add() {
  if (!isInstalled) return;
  const Hold hold;
  const std::lock_guard lock(listLock);
  entry_.next = firstEntry;
  if (firstEntry != nullptr) firstEntry->previous = &entry_;
  firstEntry = &entry_;
  isListed_ = true;
}

void Record::clear() {
  if (!isListed_) return;
  const Hold hold;
  const std::lock_guard lock(listLock);
  (entry_.previous != nullptr ? entry_.previous->next : firstEntry) = entry_.next;
  if (entry_.next != nullptr) entry_.next->previous = entry_.previous;
  isListed_ = false;
}

}  // namespace zelvo::SignalCleanup
