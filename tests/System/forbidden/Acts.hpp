#pragma once

#include <csignal>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <linux/futex.h>
#include <linux/seccomp.h>
#include <string_view>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <tuple>
#include <unistd.h>

namespace zelvo::testing {

/// Something that a confined program must die of, and the system call in which it must happen.
struct ForbiddenAct {
  std::string_view name;
  long systemCall;
  void (*commit)();
};

inline char scratch[4096];

inline constexpr ForbiddenAct forbiddenActs[] = {
    {"open-file", SYS_openat, [] { std::ignore = open("/etc/passwd", O_RDONLY); }},
    {"create-file", SYS_openat, [] { std::ignore = open("/tmp/x", O_WRONLY | O_CREAT, 0600); }},
    {"list-folder", SYS_getdents64, [] { syscall(SYS_getdents64, 0, scratch, sizeof scratch); }},
    {"remove-file", SYS_unlinkat, [] { unlinkat(AT_FDCWD, "/tmp/x", 0); }},
    {"open-socket", SYS_socket, [] { socket(AF_INET, SOCK_STREAM, 0); }},
    {"start-process", SYS_clone, [] { std::ignore = fork(); }},
    {"become-program", SYS_execve, [] { execl("/bin/true", "true", nullptr); }},
    {"raise-limit", SYS_prlimit64, [] { syscall(SYS_prlimit64, 0, RLIMIT_CPU, scratch, nullptr); }},
    {"ask-limit", SYS_prlimit64, [] { syscall(SYS_prlimit64, 0, RLIMIT_CPU, nullptr, scratch); }},
    {"map-code", SYS_mmap,
     [] { std::ignore = mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0); }},
    {"map-file", SYS_mmap, [] { std::ignore = mmap(nullptr, 4096, PROT_READ, MAP_PRIVATE, 0, 0); }},
    {"make-code", SYS_mprotect, [] { mprotect(scratch, 1, PROT_READ | PROT_EXEC); }},
    {"move-memory-onto-other", SYS_mremap,
     [] { mremap(scratch, 4096, 4096, MREMAP_MAYMOVE | MREMAP_FIXED, scratch); }},
    {"trace", SYS_ptrace, [] { ptrace(PTRACE_TRACEME, 0, nullptr, nullptr); }},
    {"load-filter", SYS_seccomp, [] { syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, nullptr); }},
    {"load-filter-the-old-way", SYS_prctl, [] { prctl(PR_SET_SECCOMP, 2L, 0L, 0L, 0L); }},
    {"read-other-descriptor", SYS_read, [] { std::ignore = read(3, scratch, 1); }},
    {"read-output", SYS_read, [] { std::ignore = read(1, scratch, 1); }},
    {"write-input", SYS_write, [] { std::ignore = write(0, scratch, 1); }},
    {"wait-for-lock", SYS_futex, [] { syscall(SYS_futex, scratch, FUTEX_WAIT_PRIVATE, 0, nullptr); }},
    // The raw call: the library asks the clock without entering the kernel.
    {"ask-time", SYS_clock_gettime, [] { syscall(SYS_clock_gettime, CLOCK_REALTIME, scratch); }},
    {"draw-random", SYS_getrandom, [] { syscall(SYS_getrandom, scratch, 8, 0); }},
    {"signal", SYS_kill, [] { kill(1, 0); }},
    {"queue-work", SYS_io_uring_setup, [] { syscall(SYS_io_uring_setup, 1, scratch); }},
#if defined(__x86_64__)
    {"call-as-x32", SYS_read | 0x4000'0000, [] { syscall(SYS_read | 0x4000'0000, 0, scratch, 1); }},
#endif
};

}  // namespace zelvo::testing
