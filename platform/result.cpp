// The end of a program that asks for a value where there is an error.
//
// Such a program has a fault, or wants no other answer to an error.  The error may be that of
// a program out of memory: standard error of the C library is not buffered and needs none.

#include "kzgis/result.h"

#include <cstdio>
#include <cstdlib>

namespace kzgis {

void end_program(const char* message) {
  std::fputs(message, stderr);
  std::fputc('\n', stderr);
  std::abort();
}

}  // namespace kzgis
