// Allocations that fail, in child processes.  Only on Linux, and not under the address
// sanitizer, which reserves more memory than any limit allows: elsewhere
// KZGIS_CAN_LIMIT_MEMORY is not defined.

#ifndef KZGIS_TESTS_SUPPORT_MEMORY_LIMIT_H
#define KZGIS_TESTS_SUPPORT_MEMORY_LIMIT_H

#include "support/sanitized.h"

#if defined(__linux__) && !defined(KZGIS_ADDRESS_SANITIZER)
#define KZGIS_CAN_LIMIT_MEMORY
#endif

#ifdef KZGIS_CAN_LIMIT_MEMORY
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// Lets this process grow by `bytes` more than it has mapped.
inline void limit_growth(std::uintmax_t bytes) {
  long pages = 0;
  if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(statm, "%ld", &pages) != 1) pages = 0;
    std::fclose(statm);
  }
  const rlim_t limit = static_cast<rlim_t>(pages) * static_cast<rlim_t>(getpagesize()) + bytes;
  const rlimit limits{limit, RLIM_INFINITY};
  setrlimit(RLIMIT_AS, &limits);
}

/// Lets this process grow as far as the host lets it.
inline void lift_limit() {
  const rlimit limits{RLIM_INFINITY, RLIM_INFINITY};
  setrlimit(RLIMIT_AS, &limits);
}

/// Ends the child process with the number of the failed check, unless `ok`.
inline void check(bool ok, int number) {
  if (!ok) std::_Exit(number);
}

#endif

#endif
