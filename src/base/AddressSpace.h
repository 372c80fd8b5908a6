#pragma once
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstddef>
#include <fstream>

namespace tarnwick {

/// Lets this process, and what it starts from now on, take no more than so many bytes of address space beyond
/// what it has: whoever feeds it cannot fill the machine's memory.
inline void limitAddressSpace(size_t bytes) {
  // Each thread would otherwise set a large part of it aside for itself.
  ::mallopt(M_ARENA_MAX, 1);
  size_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  struct rlimit limit = {};
  if (!pages || ::getrlimit(RLIMIT_AS, &limit) != 0) return;
  limit.rlim_cur = pages * static_cast<size_t>(::sysconf(_SC_PAGESIZE)) + bytes;
  ::setrlimit(RLIMIT_AS, &limit);
}

/// Takes that limit away again. Safe between fork and exec.
inline void unlimitAddressSpace() {
  struct rlimit limit = {};
  if (::getrlimit(RLIMIT_AS, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  ::setrlimit(RLIMIT_AS, &limit);
}

}  // namespace tarnwick
