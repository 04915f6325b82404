// Fuzzes the arguments of the kzgis command, in a directory that holds small files of each kind.
//
// Input: arguments, one a line.  Names of files are relative, so that nothing is read or
// written elsewhere; large numbers are left out, since a picture may rightly take as much
// memory as its size says.

#include <fcntl.h>
#include <unistd.h>

#include <cctype>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "fuzz/harness.h"
#include "fuzz/scratch.h"
#include "tools/command.h"

namespace {

/// The working directory of the command, with small files of each kind.
class Stage {
 public:
  Stage() {
    for (const auto& file : std::filesystem::directory_iterator(KZGIS_FUZZ_FILES)) {
      std::ifstream seed(file.path(), std::ios::binary);
      const std::string name = file.path().filename();
      files_[name == "cil.cbd" ? "bank/africa.Map/cil.cbd" : name] =
          std::string(std::istreambuf_iterator<char>(seed), {});
    }
    require(!files_.empty());
    home_ = open(".", O_RDONLY | O_DIRECTORY);
    here_ = open(scratch_.path().c_str(), O_RDONLY | O_DIRECTORY);
    require(home_ >= 0 && here_ >= 0);
    // Standard input is empty.
    const int null = open("/dev/null", O_RDONLY);
    require(null >= 0 && dup2(null, STDIN_FILENO) >= 0);
    close(null);
  }

  /// Makes the directory anew, so that no input depends on what another one wrote.
  void set_out() const {
    for (const auto& entry : std::filesystem::directory_iterator(scratch_.path())) {
      std::filesystem::remove_all(entry.path());
    }
    std::filesystem::create_directories(scratch_.path() + "/bank/africa.Map");
    for (const auto& [name, bytes] : files_) {
      scratch_.write(name, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    }
  }
  void enter() const { require(fchdir(here_) == 0); }
  void leave() const { require(fchdir(home_) == 0); }

 private:
  ScratchDirectory scratch_;
  std::map<std::string, std::string> files_;
  int home_ = -1;  ///< where the fuzzer has its corpus
  int here_ = -1;  ///< where the command works
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
  static const Stage stage;
  silence();
  std::istringstream lines(std::string(data, data + size));
  std::vector<std::string> arguments{"kzgis"};
  for (std::string line; std::getline(lines, line);) {
    if (!is_harmless(line)) return 0;
    arguments.push_back(line.substr(0, line.find('\0')));
  }
  std::vector<const char*> argv;
  for (const std::string& argument : arguments) argv.push_back(argument.c_str());
  stage.set_out();
  stage.enter();
  const int exit_code = kzgis::tools::run_command(static_cast<int>(argv.size()), argv.data());
  stage.leave();
  require(exit_code >= 0 && exit_code <= 2);
  std::cin.clear();
  std::cout.clear();
  return 0;
}
