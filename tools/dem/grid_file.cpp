// Reading elevation models, those that gzip compressed too, without trusting what the compressed
// bytes swell to.

#include "tools/dem/grid_file.h"

#ifdef KZGIS_HAS_ZLIB
#include <zlib.h>
#endif

#include <algorithm>
#include <cstdint>
#include <memory>

#include "tools/support/command_error.h"
#include "tools/support/input_file.h"

namespace kzgis::tools {

ElevationGrid read_grid(const std::string& file) {
  const std::string path = expanded(file);
  const std::string why = why_not_readable(path);
  if (!why.empty()) throw CommandError(why);
  auto grid = path.ends_with(".gz") ? read_dem(read_gzip(path), file) : read_dem(path);
  if (!grid) fail(grid.error());
  return *std::move(grid);
}

#ifdef KZGIS_HAS_ZLIB

std::string read_gzip(const std::string& file) {
  // Deflate can make a thousand bytes of one.  Relief has 5 to 12 times the bytes of its
  // compressed file, level ground up to 260; the largest quadrangles have 10 MB.
  constexpr std::uintmax_t kAlwaysBytes = std::uintmax_t{16} << 20U;
  constexpr std::uintmax_t kMostTimes = 32;
  const std::uintmax_t most_bytes = std::max(kAlwaysBytes, kMostTimes * size_of(file));
  struct Close {
    void operator()(gzFile stream) const { gzclose(stream); }
  };
  const std::unique_ptr<gzFile_s, Close> stream(gzopen(file.c_str(), "rb"));
  if (!stream) throw CommandError(file + ": cannot be read");
  std::string bytes;
  std::string block(std::size_t{1} << 16U, '\0');
  for (;;) {
    const int count = gzread(stream.get(), block.data(), static_cast<unsigned>(block.size()));
    if (count < 0) throw BadDataError(file + ": what gzip compressed is damaged");
    if (count == 0) break;
    bytes.append(block, 0, static_cast<std::size_t>(count));
    if (bytes.size() > most_bytes) {
      throw CommandError(file +
                         ": more than 16 MiB, and 32 times its size, uncompressed; if that is "
                         "right, uncompress it with gunzip");
    }
  }
  int error = Z_OK;
  gzerror(stream.get(), &error);
  if (error != Z_OK) throw BadDataError(file + ": what gzip compressed is cut off");
  return bytes;
}

#else

std::string read_gzip(const std::string& file) {
  throw CommandError(file + ": this kzgis was built without zlib; uncompress it with gunzip");
}

#endif

}  // namespace kzgis::tools
