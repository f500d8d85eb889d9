#include "System/SystemCallPolicy.hpp"

#include <cerrno>
#include <initializer_list>
#include <linux/futex.h>
#include <new>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <seccomp.h>

#include "System/Descriptor.hpp"

#if defined(ZELVO_SANITIZE)
#include <sanitizer/common_interface_defs.h>
#endif

namespace zelvo {
namespace {

/// Says which value the bits of an argument must have under a mask.
struct Argument {
  unsigned position;
  scmp_datum_t mask;
  scmp_datum_t value;
};

constexpr scmp_datum_t allBits = ~scmp_datum_t{0};
/// The kernel takes a descriptor and an operation as an `int`: the other half of the register may hold
/// anything.
constexpr scmp_datum_t intBits = 0xffff'ffff;

Argument isDescriptor(int descriptor) {
  return {.position = 0, .mask = intBits, .value = static_cast<unsigned>(descriptor)};
}

/// Adds a rule and passes on what libseccomp says: 0, or a negative error number.
int addRule(void* context, std::uint32_t action, int systemCall,
            std::initializer_list<Argument> arguments = {}) {
  std::vector<scmp_arg_cmp> conditions;
  for (const Argument& argument : arguments) {
    conditions.push_back({argument.position, SCMP_CMP_MASKED_EQ, argument.mask, argument.value});
  }
  return seccomp_rule_add_array(context, action, systemCall, static_cast<unsigned>(conditions.size()),
                                conditions.data());
}

}  // namespace

SystemCallPolicy SystemCallPolicy::answeringElse(int errorNumber) {
  return SystemCallPolicy(SCMP_ACT_ERRNO(static_cast<unsigned>(errorNumber)));
}

SystemCallPolicy SystemCallPolicy::killingElse() {
  return SystemCallPolicy(SCMP_ACT_KILL_PROCESS);
}

SystemCallPolicy::SystemCallPolicy(unsigned elseAction) : context_(seccomp_init(elseAction)) {
  if (context_ == nullptr) {
    complete_ = false;
    return;
  }
  note(seccomp_attr_set(context_.get(), SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS));
}

SystemCallPolicy& SystemCallPolicy::allowReadingFrom(int descriptor) {
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(read), {isDescriptor(descriptor)}));
}

SystemCallPolicy& SystemCallPolicy::allowWritingTo(int descriptor) {
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(write), {isDescriptor(descriptor)}));
}

SystemCallPolicy& SystemCallPolicy::allowMemory() {
  constexpr scmp_datum_t protections = PROT_READ | PROT_WRITE;
  constexpr Argument noOtherProtection = {.position = 2, .mask = allBits & ~protections, .value = 0};
  constexpr Argument privateAndAnonymous = {
      .position = 3, .mask = allBits, .value = MAP_PRIVATE | MAP_ANONYMOUS};
  constexpr Argument noFixedTarget = {
      .position = 3, .mask = allBits & ~scmp_datum_t{MREMAP_MAYMOVE}, .value = 0};
  // Other advice can poison pages or share them with other processes.
  constexpr Argument notNeededNow = {.position = 2, .mask = intBits, .value = MADV_DONTNEED};

  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(brk)));
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(mmap), {noOtherProtection, privateAndAnonymous}));
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(mprotect), {noOtherProtection}));
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(munmap)));
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(mremap), {noFixedTarget}));
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(madvise), {notNeededNow}));
}

SystemCallPolicy& SystemCallPolicy::allowWaking() {
  // `std::call_once` wakes unconditionally. Waiting is off the list: where there is one thread, it would be
  // for ever.
  constexpr Argument wake = {
      .position = 1, .mask = intBits & ~scmp_datum_t{FUTEX_PRIVATE_FLAG}, .value = FUTEX_WAKE};
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(futex), {wake}));
}

SystemCallPolicy& SystemCallPolicy::allowLeaving() {
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(exit_group)));
}

SystemCallPolicy& SystemCallPolicy::allowLimits() {
  constexpr Argument thisProcess = {.position = 0, .mask = intBits, .value = 0};
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(prlimit64), {thisProcess}));
}

SystemCallPolicy& SystemCallPolicy::allowFilters() {
  constexpr Argument filterMode = {.position = 0, .mask = intBits, .value = SECCOMP_SET_MODE_FILTER};
  return note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(seccomp), {filterMode}));
}

SystemCallPolicy& SystemCallPolicy::allowSanitizers() {
#if defined(ZELVO_SANITIZE)
  // The runtimes look up what they will need later.
  __sanitizer_sandbox_arguments arguments = {};
  __sanitizer_sandbox_on_notify(&arguments);
  // Shadow memory and bookkeeping: any anonymous memory, never executable.
  constexpr Argument noCode = {.position = 2, .mask = PROT_EXEC, .value = 0};
  constexpr Argument anonymous = {.position = 3, .mask = MAP_ANONYMOUS, .value = MAP_ANONYMOUS};
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(mmap), {noCode, anonymous}));
  for (const int systemCall : {SCMP_SYS(madvise), SCMP_SYS(sched_yield), SCMP_SYS(gettid), SCMP_SYS(getpid),
                               SCMP_SYS(sigaltstack)}) {
    note(addRule(context_.get(), SCMP_ACT_ALLOW, systemCall));
  }
  // Whether an object can be read is found out by writing it into a pipe, the only descriptors above the
  // standard ones.
  constexpr int endOfThatPipe = STDERR_FILENO + 2;
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(pipe2)));
  note(addRule(context_.get(), SCMP_ACT_ALLOW, SCMP_SYS(close)));
  allowWritingTo(endOfThatPipe);
  // A report goes to standard error. What it would like to know of files, it is told that it cannot.
  allowWritingTo(STDERR_FILENO);
  for (const int systemCall :
       {SCMP_SYS(open), SCMP_SYS(stat), SCMP_SYS(readlink), SCMP_SYS(ioctl), SCMP_SYS(fork)}) {
    note(addRule(context_.get(), SCMP_ACT_ERRNO(EACCES), systemCall));
  }
#endif
  return *this;
}

SystemCallPolicy& SystemCallPolicy::markWith(int errorNumber) {
  return note(addRule(context_.get(), SCMP_ACT_ERRNO(static_cast<unsigned>(errorNumber)), SCMP_SYS(read),
                      {isDescriptor(-1)}));
}

std::optional<SystemCallFilter> SystemCallPolicy::compile() const {
  if (!complete_) return std::nullopt;
  // libseccomp hands a program out through a descriptor only.
  const Descriptor file(memfd_create("filter", MFD_CLOEXEC));
  if (!file || seccomp_export_bpf(context_.get(), file.number()) != 0) return std::nullopt;
  const off_t bytes = lseek(file.number(), 0, SEEK_CUR);
  if (bytes <= 0) return std::nullopt;
  std::vector<sock_filter> instructions(static_cast<std::size_t>(bytes) / sizeof(sock_filter));
  if (pread(file.number(), instructions.data(), static_cast<std::size_t>(bytes), 0) != bytes)
    return std::nullopt;
  return SystemCallFilter(std::move(instructions));
}

SystemCallPolicy& SystemCallPolicy::note(int result) {
  if (result == -ENOMEM) throw std::bad_alloc();
  if (result != 0) complete_ = false;
  return *this;
}

void SystemCallPolicy::Release::operator()(void* context) const {
  seccomp_release(context);
}

bool SystemCallFilter::load() const {
  // The kernel copies the program and never writes to it. A filter has at most 4096 instructions.
  const sock_fprog program = {static_cast<unsigned short>(instructions_.size()),
                              const_cast<sock_filter*>(instructions_.data())};
  return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program) == 0;
}

}  // namespace zelvo
