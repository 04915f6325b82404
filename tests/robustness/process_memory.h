// What the host says of this process's memory.  Zero where it says nothing.

#ifndef KZGIS_TESTS_ROBUSTNESS_PROCESS_MEMORY_H
#define KZGIS_TESTS_ROBUSTNESS_PROCESS_MEMORY_H

#include <cstddef>
#include <fstream>
#include <string>

#include "support/sanitized.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#ifdef KZGIS_SANITIZED
inline constexpr bool kMemoryIsTheProgramsOwn = false;  // a sanitizer's grows by itself
inline constexpr int kUsualRounds = 2;
inline constexpr int kManyVertices = 50000;
#else
inline constexpr bool kMemoryIsTheProgramsOwn = true;
inline constexpr int kUsualRounds = 10;
inline constexpr int kManyVertices = 1000000;
#endif

/// A line of /proc/self/status, in bytes: "VmRSS", "VmHWM".
inline std::size_t status_bytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(field + ":")) return std::stoul(line.substr(field.size() + 1)) << 10;
  }
  return 0;
}

inline std::size_t resident_bytes() { return status_bytes("VmRSS"); }
inline std::size_t peak_resident_bytes() { return status_bytes("VmHWM"); }

/// Returns what the heap keeps at hand to the host.
inline void give_back_free_memory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

/// Makes the present size the peak.
inline void forget_peak() { std::ofstream("/proc/self/clear_refs") << "5"; }

#endif
