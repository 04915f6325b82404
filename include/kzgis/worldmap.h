#ifndef KZGIS_WORLDMAP_H
#define KZGIS_WORLDMAP_H

#include <cstdint>
#include <iosfwd>
#include <memory>

#include "kzgis/export.h"
#include "kzgis/latlon.h"
#include "kzgis/types.h"
#include "kzgis/utstring.h"
#include "kzgis/utvector.h"

/// The continents of the data bank, in the order in which they are loaded.
enum mapSections : std::int32_t {
  Africa = 0,
  Asia = 1,
  Europe = 2,
  NoAm = 3,
  SoAm = 4,
  NumMapSections = 5,  ///< ends an iteration
};

/// The themes of the data bank.
enum overlaySections : std::int32_t {
  Geographic = 0,
  Political = 1,
  Coastal = 2,
  River = 3,
  Plates = 4,  ///< has a file name and a collection, and is never loaded
  NumOverlaySections = 5,
};

/// The information levels: the rank that a file gives each of its segments.
enum infoLevels : std::int32_t {
  Level0 = 0,
  Level1 = 1,
  Level2 = 2,
  Level3 = 3,
  Level4 = 4,
  Level5 = 5,
  Level6 = 6,
  Level7 = 7,
  Level8 = 8,
  Level9 = 9,
  Level10 = 10,
  Level11 = 11,
  Level12 = 12,
  Level13 = 13,
  Level14 = 14,
  Level15 = 15,
  NumInfoLevels = 16,
};

/// Advances a loop variable: the last member, and whatever lies past it, becomes the end
/// marker.  It never wraps back to 0.
KZGIS_EXPORT void increment(mapSections& section);
KZGIS_EXPORT void increment(overlaySections& section);
KZGIS_EXPORT void increment(infoLevels& level);

/// Outlines of the world, loaded from World DataBank II files (".cbd") into polylines.
///
/// A data bank is a directory with one subdirectory per continent and in each one file
/// per theme.  A caller says what it wants, then loads it:
///
///     WorldMap map("/usr/share/wdb");
///     map.setPOI(Coastal, Level1, 1);                  // coasts of rank 1 ...
///     *map.fetchLowLeftBoundary() = LatLon(30.0, 340.0);  // ... from 30 N, 20 W
///     *map.fetchUpRightBoundary() = LatLon(70.0, 40.0);   // ... to 70 N, 40 E,
///     map.setPrecision(60);                            // ... a point per arc-minute
///     map.readData();
///     for (UtVector<LatLon*>* line : map.fetchPolygonCollection(Coastal)) ...
///
/// What a load keeps of a file:
///  - a segment counts when its extents overlap the boundary box and its level is
///    requested for the theme; segments that only touch the box do not count;
///  - of each segment, the first run of points inside the box, edges included.  Where
///    the run leaves the box it ends with a point cut on the edge it crossed, on one
///    axis only; with a box across longitude 0 it ends with the outside point itself;
///  - with a box whose western edge lies east of its eastern one, a box across longitude
///    0, the run is split where it crosses longitude 0, at the crossing point's latitude;
///  - points nearer to the last one kept than the precision are dropped, except the last;
///  - the last point that a segment's file data holds is not used;
///  - polylines of one point are dropped.
///
/// Everything here belongs to the map: its two corners, its polylines and their points.
/// The points may be changed but not freed; loading, `clearMaps` and destruction
/// do.  A map cannot be copied.
///
/// Loading tells its progress to the handler of kzgis/status.h, as percentages that are
/// not kept below 100.
///
/// An enumerator past its last member is safe: it reads as empty, 0 or the collection of
/// `Plates`, and writes nothing.
///
/// Without memory the constructors, `readData` and the operations that give or take a name
/// throw `std::bad_alloc`; a map whose loading threw keeps what it had loaded and can load
/// again.  Where memory runs out inside a file, `readData` may end that file instead, with a
/// line on standard error (see there), or take the file for one that cannot be opened.
///
/// For whole segments as plain numbers see kzgis/databank.h.
class KZGIS_EXPORT WorldMap {
 public:
  /// Data directory "$KZ_PATH<0>/data/Maps", subdirectories "africa.Map", "asia.Map",
  /// "europe.Map", "namer.Map", "samer.Map", files "bdy.cbd", "pby.cbd", "cil.cbd",
  /// "riv.cbd", "USGS_plates.txt"; precision one degree; the box from 15 N, 175 W to
  /// 85 N, 45 W; nothing requested, nothing loaded, silent.
  WorldMap();
  /// The same with a data directory of the caller's.
  WorldMap(UtString dir);
  WorldMap(const WorldMap&) = delete;
  WorldMap& operator=(const WorldMap&) = delete;
  /// Deletes what was loaded; a verbose map says so on standard output.
  ~WorldMap();

  /// Deletes all polylines and points; the five collections become empty.
  void clearMaps();

  /// The root of the data bank.  Path variables in it are expanded when a file is opened.
  UtString fetchCIADirectory() const;
  void setCIADirectory(const UtString& dir);
  /// The subdirectory of a continent.
  UtString fetchContinentDir(mapSections section) const;
  void setContinentDir(mapSections section, const UtString& dir);
  /// The name of a theme's file, the same in every continent.
  UtString fetchOverlaysFile(overlaySections overlay) const;
  void setOverlaysFile(overlaySections overlay, const UtString& file);

  /// Whether segments of this level of this theme are loaded: 0 when not.
  int fetchPOI(overlaySections overlay, infoLevels level) const;
  /// Requests a level of a theme, with any number but 0, or no longer, with 0.
  ///
  /// `readData` opens the files of a theme that has a level from 0 to 15 requested; 16
  /// and 17 are kept too, for files that have them.
  void setPOI(overlaySections overlay, infoLevels level, int wanted);

  /// The smallest spacing kept between points of a polyline, in arc-seconds.
  kz_long fetchPrecision() const;
  /// Stores the precision as it is; what counts is its square.
  void setPrecision(kz_long arcsec);

  /// The south-west corner of the boundary box, owned by the map and never null but
  /// after a failed allocation in the constructor.  Assigning through the pointer
  /// changes the box of the next load.  A box with a coordinate that is not a finite
  /// number holds nothing.
  LatLon* fetchLowLeftBoundary() const;
  /// The north-east corner, likewise.
  LatLon* fetchUpRightBoundary() const;

  /// The polylines of one theme, those of all continents in the order of loading.
  UtVector<UtVector<LatLon*>*>& fetchPolygonCollection(overlaySections overlay);

  /// 1 when the point lies in the boundary box, edges included, else 0.  Compares
  /// longitudes as they are kept, in [0, 360): no point lies in a box across longitude 0.
  int insideBoundary(LatLon point) const;

  /// 1 when a position lies in a box, edges included, else 0; all in arc-seconds.
  ///
  /// A box whose western bound is not less than its eastern one lies across longitude 0:
  /// it takes longitudes from `west` to 1296000 and from 0 to `east`.
  static int withinExtents(kz_long west, kz_long south, kz_long east, kz_long north, kz_long lon,
                           kz_long lat);

  /// Prints what loading does on standard output when `verbose` is not 0: the files it
  /// opens, those it cannot open, the polylines after each.  A new map is silent.
  void setVerbose(int verbose);

  /// Discards what was loaded and loads every requested theme of every continent.
  ///
  /// A file that cannot be opened or read does not stop the others; what was read from
  /// it stays.  A named pipe is a file that cannot be opened.  A file with a wrong first
  /// number or a place that cannot be sought is reported on standard error, in a line that
  /// begins with "CIA: ".  One that ends early is not: of its dictionary the whole entries
  /// count, and in a segment the last word that it has stands for those that are missing.
  /// Without memory for its
  /// dictionary, a polyline or a point, a file ends with one of these lines, "CIA: Out of
  /// memory " and "initializing dictionary", "preparing new polyline", "instancing new
  /// polyline", "instancing new map point" or "instancing new map point 2"; the polyline at
  /// hand is dropped.
  void readData();

 private:
  friend KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const WorldMap& map);

  static constexpr int kMatrixColumns = 18;
  using Polylines = UtVector<UtVector<LatLon*>*>;

  int readInMap(overlaySections overlay, mapSections section, const UtString& path);
  bool anyRequest(int overlay) const;
  bool isRequested(int overlay, int level) const;

  UtString data_directory_;
  UtString continent_directories_[NumMapSections];
  UtString overlay_files_[NumOverlaySections];
  kz_long precision_arcsec_ = 3600;
  int verbose_ = 0;
  std::unique_ptr<LatLon> lower_left_;
  std::unique_ptr<LatLon> upper_right_;
  int requests_[NumOverlaySections][kMatrixColumns] = {};
  Polylines collections_[NumOverlaySections];
};

/// Writes the directories, files, box and precision of a map, and how many polylines each
/// theme holds, in 23 lines.
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const WorldMap& map);

#endif
