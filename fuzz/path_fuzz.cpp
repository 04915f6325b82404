// Fuzzes what takes names: the expansion of path variables, the readers' names of files, the
// names of projections.
//
// Input: the value of an environment variable up to the first NUL; then a name.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fuzz/harness.h"
#include "kzgis/dem.h"
#include "kzgis/filetools.h"
#include "kzgis/projection.h"
#include "kzgis/shape.h"

namespace {

/// Every name in turn in the same objects, which keep theirs; none may open anything.
void name_everything(const std::string& name) {
  static KZ_GIS_ESRI_Shape_c shape(nullptr);
  static DEM_LRA record;
  static Projection projection;
  const std::string path = "/nonexistent/" + name;
  require(shape.FileName(path.c_str()) == nullptr);
  require(shape.ShapeFileName(path.c_str()) == nullptr);
  require(shape.IndexFileName(path.c_str()) == nullptr);
  require(record.setFN(UtString(path)) == -1);
  require(projection.setProjection(UtString(name)) == 1);
  require(projection.fetchProjectionName().size() > 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::uint8_t* const end = std::find(data, data + size, 0);
  const std::string value(data, end);
  const std::string name(std::min(end + 1, data + size), data + size);
  // setenv would keep every value that there ever was.
  static std::string variable;
  variable = "A=" + value;
  putenv(variable.data());
  setenv("B_1", "one:two::four", 1);

  char buffer[kzgis::kPathBytes];
  const char* const expanded = FILEmap_variables(name.c_str(), buffer);
  require(std::memchr(buffer, 0, sizeof buffer) != nullptr);
  require(expanded != nullptr || buffer[0] == 0);
  // Without a variable the name stays as it is.
  require(expanded == nullptr || name.find('$') != std::string::npos ||
          std::strcmp(expanded, name.c_str()) == 0);
  // What can be opened is anybody's file: "r" harms none of them, a name in a directory
  // that does not exist opens none.
  std::FILE* const file = FILEfopen(("/nonexistent/" + name).c_str(), "r");
  if (file != nullptr) std::fclose(file);
  silence();
  name_everything(name);
  return 0;
}
