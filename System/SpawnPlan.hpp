#pragma once

#include <spawn.h>
#include <sys/types.h>
#include <vector>

#include "System/ChildProcess.hpp"
#include "System/Descriptor.hpp"

namespace zelvo {

/// How a child will start: nothing comes from its parent but the pipes that are asked for here.
class SpawnPlan {
 public:
  SpawnPlan();
  SpawnPlan(const SpawnPlan&) = delete;
  SpawnPlan& operator=(const SpawnPlan&) = delete;
  ~SpawnPlan();

  /// Makes a pipe to or from a standard stream of the child and gives out our end of it, which does not
  /// block. After a failure the end is empty, and `start` fails.
  Descriptor pipeTo(int standardStream);
  Descriptor pipeFrom(int standardStream);

  /// Starts the child. The error number, or 0.
  int start(const ChildCommand& command, pid_t& id);

 private:
  struct Pipe {
    Descriptor readEnd;
    Descriptor writeEnd;
  };
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
