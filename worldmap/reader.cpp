// Loading one file of the data bank: which of its segments count.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>

#include "kzgis/filetools.h"
#include "kzgis/status.h"
#include "kzgis/worldmap.h"
#include "worldmap/box.h"
#include "worldmap/databank.h"
#include "worldmap/polyline.h"
#include "worldmap/tracer.h"

using namespace kzgis;
using namespace kzgis::worldmap;

namespace {

/// The box between two corners; none when a corner is missing or not finite, since nothing
/// lies in it then.
std::optional<Box> box_between(const LatLon* lower_left, const LatLon* upper_right) {
  for (const LatLon* corner : {lower_left, upper_right}) {
    if (corner == nullptr || !std::isfinite(corner->fetchLat()) ||
        !std::isfinite(corner->fetchLon())) {
      return std::nullopt;
    }
  }
  Box box{};
  lower_left->fetchLat(&box.south);
  lower_left->fetchLon(&box.west);
  upper_right->fetchLat(&box.north);
  upper_right->fetchLon(&box.east);
  box.wraps = box.east < box.west;
  return box;
}

std::string progress_label(overlaySections overlay, mapSections section) {
  constexpr const char* kThemes[NumOverlaySections] = {"CIA: Geographic ", "CIA: Political ",
                                                       "CIA: Coastal ", "CIA: River ", "ReadCIA "};
  constexpr const char* kContinents[NumMapSections] = {"Africa", "Asia", "Europe", "NoAm", "SoAm"};
  return std::string(kThemes[overlay]) + kContinents[section];
}

/// Writes a message and gives back what a file that cannot be used loads.
int refuse(const char* message) {
  std::cerr << message << std::endl;
  return -1;
}

struct CloseFile {
  void operator()(std::FILE* stream) const { std::fclose(stream); }
};

}  // namespace

/// Whether segments of a level, as a file gives it, are wanted.
bool WorldMap::isRequested(int overlay, int level) const {
  return level < kMatrixColumns && requests_[overlay][level] != 0;
}

/// Loads one file into the collection of its theme.
///
/// @return the number of polylines in the collection, those of other files included; 0 when
///         the file cannot be opened; -1 when it is damaged or memory ran out, with what
///         was read from it before still in the collection
int WorldMap::readInMap(overlaySections overlay, mapSections section, const UtString& path) {
  const std::string label = progress_label(overlay, section);
  OMstatus_check(0, label.c_str(), 0);
  const std::unique_ptr<std::FILE, CloseFile> stream(FILEfopen(path.c_str(), "rb"));
  if (stream == nullptr) {
    if (verbose_ != 0) {
      std::cout << std::endl << "CIA: Could not open file " << path << std::endl;
    }
    return 0;
  }
  databank::File file(stream.get());
  databank::Header header;
  file.read(header);
  if (header.magic != databank::kMagic) return refuse("CIA: File has bad magic number");

  const std::uint64_t most_entries = file.size() / databank::kEntryBytes;
  const auto room = static_cast<std::size_t>(std::min<std::uint64_t>(header.count, most_entries));
  const std::unique_ptr<databank::Entry[]> entries(new (std::nothrow) databank::Entry[room]);
  if (entries == nullptr) return refuse("CIA: Out of memory initializing dictionary");
  if (file.seek(header.dictionary_offset) == 0) return refuse("CIA: bad seek");
  std::size_t count = 0;
  while (count < room && file.read(entries[count])) ++count;

  Polylines& collection = collections_[overlay];
  const std::optional<Box> box = box_between(lower_left_.get(), upper_right_.get());
  Tracer tracer(file, box.value_or(Box{}), precision_arcsec_, collection);
  // A segment header that the file does not hold is that of the segment before.
  databank::SegmentHeader segment;
  const std::size_t step = count / 10;
  int percent = 0;
  for (std::size_t j = 0; j < count; ++j) {
    if (step == 0) {
      OMstatus_check(100, label.c_str(), 0);
    } else if (j % step == 0) {
      percent += 10;  // beyond 100 where the step was rounded down
      OMstatus_check(percent, label.c_str(), 0);
    }
    const databank::Entry& entry = entries[j];
    if (!box || !box->overlaps(entry) || !isRequested(overlay, entry.level)) continue;
    if (file.seek(entry.offset) == 0) return refuse("CIA: bad seek");
    file.read(segment);
    if (const char* const failure = tracer.trace(segment)) return refuse(failure);
  }
  OMstatus_check(100, label.c_str(), 0);
  return static_cast<int>(collection.size());
}
