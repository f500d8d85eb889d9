#pragma once

#include <cstdio>
#include <cstdlib>

/// A property that no input may break; libFuzzer takes the abort for a finding.
#define ZELVO_REQUIRE(condition)                                 \
  do {                                                           \
    if (!(condition)) {                                          \
      std::fprintf(stderr, "broken property: %s\n", #condition); \
      std::abort();                                              \
    }                                                            \
  } while (false)
