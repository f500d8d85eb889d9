#pragma once

#include <cstdio>
#include <cstdlib>

/// Checks a property of every input; libFuzzer reports the abort as a finding.
#define ZELVO_REQUIRE(condition)                                                  \
  do {                                                                            \
    if (!(condition)) {                                                           \
      static_cast<void>(std::fputs("broken property: " #condition "\n", stderr)); \
      std::abort();                                                               \
    }                                                                             \
  } while (false)
