// Fuzzes the expansion of path variables in file names.
//
// Input: the value of two environment variables up to the first NUL; then a name.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kzgis/filetools.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::uint8_t* const end = std::find(data, data + size, 0);
  const std::string value(data, end);
  const std::string name(std::min(end + 1, data + size), data + size);
  // setenv would keep every value that there ever was.
  static std::string variable;
  variable = "A=" + value;
  putenv(variable.data());
  setenv("B_1", "one:two::four", 1);

  char buffer[1024];
  const char* const expanded = FILEmap_variables(name.c_str(), buffer);
  if (std::memchr(buffer, 0, sizeof buffer) == nullptr) std::abort();
  if (expanded == nullptr && buffer[0] != 0) std::abort();
  // Without a variable the name stays as it is.
  if (expanded != nullptr && name.find('$') == std::string::npos &&
      std::strcmp(expanded, name.c_str()) != 0) {
    std::abort();
  }
  // What can be opened is anybody's file: "r" harms none of them, a name in a directory
  // that does not exist opens none.
  std::FILE* const file = FILEfopen(("/nonexistent/" + name).c_str(), "r");
  if (file != nullptr) std::fclose(file);
  return 0;
}
