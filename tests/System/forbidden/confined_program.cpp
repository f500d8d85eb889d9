// confined_program ACT
//
// Confines itself as the worker does, then commits the forbidden act of that name. "work" does what a worker
// does; "refused" names, before the seal, every system call that is not refused whatever its arguments;
// "overflow" reads past the end of a block, for the sanitizers to find.

#include <cerrno>
#include <cstdlib>
#include <list>
#include <memory>
#include <mutex>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "System/Confinement.hpp"
#include "System/StandardStreams.hpp"
#include "System/forbidden/Acts.hpp"

namespace {

constexpr int notConfined = 78;
constexpr long lastSystemCall = 512;

bool isSandboxed(zelvo::EntitlementReader& reader) {
  using zelvo::EntitlementValue;
  namespace entitlement = zelvo::entitlement;
  if (reader.value(entitlement::appSandbox) != EntitlementValue::granted) return false;
  for (const auto key : {entitlement::networkClient, entitlement::networkServer, entitlement::inherit,
                         entitlement::userSelectedFiles, entitlement::appleEvents}) {
    if (reader.value(key) != EntitlementValue::absent) return false;
  }
  return true;
}

bool applyLimits(zelvo::Limits& limits) {
  using zelvo::Resource;
  return limits.apply({Resource::cpuSeconds, 45, 45}) && limits.apply({Resource::fileBytes, 0, 0}) &&
         limits.apply({Resource::processes, 0, 0});
}

/// Everything that the runtime may do for a worker: exceptions, small and huge memory that grows and shrinks,
/// locks.
bool work() {
  zelvo::StandardInput input;
  std::string text;
  std::vector<char> buffer(65536);
  while (true) {
    const auto count = input.read(buffer);
    if (!count) return false;
    if (*count == 0) break;
    text.append(buffer.data(), *count);
  }
  try {
    throw std::runtime_error("one");
  } catch (const std::exception& error) {
    text += error.what();
  }
  constexpr std::size_t huge = 1 << 26;
  void* memory = std::malloc(huge);
  memory = std::realloc(memory, 2 * huge);
  static_cast<char*>(memory)[2 * huge - 1] = 'x';
  std::free(memory);
  std::list<std::string> many(100'000, std::string(100, 'y'));
  many.clear();
  static std::once_flag once;
  std::call_once(once, [&] { text += " two"; });
  return zelvo::StandardOutput().write(text);
}

char readPastTheEnd(std::size_t distance) {
  const std::unique_ptr<volatile char[]> block(new char[1]);
  return block[distance];
}

std::string notRefused() {
  std::string names;
  for (long number = 0; number <= lastSystemCall; ++number) {
    // The kernel keeps filters out of the trampolines of its probes, which kill whoever else enters them.
    const bool isTrampoline = number == 335 || number == 336;
    if (number == SYS_exit_group || isTrampoline) continue;
    if (syscall(number, -1L, -1L, -1L, -1L, -1L, -1L) == -1 && errno == 4000) continue;
    names += std::to_string(number) + ' ';
  }
  return names;
}

}  // namespace

int main(int count, char** arguments) {
  const std::string_view act = count > 1 ? arguments[1] : "";
  const zelvo::Confinement confinement = zelvo::enterConfinement();
  if (!isSandboxed(*confinement.entitlements) || !applyLimits(*confinement.limits)) _exit(notConfined);
  if (act == "refused") _exit(zelvo::StandardOutput().write(notRefused()) ? 0 : 1);
  if (!confinement.limits->seal()) _exit(notConfined);
  if (act == "work") _exit(work() ? 0 : 1);
  if (act == "overflow") _exit(readPastTheEnd(static_cast<std::size_t>(count)));
  for (const auto& forbidden : zelvo::testing::forbiddenActs) {
    if (act == forbidden.name) forbidden.commit();
  }
  _exit(1);
}
