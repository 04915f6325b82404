// Fuzzes `kzgis project` with files of comma-separated values.
//
// Input: a byte for the options, a byte for the projection; the rest is the file.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/harness.h"
#include "fuzz/scratch.h"
#include "tools/command.h"

namespace {

constexpr std::array kProjections = {"cartesian", "mercator",          "lambert cylindrical",
                                     "gnomonic",  "stereographic",     "orthographic",
                                     "postel",    "lambert azimuthal", "lambert conic conformal",
                                     "albers",    "cassini-soldner",   "bonne",
                                     "werner",    "sanson-flamsteed",  "globe"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const ScratchDirectory scratch;
  silence();
  if (size < 2) return 0;
  const unsigned options = data[0];
  scratch.write("points.csv", data + 2, size - 2);
  const std::string input = scratch.path() + "/points.csv";
  const std::string output = scratch.path() + "/out.csv";
  std::vector<const char*> argv{
      "kzgis",       "project", "--to",        kProjections[data[1] % kProjections.size()],
      "--parallels", "20,60",   "--base",      "30,10",
      input.c_str(), "-o",      output.c_str()};
  if ((options & 1U) != 0) argv.push_back("--inverse");
  if ((options & 2U) != 0) argv.push_back("--dms");
  if ((options & 4U) != 0) argv.insert(argv.end(), {"--columns", "2,1,3"});
  if ((options & 8U) != 0) argv.insert(argv.end(), {"--columns", "lat,lon"});
  if ((options & 16U) != 0) argv.push_back("--classic");
  const int exit_code = kzgis::tools::run_command(static_cast<int>(argv.size()), argv.data());
  require(exit_code >= 0 && exit_code <= 2);
  return 0;
}
