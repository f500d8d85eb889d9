#include "System/SandboxProbes.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <iterator>
#include <limits>
#include <sched.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "System/EntitlementReader.hpp"
#include "System/SystemCallFilters.hpp"

namespace zelvo {
namespace {

struct Probe {
  std::string_view entitlementKey;
  long systemCall;
  std::array<long, 6> arguments;
};

constexpr long noDescriptor = -1;
constexpr long noAddress = 0;
constexpr long noLength = 0;
constexpr long noFamily = -1;
constexpr long noRequest = -1;
constexpr long noQueue = -1;
constexpr long noThread = -1;
/// The one number that is neither a process nor, negated, a group of processes.
constexpr long noProcess = std::numeric_limits<int>::min();
/// No page starts here.
constexpr long oddAddress = 1;
/// Shared signal handlers without shared memory: a combination that the kernel refuses.
constexpr long impossibleClone = CLONE_SIGHAND;

// Except `ptrace` and `io_uring_setup`, only calls that ordinary services make: filters of service managers
// that kill the process do so at rarer calls, so most of them let the worker run.
constexpr Probe probes[] = {
    // Leaving the sandbox: reaching the file system, becoming or making another program, making code.
    {entitlement::appSandbox, SYS_openat, {noDescriptor, noAddress, O_RDONLY}},
    {entitlement::appSandbox, SYS_openat2, {noDescriptor, noAddress, noAddress, noLength}},
    {entitlement::appSandbox, SYS_execve, {noAddress, noAddress, noAddress}},
    {entitlement::appSandbox, SYS_execveat, {noDescriptor, noAddress, noAddress, noAddress, 0}},
    {entitlement::appSandbox, SYS_clone, {impossibleClone}},
    {entitlement::appSandbox, SYS_clone3, {noAddress, noLength}},
    {entitlement::appSandbox, SYS_ptrace, {noRequest, noThread, noAddress, noAddress}},
    {entitlement::appSandbox, SYS_io_uring_setup, {0, noAddress}},
    {entitlement::appSandbox,
     SYS_mmap,
     {noAddress, noLength, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, noDescriptor, 0}},
    {entitlement::appSandbox, SYS_mprotect, {oddAddress, noLength, PROT_READ | PROT_EXEC}},

    {entitlement::networkClient, SYS_socket, {noFamily, 0, 0}},
    {entitlement::networkClient, SYS_socketpair, {noFamily, 0, 0, noAddress}},
    {entitlement::networkClient, SYS_connect, {noDescriptor, noAddress, noLength}},
    {entitlement::networkClient, SYS_sendto, {noDescriptor, noAddress, noLength, 0, noAddress, noLength}},

    {entitlement::networkServer, SYS_bind, {noDescriptor, noAddress, noLength}},
    {entitlement::networkServer, SYS_listen, {noDescriptor, 0}},
    {entitlement::networkServer, SYS_accept, {noDescriptor, noAddress, noAddress}},
    {entitlement::networkServer, SYS_accept4, {noDescriptor, noAddress, noAddress, 0}},

    // What a parent can pass on: descriptors other than the standard ones, left open or sent later.
    {entitlement::inherit, SYS_read, {noDescriptor, noAddress, noLength}},
    {entitlement::inherit, SYS_write, {noDescriptor, noAddress, noLength}},
    {entitlement::inherit, SYS_dup, {noDescriptor}},
    {entitlement::inherit, SYS_fcntl, {noDescriptor, F_GETFD}},
    {entitlement::inherit, SYS_recvmsg, {noDescriptor, noAddress, 0}},

    {entitlement::userSelectedFiles, SYS_openat, {noDescriptor, noAddress, O_RDWR | O_CREAT}},
    {entitlement::userSelectedFiles, SYS_unlinkat, {noDescriptor, noAddress, 0}},
    {entitlement::userSelectedFiles, SYS_renameat2, {noDescriptor, noAddress, noDescriptor, noAddress, 0}},
    {entitlement::userSelectedFiles, SYS_mkdirat, {noDescriptor, noAddress, 0}},
    {entitlement::userSelectedFiles, SYS_getdents64, {noDescriptor, noAddress, noLength}},
    {entitlement::userSelectedFiles, SYS_pwrite64, {noDescriptor, noAddress, noLength, 0}},
    {entitlement::userSelectedFiles, SYS_ftruncate, {noDescriptor, noLength}},

    // Making other programs act: signals, and messages that carry rights.
    {entitlement::appleEvents, SYS_kill, {noProcess, 0}},
    {entitlement::appleEvents, SYS_tgkill, {noThread, noThread, 0}},
    {entitlement::appleEvents, SYS_rt_sigqueueinfo, {noProcess, 0, noAddress}},
    {entitlement::appleEvents, SYS_sendmsg, {noDescriptor, noAddress, 0}},
    {entitlement::appleEvents, SYS_msgsnd, {noQueue, noAddress, noLength, 0}},
};

bool isRefusedByUs(const Probe& probe) {
  const auto& [a, b, c, d, e, f] = probe.arguments;
  return ::syscall(probe.systemCall, a, b, c, d, e, f) == -1 && errno == refusedByUs;
}

}  // namespace

bool everyProbeIsRefusedByUs(std::string_view entitlementKey) {
  return std::all_of(std::begin(probes), std::end(probes), [&](const Probe& probe) {
    return probe.entitlementKey != entitlementKey || isRefusedByUs(probe);
  });
}

bool anyProbeIsRefusedByUs() {
  return std::any_of(std::begin(probes), std::end(probes), isRefusedByUs);
}

}  // namespace zelvo
