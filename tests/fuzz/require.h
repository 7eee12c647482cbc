// A property every input must keep: when it fails the fuzzer reports the input as a crash.
#pragma once

#include <cstdio>
#include <cstdlib>

#define FUZZ_REQUIRE(condition)                                                         \
  do {                                                                                  \
    if (!(condition)) {                                                                 \
      std::fprintf(stderr, "%s:%d: property failed: %s\n", __FILE__, __LINE__, #condition); \
      std::abort();                                                                     \
    }                                                                                   \
  } while (0)
