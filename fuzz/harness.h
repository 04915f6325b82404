// What every fuzzer needs.

#ifndef KZGIS_FUZZ_HARNESS_H
#define KZGIS_FUZZ_HARNESS_H

#include <cstdlib>
#include <iostream>
#include <streambuf>

/// Ends the run, which is a find, when a promise is broken.
inline void require(bool kept) {
  if (!kept) std::abort();
}

/// Takes the standard streams' text from here on, and drops it: nearly every input has
/// something to complain of.
inline void silence() {
  struct Nowhere : std::streambuf {
    int overflow(int c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
  };
  static Nowhere nowhere;
  std::cout.rdbuf(&nowhere);
  std::cerr.rdbuf(&nowhere);
}

#endif
