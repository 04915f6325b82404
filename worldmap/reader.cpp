// Loading one file of the data bank into a classic map: which of its segments count, what is
// reported on the way, and which line tells of what failed.
//
// Results, messages and the order of progress reports are those of docs/classic.md.  A file is
// visited in the order of its dictionary, by seeking to the segments that count.

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
#include "worldmap/bank_file.h"
#include "worldmap/boundary_box.h"
#include "worldmap/polyline.h"
#include "worldmap/tracer.h"

using namespace kzgis::worldmap;

namespace {

/// The box between two corners; none when a corner is missing or not finite, since nothing
/// lies in it then.
std::optional<BoundaryBox> box_between(const LatLon* lower_left, const LatLon* upper_right) {
  for (const LatLon* corner : {lower_left, upper_right}) {
    if (corner == nullptr || !std::isfinite(corner->fetchLat()) ||
        !std::isfinite(corner->fetchLon())) {
      return std::nullopt;
    }
  }
  BoundaryBox box{};
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
  const Stream stream(FILEfopen(path.c_str(), "rb"));
  if (stream == nullptr) {
    if (verbose_ != 0) {
      std::cout << std::endl << "CIA: Could not open file " << path << std::endl;
    }
    return 0;
  }
  File file(stream.get());
  Dictionary dictionary;
  switch (read_dictionary(file, dictionary)) {
    case Obstacle::none:
      break;
    case Obstacle::bad_magic:
      return refuse("CIA: File has bad magic number");
    case Obstacle::no_memory:
      return refuse("CIA: Out of memory initializing dictionary");
    case Obstacle::bad_seek:
      return refuse("CIA: bad seek");
  }
  const std::size_t count = dictionary.count;

  Polylines& collection = collections_[overlay];
  const std::optional<BoundaryBox> box = box_between(lower_left_.get(), upper_right_.get());
  Tracer tracer(file, box.value_or(BoundaryBox{}), precision_arcsec_, collection);
  // A segment header that the file does not hold is that of the segment before.
  SegmentHeader segment;
  const std::size_t step = count / 10;
  int percent = 0;
  for (std::size_t j = 0; j < count; ++j) {
    if (step == 0) {
      OMstatus_check(100, label.c_str(), 0);
    } else if (j % step == 0) {
      percent += 10;  // beyond 100 where the step was rounded down
      OMstatus_check(percent, label.c_str(), 0);
    }
    const Entry& entry = dictionary.entries[j];
    if (!box || !box->overlaps(entry) || !isRequested(overlay, entry.level)) continue;
    if (file.seek(entry.offset) == 0) return refuse("CIA: bad seek");
    static_cast<void>(file.read(segment));
    if (const char* const failure = tracer.trace(segment)) return refuse(failure);
  }
  OMstatus_check(100, label.c_str(), 0);
  return static_cast<int>(collection.size());
}
