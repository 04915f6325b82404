// The map itself: configuration, the collections and what they own, the loop over all
// files of a data bank, and the report.

#include "kzgis/worldmap.h"

#include <algorithm>
#include <iostream>
#include <new>
#include <utility>

#include "worldmap/boundary_box.h"
#include "worldmap/layout.h"
#include "worldmap/polyline.h"

namespace {

constexpr const char* kDefaultDirectory = "$KZ_PATH<0>/data/Maps";
constexpr const char* kPlatesFile = "USGS_plates.txt";

/// The next of consecutive values, or the end marker behind the last one.
template <typename Section>
void advance(Section& section, Section last, Section end) {
  section = section < last ? static_cast<Section>(section + 1) : end;
}

/// Whether an enumerator, which may be any number, may index an array of `count` elements.
bool indexes(int value, int count) { return value >= 0 && value < count; }

}  // namespace

void increment(mapSections& section) { advance(section, SoAm, NumMapSections); }
void increment(overlaySections& section) { advance(section, Plates, NumOverlaySections); }
void increment(infoLevels& level) { advance(level, Level15, NumInfoLevels); }

WorldMap::WorldMap() : WorldMap(kDefaultDirectory) {}

// A corner that has no memory stays null, and nothing lies in the box then.
WorldMap::WorldMap(UtString dir)
    : data_directory_(std::move(dir)),
      lower_left_(new (std::nothrow) LatLon(15.0, -175.0)),
      upper_right_(new (std::nothrow) LatLon(85.0, -45.0)) {
  using namespace kzgis::worldmap;
  std::copy(kContinentDirectories.begin(), kContinentDirectories.end(), continent_directories_);
  std::copy(kThemeFiles.begin(), kThemeFiles.end(), overlay_files_);
  overlay_files_[Plates] = kPlatesFile;
}

WorldMap::~WorldMap() {
  clearMaps();
  if (verbose_ != 0) {
    std::cout << "WorldMap::~WorldMap(): Worldmap polygons cleaned out. Class destroyed."
              << std::endl;
  }
}

// The collections keep their storage: the next load fills it again.
void WorldMap::clearMaps() {
  for (Polylines& collection : collections_) {
    for (kzgis::worldmap::Polyline* line : collection) kzgis::worldmap::DeletePolyline{}(line);
    collection.clear();
  }
}

UtString WorldMap::fetchCIADirectory() const { return data_directory_; }

void WorldMap::setCIADirectory(const UtString& dir) { data_directory_ = dir; }

// Enumerators may be any number: each is held against its array's length.
UtString WorldMap::fetchContinentDir(mapSections section) const {
  return indexes(section, NumMapSections) ? continent_directories_[section] : UtString();
}

void WorldMap::setContinentDir(mapSections section, const UtString& dir) {
  if (indexes(section, NumMapSections)) continent_directories_[section] = dir;
}

UtString WorldMap::fetchOverlaysFile(overlaySections overlay) const {
  return indexes(overlay, NumOverlaySections) ? overlay_files_[overlay] : UtString();
}

void WorldMap::setOverlaysFile(overlaySections overlay, const UtString& file) {
  if (indexes(overlay, NumOverlaySections)) overlay_files_[overlay] = file;
}

int WorldMap::fetchPOI(overlaySections overlay, infoLevels level) const {
  if (!indexes(overlay, NumOverlaySections) || !indexes(level, kMatrixColumns)) return 0;
  return requests_[overlay][level];
}

void WorldMap::setPOI(overlaySections overlay, infoLevels level, int wanted) {
  if (!indexes(overlay, NumOverlaySections) || !indexes(level, kMatrixColumns)) return;
  requests_[overlay][level] = wanted;
}

kz_long WorldMap::fetchPrecision() const { return precision_arcsec_; }

void WorldMap::setPrecision(kz_long arcsec) { precision_arcsec_ = arcsec; }

LatLon* WorldMap::fetchLowLeftBoundary() const { return lower_left_.get(); }

LatLon* WorldMap::fetchUpRightBoundary() const { return upper_right_.get(); }

UtVector<UtVector<LatLon*>*>& WorldMap::fetchPolygonCollection(overlaySections overlay) {
  return collections_[indexes(overlay, NumOverlaySections) ? overlay : Plates];
}

int WorldMap::insideBoundary(LatLon point) const {
  // Degrees as they are kept, with no thought of longitude 0: the loader has a test of its own.
  if (lower_left_ == nullptr || upper_right_ == nullptr) return 0;
  return lower_left_->fetchLat() <= point.fetchLat() &&
                 point.fetchLat() <= upper_right_->fetchLat() &&
                 lower_left_->fetchLon() <= point.fetchLon() &&
                 point.fetchLon() <= upper_right_->fetchLon()
             ? 1
             : 0;
}

int WorldMap::withinExtents(kz_long west, kz_long south, kz_long east, kz_long north, kz_long lon,
                            kz_long lat) {
  // Equal longitudes mean the whole way round here, and a box of no width to the loader: the
  // interface fixes both (WithinExtents.TakesEqualLongitudesForABoxAcrossZero).
  const kzgis::worldmap::BoundaryBox box{west, south, east, north, west >= east};
  return box.holds(lon, lat) ? 1 : 0;
}

void WorldMap::setVerbose(int verbose) { verbose_ = verbose; }

/// Whether any of the levels 0 to 15 of a theme is requested.
bool WorldMap::anyRequest(int overlay) const {
  for (int level = 0; level < NumInfoLevels; ++level) {
    if (requests_[overlay][level] != 0) return true;
  }
  return false;
}

// A theme's collection gathers all continents, in their order, each in the order of its file.  A
// file that fails is passed over: the others do not depend on it.
void WorldMap::readData() {
  clearMaps();
  bool requested = false;
  for (int overlay = 0; overlay < NumOverlaySections; ++overlay) {
    requested = requested || anyRequest(overlay);
  }
  if (!requested) {
    if (verbose_ != 0) {
      std::cout << "WorldMap::readData: No information has been requested from CIA files"
                << std::endl
                << "WorldMap::readData: Shouldn't you be calling WorldMap::setPOI() first?"
                << std::endl;
    }
    return;
  }
  for (mapSections section = Africa; section != NumMapSections; increment(section)) {
    // Plate boundaries are a text file of another kind: the loop stops before them.
    for (overlaySections overlay = Geographic; overlay != Plates; increment(overlay)) {
      if (!anyRequest(overlay)) continue;
      const UtString path =
          data_directory_ + "\\" + continent_directories_[section] + "\\" + overlay_files_[overlay];
      if (verbose_ != 0) {
        std::cout << "WorldMap::readData: Opening " << path << "..." << std::flush;
      }
      const int count = readInMap(overlay, section, path);
      if (verbose_ != 0) std::cout << "Read " << count << " polygons." << std::endl;
    }
  }
}

// The report's lines are kept, down to the blanks (docs/classic.md).
std::ostream& operator<<(std::ostream& os, const WorldMap& map) {
  os << "----- CIA World Map information" << std::endl
     << "Data resides in directory " << map.data_directory_ << std::endl
     << "Continents are in subdirectories:" << std::endl;
  for (const UtString& directory : map.continent_directories_) {
    os << '\t' << directory << std::endl;
  }
  os << "Overlay files are:" << std::endl;
  for (const UtString& file : map.overlay_files_) os << '\t' << file << std::endl;
  os << "+++Data Specifics:" << std::endl << "Lower left boundary is ";
  if (map.lower_left_ != nullptr) os << *map.lower_left_;
  os << std::endl << "Upper right boundary is ";
  if (map.upper_right_ != nullptr) os << *map.upper_right_;
  os << std::endl << "Precision is " << map.precision_arcsec_ << " seconds of arc" << std::endl;
  for (int i = 0; i < NumOverlaySections; ++i) {
    os << "Overlay section " << i << " currently contains " << map.collections_[i].size()
       << " polygons." << std::endl;
  }
  return os.flush();
}
