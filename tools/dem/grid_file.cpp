#include "tools/dem/grid_file.h"

#ifdef KZGIS_HAS_ZLIB
#include <zlib.h>
#endif

#include <memory>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"

namespace kzgis::tools {

ElevationGrid read_grid(const std::string& file) {
  const std::string path = expanded(file);
  const std::string why = why_not_readable(path);
  if (!why.empty()) throw CommandError(why);
  ElevationGrid grid = path.ends_with(".gz") ? read_dem(read_gzip(path), file) : read_dem(path);
  if (grid.error) throw CommandError(grid.error.message);
  return grid;
}

#ifdef KZGIS_HAS_ZLIB

std::string read_gzip(const std::string& file) {
  // A quadrangle has a few megabytes; a small file can pretend to be any size.
  constexpr std::size_t kMostBytes = std::size_t{1} << 30U;
  struct Close {
    void operator()(gzFile stream) const { gzclose(stream); }
  };
  const std::unique_ptr<gzFile_s, Close> stream(gzopen(file.c_str(), "rb"));
  if (!stream) throw CommandError(file + ": cannot be read");
  std::string bytes;
  std::string block(std::size_t{1} << 16U, '\0');
  for (;;) {
    const int count = gzread(stream.get(), block.data(), static_cast<unsigned>(block.size()));
    if (count < 0) throw CommandError(file + ": what gzip compressed is damaged");
    if (count == 0) break;
    bytes.append(block, 0, static_cast<std::size_t>(count));
    if (bytes.size() > kMostBytes) throw CommandError(file + ": more than 1 GiB uncompressed");
  }
  int error = Z_OK;
  gzerror(stream.get(), &error);
  if (error != Z_OK) throw CommandError(file + ": what gzip compressed is cut off");
  return bytes;
}

#else

std::string read_gzip(const std::string& file) {
  throw CommandError(file + ": this kzgis was built without zlib; uncompress it with gunzip");
}

#endif

}  // namespace kzgis::tools
