#ifndef KZGIS_DATABANK_H
#define KZGIS_DATABANK_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "kzgis/box.h"
#include "kzgis/export.h"
#include "kzgis/result.h"

// Outlines of the world in World DataBank II files (".cbd"): reading a whole data bank,
// writing one, and looking into a single file.
//
// A data bank is a directory with a subdirectory for each continent and in each a file for
// each theme, where `WorldMap` (kzgis/worldmap.h) looks for them too.  Here segments come
// whole and as plain numbers: nothing is thinned, clipped or split.
//
//     const kzgis::DatabankQuery coasts{.themes = {kzgis::Theme::coasts}, .levels = {1, 2}};
//     const auto bank = kzgis::read_databank("/usr/share/wdb", coasts);
//     if (!bank) return complain(bank.error().message);
//     for (const kzgis::Segment& segment : bank->segments) ...
//
// Coordinates are whole arc-seconds, 3600 to a degree: latitudes from -324000 to 324000,
// north positive; longitudes from 0 to 1295999, eastwards.
//
// Every name of a file or directory may hold path variables (see FILEmap_variables).

namespace kzgis {

/// What outlines show, under the numbers of `overlaySections`.
enum class Theme : std::uint8_t { boundaries, provinces, coasts, rivers };
inline constexpr std::size_t kThemeCount = 4;

/// Where they lie, under the numbers of `mapSections`.
enum class Continent : std::uint8_t { africa, asia, europe, north_america, south_america };
inline constexpr std::size_t kContinentCount = 5;

/// The information levels that a bank knows, 0 to 15.
inline constexpr int kLevelCount = 16;

/// A piece of outline.
struct Segment {
  Continent continent{};
  Theme theme{};
  int level = 0;                       ///< its rank, 0 to 15
  std::vector<std::int32_t> lat, lon;  ///< its points in their order, equally long
};

/// Which segments are wanted: those that satisfy all four.
struct DatabankQuery {
  std::vector<Theme> themes;  ///< in any order; none means all
  std::vector<int> levels;    ///< 0 to 15, in any order; none means all
  /// In degrees, x the longitude, y the latitude.  Segments with a point inside, edges
  /// included, come whole.  Longitudes may be those of any turn from -720 to 720: 350 and -10
  /// are the same meridian.  With `min_x > max_x` the box reaches from `min_x` eastwards to
  /// the next meridian `max_x`, across the meridian where longitudes begin anew.
  std::optional<Box> box;
  std::vector<Continent> continents{};  ///< in any order; none means all
};

/// A file of a bank that is not sound, and the first thing that is wrong with it.
struct DamagedFile {
  std::string path;
  Error error;
};

/// What a bank holds.
struct Databank {
  /// By continent, within it by theme, within that in the order of the file.
  std::vector<Segment> segments;
  std::vector<DamagedFile> damaged;  ///< in the same order
};

/// Reads what a query asks for from the data bank in a directory.
///
/// The points of a segment are those that `WorldMap` uses of it: all that the file's count
/// says but the last.  Segments of less than two such points are no lines and do not come.
///
/// A file that is not there is nothing to complain of.  One that cannot be opened, is no
/// outline file, or holds a segment that is not sound (it lies past the end, is cut off by it,
/// leaves the globe, is not where the dictionary says, is of a level that does not exist) is
/// named in `damaged`; its other segments come all the same.  A segment comes, and its file is
/// named, where only the extents in the dictionary are wrong.  Of the files that the query
/// asks for, the segments of its levels are looked at.
///
/// Memory stays within a small multiple of the files' size: what they claim is held against
/// it, and where segments share their bytes, no more points are taken from a file than it has
/// bytes, and 65,536 more.
///
/// The handler of kzgis/status.h is told how much is done, in percent of all.
///
/// @return `cannot_read` when the directory has no outline file at all, or none of those that
///         are asked for can be opened; `bad_argument` when the query holds a theme, a
///         continent, a level or a box that cannot be; `out_of_memory`
KZGIS_EXPORT Result<Databank> read_databank(const std::string& directory,
                                            const DatabankQuery& query = {});

/// The place of a file below the directory of its bank: "africa.Map/cil.cbd".  Without memory it
/// throws `std::bad_alloc`.
KZGIS_EXPORT std::string databank_file_name(Continent continent, Theme theme);

/// The ends of one or many segments, in arc-seconds.
struct Extent {
  std::int32_t north = 0, south = 0, east = 0, west = 0;
};

/// What a single outline file holds, sound or not.
struct DatabankFile {
  /// An entry of the dictionary.
  struct Entry {
    Extent extent;  ///< as it stands; negative longitudes are brought into [0, 1296000)
    std::uint32_t offset_bytes = 0;
    unsigned level = 0;
    std::uint64_t points = 0;  ///< of the segment, that the file holds and readers use
  };
  struct Count {
    std::uint64_t segments = 0;
    std::uint64_t points = 0;
  };

  std::uint64_t file_bytes = 0;
  std::uint32_t dictionary_offset_bytes = 0;
  std::uint32_t claimed_segments = 0;  ///< by the header
  std::vector<Entry> entries;          ///< those that are wholly there and were looked at
  std::array<Count, kLevelCount> levels{};
  Count total;    ///< those of levels that do not exist included
  Extent extent;  ///< of the points themselves; all 0 when there are none
  /// What is wrong with it, a sentence each that begins "segment 3 ..." where it is about one,
  /// counted from 1: twenty at most, then how many more.  Empty when the file is sound.
  std::vector<std::string> flaws;
};

/// Reads one outline file and holds its parts against each other: offsets and counts against
/// the file's length, points against the ends that the dictionary gives, levels against the
/// sixteen that there are.
///
/// @return `cannot_read` when it cannot be opened; `bad_data` when it does not begin like an
///         outline file; `out_of_memory`
KZGIS_EXPORT Result<DatabankFile> inspect_databank_file(const std::string& path);

/// Collects segments and writes them as a data bank, so that both `read_databank` and a
/// `WorldMap` of the whole globe give back every one of them, point for point, those of each
/// theme and continent in the order in which they were added.
class KZGIS_EXPORT DatabankWriter {
 public:
  /// How large a file will be.
  struct FileSize {
    std::uint64_t segments = 0;
    std::uint64_t points = 0;
    std::uint64_t bytes = 0;
  };

  /// Adds a segment; the numbers are copied.
  ///
  /// @return success; `bad_argument` when a coordinate is off the globe, the level is not 0 to
  ///         15, the theme or the continent does not exist, or there are less than two points
  ///         or not as many latitudes as longitudes; `cannot_write` when its file would grow
  ///         past 4 GiB; `out_of_memory`.  What was refused leaves the writer as it was.
  Error add(const Segment& segment);

  /// Writes, for each theme that has a segment, the files of all five continents, those
  /// without a segment too: what stands there from an earlier bank would mix with this one.
  /// Files of other themes stay.
  ///
  /// Directories are made where they are missing.  Each file is written under a temporary name
  /// beside its own, and all are renamed when the last is complete.
  ///
  /// @return success; `cannot_write`, and then no file has changed unless the renaming itself
  ///         failed; `out_of_memory`
  Error write(const std::string& directory) const;

  /// Writes a single one of these files to a stream, whose state tells whether that worked.
  void write_file(Continent continent, Theme theme, std::ostream& out) const;

  FileSize size_of(Continent continent, Theme theme) const;

  /// Whether `write` writes the files of a theme: it has a segment.
  bool has(Theme theme) const;

 private:
  struct Entry {
    Extent extent;
    std::uint32_t offset_bytes = 0;  ///< within `data`
    std::uint16_t level = 0;
  };
  struct File {
    std::vector<Entry> entries;
    std::string data;  ///< the segments, one behind the other
    std::uint64_t points = 0;
  };
  const File& file(Continent continent, Theme theme) const;

  std::array<std::array<File, kThemeCount>, kContinentCount> files_;
};

}  // namespace kzgis

#endif
