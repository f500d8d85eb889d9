#pragma once

#include <csignal>
#include <sys/types.h>

/// Kills the children and removes the temporary files of this process when a signal ends it.
///
/// Nothing here has an effect before `install` is called, so that an application keeps its own signal
/// handling.
namespace zelvo::SignalCleanup {

/// Installs handlers of SIGHUP, SIGINT, SIGTERM and SIGPIPE that kill the recorded children, wait for them,
/// unlink the recorded files, and then end the process by the default action. Signals that are ignored stay
/// ignored. Called once, while the process has one thread.
void install();

/// In a forked child: restores the default action of the handled signals, and unblocks all signals. The
/// parent cleans up what it has recorded.
void leaveToParent();

/// Blocks the signals while the records do not match the state: between starting a child and its `Record`, or
/// around the wait after which its process ID may be reused. On other threads the handler waits until no
/// thread has a `Hold`, so keep it short.
class Hold {
 public:
  Hold();
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  ~Hold() { release(); }

  void release();

 private:
  bool isHeld_ = false;
  sigset_t before_ = {};
};

/// A child or a file that a signal must clean up, until the record is cleared or destroyed.
class Record {
 public:
  explicit Record(pid_t child) : entry_{.child = child} { add(); }
  /// The text must live as long as the record.
  explicit Record(const char* file) : entry_{.file = file} { add(); }
  Record(const Record&) = delete;
  Record& operator=(const Record&) = delete;
  ~Record() { clear(); }

  void clear();

  struct Entry {
    pid_t child = 0;
    const char* file = nullptr;
    Entry* previous = nullptr;
    Entry* next = nullptr;
  };

 private:
  void add();

  Entry entry_;
  bool isListed_ = false;
};

}  // namespace zelvo::SignalCleanup
