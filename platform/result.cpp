// The end of a program that asks for a value where there is an error.

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
