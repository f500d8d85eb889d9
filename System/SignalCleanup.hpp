#pragma once

#include <csignal>
#include <sys/types.h>

/// What must not outlive this process when a signal ends it: its children and its temporary files.
///
/// Until `install` is called nothing here has any effect, so that an application keeps its own handling.
namespace zelvo::SignalCleanup {

/// From now on SIGHUP, SIGINT, SIGTERM and SIGPIPE kill the recorded children, wait for them, unlink the
/// recorded files, and then end the process as if they were not handled. Those that are ignored stay ignored.
/// Called once, while the process has one thread.
void install();

/// In a forked child: gives the handled signals their default action, and blocks none. What its parent has
/// recorded is the parent's to clean up.
void leaveToParent();

/// Holds the signals back while something exists that is not recorded yet, or is recorded and gone: between
/// starting a child and its `Record`, or around the wait after which its number may be another process's.
/// On other threads the handler waits until no thread holds anything back, so hold nothing for long.
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

/// Something that a signal must clean up, until the record is cleared or destroyed.
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
