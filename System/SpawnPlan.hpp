#pragma once

#include <spawn.h>
#include <sys/types.h>
#include <vector>

#include "System/ChildProcess.hpp"
#include "System/Descriptor.hpp"

namespace zelvo {

/// The setup of a child. It inherits nothing from its parent except the pipes requested here.
class SpawnPlan {
 public:
  SpawnPlan();
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan();

  struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
  };

  /// Makes a pipe to a standard stream of the child. The returned write end does not block. The returned read
  /// end is a duplicate of the child's: after the child has ended, it holds the bytes that the child left
  /// unread. After a failure the ends are empty, and `start` fails.
  Pipe pipeTo(int standardStream);

  /// Makes a pipe from a standard stream of the child and returns our end of it, which does not block. After
  /// a failure the end is empty, and `start` fails.
  Descriptor pipeFrom(int standardStream);

  /// Starts the child. Returns 0 or the error number.
  int start(const ChildCommand& command, pid_t& id);

 private:
  Pipe makePipe();
  void connect(Descriptor childEnd, int standardStream);
  void note(int error) {
    if (error_ == 0) error_ = error;
  }

  posix_spawn_file_actions_t actions_;
  posix_spawnattr_t attributes_;
  std::vector<Descriptor> childEnds_;
  int error_ = 0;
};

}  // namespace zelvo
