#pragma once
#include <cstdio>
#include <cstdlib>

/// Ends the program, which is how a fuzzer learns of a fault, unless `condition` holds.
inline void check(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "broken: %s\n", what);
  std::abort();
}
