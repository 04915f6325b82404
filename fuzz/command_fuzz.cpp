// Fuzzes the arguments of the kzgis command, in a directory that holds one small layer.
//
// Input: arguments, one a line.  Names of files are relative, so that nothing is read or
// written elsewhere; large numbers are left out, since a picture may rightly take as much
// memory as its size says.

#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/scratch.h"
#include "tools/command.h"

namespace {

/// A square with a hole, a null record, and a table without columns.
void write_layer(const ScratchDirectory& scratch) {
  const auto write = [&scratch](const char* name, const std::string& bytes) {
    scratch.write(name, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  };
  for (const char* const name : {"layer.shp", "layer.shx", "riv.shp", "riv.shx", "riv.dbf"}) {
    std::ifstream seed(std::string(KZGIS_FUZZ_FILES "/") + name, std::ios::binary);
    if (!seed) std::abort();
    write(name, std::string(std::istreambuf_iterator<char>(seed), {}));
  }
}

struct Stage {
  Stage() {
    write_layer(scratch);
    home = open(".", O_RDONLY | O_DIRECTORY);
    here = open(scratch.path().c_str(), O_RDONLY | O_DIRECTORY);
    if (home < 0 || here < 0) std::abort();
    // Standard input is empty, and what goes to the standard streams is of no interest.
    const int null = open("/dev/null", O_RDONLY);
    if (null < 0 || dup2(null, STDIN_FILENO) < 0) std::abort();
    close(null);
    std::cout.rdbuf(&nowhere);
    std::cerr.rdbuf(&nowhere);
  }

  struct Nowhere : std::streambuf {
    int overflow(int c) override { return traits_type::not_eof(c); }
  };

  ScratchDirectory scratch;
  Nowhere nowhere;
  int home = -1;  ///< where the fuzzer has its corpus
  int here = -1;  ///< where the command works
};

bool is_harmless(const std::string& argument) {
  int digits = 0;
  for (const char c : argument) {
    digits = std::isdigit(static_cast<unsigned char>(c)) != 0 ? digits + 1 : 0;
    if (c == '/' || c == '\\' || c == '$' || digits > 3) return false;
  }
  return argument.find("..") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Stage stage;
  std::istringstream lines(std::string(data, data + size));
  std::vector<std::string> arguments{"kzgis"};
  for (std::string line; std::getline(lines, line);) {
    if (!is_harmless(line)) return 0;
    arguments.push_back(line.substr(0, line.find('\0')));
  }
  std::vector<const char*> argv;
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  if (fchdir(stage.here) != 0) std::abort();
  const int exit_code = kzgis::tools::run_command(static_cast<int>(argv.size()), argv.data());
  if (fchdir(stage.home) != 0 || exit_code < 0 || exit_code > 2) std::abort();
  std::cin.clear();
  std::cout.clear();
  return 0;
}
