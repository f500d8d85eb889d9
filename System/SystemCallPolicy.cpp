#include "System/SystemCallPolicy.hpp"

#include <array>
#include <cerrno>
#include <cstdio>
#include <linux/futex.h>
#include <memory>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

#include <seccomp.h>

#include "System/SystemCallFilters.hpp"

namespace zelvo {
namespace {

/// Requires the bits of an argument under a mask to have a value.
struct Condition {
  unsigned position;
  scmp_datum_t mask;
  scmp_datum_t value;
};

/// A system call, if all conditions hold for its arguments.
struct Rule {
  int systemCall;
  std::vector<Condition> conditions = {};
};

constexpr scmp_datum_t allBits = ~scmp_datum_t{0};
/// The kernel reads a descriptor, an advice and an operation as an `int`: the upper half of the register may
/// have any value.
constexpr scmp_datum_t intBits = 0xffff'ffff;

constexpr Condition hasDescriptor(int descriptor) {
  return {.position = 0, .mask = intBits, .value = static_cast<unsigned>(descriptor)};
}

constexpr Condition hasAdvice(unsigned advice) {
  return {.position = 2, .mask = intBits, .value = advice};
}

/// The system calls that are allowed while a document is processed.
std::vector<Rule> rulesWhileWorking() {
  constexpr Condition readAndWriteOnly = {
      .position = 2, .mask = allBits & ~scmp_datum_t{PROT_READ | PROT_WRITE}, .value = 0};
  // Under the tunable glibc.malloc.hugetlb=2, which a parent may set, the allocator requests pages of a size
  // that is encoded in bits 26 to 31 of the flags.
  constexpr scmp_datum_t hugePageFlags = MAP_HUGETLB | scmp_datum_t{MAP_HUGE_MASK} << MAP_HUGE_SHIFT;
  constexpr Condition privateAndAnonymous = {
      .position = 3, .mask = allBits & ~hugePageFlags, .value = MAP_PRIVATE | MAP_ANONYMOUS};
  constexpr Condition noFixedTarget = {
      .position = 3, .mask = allBits & ~scmp_datum_t{MREMAP_MAYMOVE}, .value = 0};
  constexpr Condition wakes = {
      .position = 1, .mask = intBits & ~scmp_datum_t{FUTEX_PRIVATE_FLAG}, .value = FUTEX_WAKE};
  return {
      {SCMP_SYS(read), {hasDescriptor(STDIN_FILENO)}},
      {SCMP_SYS(write), {hasDescriptor(STDOUT_FILENO)}},
      {SCMP_SYS(brk)},
      {SCMP_SYS(mmap), {readAndWriteOnly, privateAndAnonymous}},
      {SCMP_SYS(mprotect), {readAndWriteOnly}},
      {SCMP_SYS(munmap)},
      {SCMP_SYS(mremap), {noFixedTarget}},
      // Other advice can poison pages or share them with other processes. The second is for the tunable
      // glibc.malloc.hugetlb=1.
      {SCMP_SYS(madvise), {hasAdvice(MADV_DONTNEED)}},
      {SCMP_SYS(madvise), {hasAdvice(MADV_HUGEPAGE)}},
      // `std::call_once` wakes unconditionally. Waiting is not on the list: a single thread would never wake
      // up.
      {SCMP_SYS(futex), {wakes}},
      {SCMP_SYS(exit_group)},
  };
}

/// The system calls that are allowed in addition until the second filter is loaded.
std::vector<Rule> rulesUntilLimitsAreSet() {
  constexpr Condition thisProcess = {.position = 0, .mask = intBits, .value = 0};
  constexpr Condition loadsFilter = {.position = 0, .mask = intBits, .value = SECCOMP_SET_MODE_FILTER};
  return {{SCMP_SYS(prlimit64), {thisProcess}}, {SCMP_SYS(seccomp), {loadsFilter}}};
}

class Policy {
 public:
  explicit Policy(std::uint32_t actionElse) : context_(seccomp_init(actionElse)) {
    if (!context_) throw std::system_error(ENOMEM, std::generic_category(), "seccomp_init");
    check(seccomp_attr_set(context_.get(), SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS),
          "bad architecture");
  }

  void add(std::uint32_t action, const std::vector<Rule>& rules) {
    for (const Rule& rule : rules) {
      std::vector<scmp_arg_cmp> comparisons;
      for (const Condition& condition : rule.conditions) {
        comparisons.push_back({condition.position, SCMP_CMP_MASKED_EQ, condition.mask, condition.value});
      }
      check(seccomp_rule_add_array(context_.get(), action, rule.systemCall,
                                   static_cast<unsigned>(comparisons.size()), comparisons.data()),
            "seccomp_rule_add");
    }
  }

  std::vector<sock_filter> compile() const {
    // libseccomp writes a program to a descriptor only.
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::tmpfile(), &std::fclose);
    if (!file) throw std::system_error(errno, std::generic_category(), "tmpfile");
    check(seccomp_export_bpf(context_.get(), fileno(file.get())), "seccomp_export_bpf");
    std::rewind(file.get());
    std::vector<sock_filter> instructions;
    for (sock_filter instruction; std::fread(&instruction, sizeof instruction, 1, file.get()) == 1;) {
      instructions.push_back(instruction);
    }
    return instructions;
  }

 private:
  static void check(int result, const char* step) {
    if (result != 0) throw std::system_error(-result, std::generic_category(), step);
  }

  struct Release {
    void operator()(void* context) const { seccomp_release(context); }
  };
  std::unique_ptr<void, Release> context_;
};

/// The only weakening: the system calls of the sanitizers' runtimes. Does nothing in other builds.
void addRulesForSanitizers([[maybe_unused]] Policy& policy) {
#if defined(ZELVO_SANITIZE)
  // Shadow memory and bookkeeping: any anonymous memory, never executable.
  constexpr Condition noCode = {.position = 2, .mask = PROT_EXEC, .value = 0};
  constexpr Condition anonymous = {.position = 3, .mask = MAP_ANONYMOUS, .value = MAP_ANONYMOUS};
  // The runtime checks whether an object is readable by writing it to a pipe, whose ends are the only
  // descriptors above the standard ones. Reports are written to standard error.
  constexpr int writeEndOfPipe = STDERR_FILENO + 2;
  policy.add(SCMP_ACT_ALLOW, {
                                 {SCMP_SYS(mmap), {noCode, anonymous}},
                                 {SCMP_SYS(madvise)},
                                 {SCMP_SYS(sched_yield)},
                                 {SCMP_SYS(gettid)},
                                 {SCMP_SYS(getpid)},
                                 {SCMP_SYS(sigaltstack)},
                                 {SCMP_SYS(pipe2)},
                                 {SCMP_SYS(close)},
                                 {SCMP_SYS(write), {hasDescriptor(writeEndOfPipe)}},
                                 {SCMP_SYS(write), {hasDescriptor(STDERR_FILENO)}},
                             });
  // The runtime's calls about files, and its symbolizer, fail.
  policy.add(SCMP_ACT_ERRNO(EACCES),
             {{SCMP_SYS(open)}, {SCMP_SYS(stat)}, {SCMP_SYS(readlink)}, {SCMP_SYS(ioctl)}, {SCMP_SYS(fork)}});
#endif
}

}  // namespace

std::vector<sock_filter> compileStartingFilter() {
  Policy policy(SCMP_ACT_ERRNO(refusedByUs));
  policy.add(SCMP_ACT_ALLOW, rulesWhileWorking());
  policy.add(SCMP_ACT_ALLOW, rulesUntilLimitsAreSet());
  addRulesForSanitizers(policy);
  return policy.compile();
}

std::vector<sock_filter> compileWorkingFilter() {
  Policy policy(SCMP_ACT_KILL_PROCESS);
  policy.add(SCMP_ACT_ALLOW, rulesWhileWorking());
  policy.add(SCMP_ACT_ERRNO(markOfWorkingFilter), {{SCMP_SYS(read), {hasDescriptor(-1)}}});
  addRulesForSanitizers(policy);
  return policy.compile();
}

}  // namespace zelvo
