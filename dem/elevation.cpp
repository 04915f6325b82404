// A USGS DEM as one grid: profiles run from south to north and follow each other from west to
// east; the grid runs from west to east, row after row from the north.
//
// Placement follows chapter 2 of "Standards for Digital Elevation Models" (USGS): a profile's
// base coordinates are those of its southernmost point.  A 7.5-minute quadrangle, cut along
// meridians and parallels, is a tilted quadrilateral in UTM: its profiles differ in length.
//
// The steps, each of which can refuse the file:
//   read_header    record A; plan and units of the grid are known
//   read_profiles  every profile is in memory, its elevations final but for their places
//   place          the grid's size is known and bounded by the file's, and each profile has a
//                  column that no other has, and a row
//   make_grid      the elevations are in their cells, and what has none is NaN
// Refusals name the byte that they speak of.

#include "kzgis/elevation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "dem/block_cursor.h"
#include "dem/layout.h"
#include "dem/number_text.h"
#include "kzgis/filetools.h"
#include "platform/no_memory.h"

namespace kzgis {
namespace {

using dem::BlockCursor;
using dem::ProfileHeader;
using dem::RecordA;

constexpr double kRadiansPerDegree = 0.017453292519943295;
/// What a cell without an elevation holds.  Comparisons with it are false.
constexpr float kNoElevation = std::numeric_limits<float>::quiet_NaN();

/// The largest magnitude of a coordinate, step or datum that is believed.  No number of the
/// Earth is larger, and sums and products of smaller ones stay far from overflow.
constexpr double kLargest = 1e12;

/// Rows and columns of a grid at most.
constexpr double kMost = 1e8;

/// Profiles are the grid's columns; as many are stored at a time as have their elevations of
/// one row in a few lines of cache, and as the first cache has room for a line of each.
constexpr std::size_t kTogether = 64;

bool is_sane(double value) { return std::abs(value) <= kLargest; }  // false for NaN

/// A field as a message shows it.
std::string quoted(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) out += c >= ' ' && c <= '~' ? c : '?';
  return out + '"';
}

/// A text without the blanks around it.
std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// A profile: first as it stands in the file, then with its place in the grid.
struct Profile {
  ProfileHeader header;
  std::size_t offset = 0;  ///< of its first byte
  std::vector<float> values = {};
  kz_long column = 0;
  kz_long row = 0;  ///< of its first elevation, counted from the south; may lie outside
  std::size_t count() const { return static_cast<std::size_t>(header.size[0]); }
};

/// The number in a field of six characters; the two before it must be readable.
///
/// Nearly all fields are blanks and digits, which are read at once; signs and whatever else
/// is there are left to the general reader.
///
/// @return nothing when the field holds anything else than one integer
std::optional<int> elevation_of(const char* field) {
  if (const dem::PlainNumber plain = dem::plain_number(field); plain.odd == 0) return plain.value;
  const std::string_view text(field, dem::kElevationWidth);
  const auto number = dem::integer_of(text);
  if (number.length == 0 || !dem::is_whole(number, text)) return std::nullopt;
  return number.value;
}

/// Reads one file.  Each step answers whether it went well, and sets the error when not.
///
/// A refused file leaves no half-made grid: what the caller sees then is an empty one.
class GridReader {
 public:
  /// @param source  what a BlockCursor reads from
  template <class Source>
  GridReader(Source source, std::string_view name) : name_(name), cursor_(source) {}

  Result<ElevationGrid> read() {
    if (read_header() && read_profiles() && place() && make_grid()) return std::move(grid_);
    return std::move(error_);
  }

 private:
  /// Sets the error; false, so that a step can end with it.
  bool refuse(const std::string& why) {
    error_ = {ErrorKind::bad_data, std::string(name_) + ": " + why};
    return false;
  }
  /// The same about a profile that is being read, so that its number is one past those stored.
  bool refuse_profile(const Profile& profile, const std::string& why) {
    return refuse("profile " + std::to_string(profiles_.size() + 1) + " at byte " +
                  std::to_string(profile.offset) + ": " + why);
  }

  bool read_header();
  bool read_profiles();
  bool read_elevations(Profile& profile);
  bool place();
  bool make_grid();
  void fill_columns(std::span<const Profile> profiles);
  void sum_up();

  std::string_view name_;
  BlockCursor cursor_;
  std::vector<Profile> profiles_;
  ElevationGrid grid_;
  Error error_;  ///< why the file is refused
};

/// Reads record A and derives from it all that does not depend on profiles.
///
/// A file of any other kind is refused here: its bytes hardly make codes, sizes, steps and
/// coordinates at all the places where they are asked for.
bool GridReader::read_header() {
  RecordA& a = grid_.header;
  const auto missing = dem::read_record_a(
      a, [this](auto... field) { return cursor_.read(field...); },
      [this](int bytes) { return cursor_.skip(bytes); });
  if (missing) {
    return refuse("not a USGS DEM: the file ends within its header, at byte " +
                  std::to_string(cursor_.block_end()));
  }
  // The standard has 1 for a regular grid; files with a 4 are met, and GDAL reads them too.
  if (a.pattern != 1 && a.pattern != 4) {
    return refuse("not a USGS DEM of a regular grid: the pattern code at byte 150 is not 1");
  }
  // The standard has the codes 0 to 20; files with -9999 are met, and GDAL reads them too.
  if (a.ground_plan != -9999 && (a.ground_plan < 0 || a.ground_plan > 20)) {
    return refuse("not a USGS DEM: byte 156 has no code of a ground plan");
  }
  if (a.size[1] < 1) {
    return refuse("the header gives no number of profiles at byte 858");
  }
  for (int i = 0; i < 3; ++i) {
    if (!(a.resolution[i] > 0.0) || !is_sane(a.resolution[i])) {
      return refuse("the header gives no spatial resolution at byte " +
                    std::to_string(816 + 12 * i));
    }
  }
  for (int i = 0; i < 8; ++i) {
    if (!is_sane(a.corners[i / 2][i % 2])) {
      return refuse("the header gives no corner coordinate at byte " +
                    std::to_string(546 + 24 * i));
    }
  }
  if (a.ground_plan == 0 && a.ground_units != 0 && a.ground_units != 3) {
    return refuse(
        "the header has geographic coordinates at byte 156, but not their units at "
        "byte 528");
  }
  // Accepted: what follows translates codes, and an unknown one leaves the grid's default.
  grid_.name = trimmed(a.quadrangle.str());
  grid_.zone = a.ground_zone;
  switch (a.ground_plan) {
    case 0:
      grid_.plan = GroundPlan::geographic;
      grid_.ground_unit = GroundUnit::degrees;
      break;
    case 1:
      grid_.plan = GroundPlan::utm;
      break;
    case 2:
      grid_.plan = GroundPlan::state_plane;
      break;
    default:
      break;
  }
  if (a.ground_plan != 0) {
    if (a.ground_units == 1) grid_.ground_unit = GroundUnit::feet;
    if (a.ground_units == 2) grid_.ground_unit = GroundUnit::metres;
  }
  if (a.elevation_units == 1) grid_.elevation_unit = ElevationUnit::feet;
  if (a.elevation_units == 2) grid_.elevation_unit = ElevationUnit::metres;
  return true;
}

/// Reads the profiles, as many as record A announces; whatever follows them is left alone.
///
/// The number is a claim, and is not trusted with memory: each profile must be there before
/// the next one is looked for.  Every profile begins a block.
bool GridReader::read_profiles() {
  const int announced = grid_.header.size[1];
  for (int i = 0; i < announced; ++i) {
    cursor_.next_block();
    Profile profile;
    profile.offset = cursor_.offset();
    if (cursor_.at_end()) {
      return refuse("the file ends at byte " + std::to_string(profile.offset) +
                    ", before profile " + std::to_string(i + 1) + " of " +
                    std::to_string(announced));
    }
    ProfileHeader& b = profile.header;
    const auto missing =
        dem::read_profile_header(b, [this](auto... field) { return cursor_.read(field...); });
    if (missing) return refuse_profile(profile, "the file ends in its header");
    for (int k = 0; k < 2; ++k) {
      if (b.id[k] == dem::kNotANumber) {
        return refuse_profile(profile, "its row and column are not numbers");
      }
      if (!is_sane(b.base[k])) {
        return refuse_profile(profile, "its base coordinates are not numbers");
      }
    }
    if (!is_sane(b.local_datum)) return refuse_profile(profile, "its datum is not a number");
    if (b.size[0] < 0 || b.size[1] != 1) {
      return refuse_profile(profile, "its elevations are not one column");
    }
    if (!read_elevations(profile)) return false;
    profiles_.push_back(std::move(profile));
  }
  return true;
}

/// Reads the elevations of a profile, as many as a block holds at a time, and makes them final:
/// the field times the resolution in z, plus the local datum, or NaN for a void.
bool GridReader::read_elevations(Profile& profile) {
  const double resolution = grid_.header.resolution[2];
  const double datum = profile.header.local_datum;
  std::size_t left = profile.count();
  // The number of elevations is a claim: no more than a usual profile's on its word.
  profile.values.reserve(std::min(left, std::size_t{4096}));
  while (left > 0) {
    const std::string_view fields = cursor_.take_elevations(left);
    if (fields.empty()) {
      const std::string what = cursor_.in_last_block() ? "the file" : "its line";
      return refuse_profile(profile, what + " ends within elevation " +
                                         std::to_string(profile.count() - left + 1) + " of " +
                                         std::to_string(profile.count()) + ", at byte " +
                                         std::to_string(cursor_.block_end()));
    }
    const std::size_t count = fields.size() / dem::kElevationWidth;
    std::array<int, dem::kBlockBytes / dem::kElevationWidth> raw{};
    const bool all_plain = dem::plain_numbers(fields.data(), count, raw.data());
    for (std::size_t i = 0; i < count && !all_plain; ++i) {
      const char* const field = fields.data() + i * dem::kElevationWidth;
      const auto elevation = elevation_of(field);
      if (!elevation) {
        return refuse_profile(
            profile,
            "elevation " + std::to_string(profile.count() - left + i + 1) + " at byte " +
                std::to_string(cursor_.offset() - fields.size() + i * dem::kElevationWidth) +
                " is " + quoted({field, dem::kElevationWidth}) + ", not a number");
      }
      raw[i] = *elevation;
    }
    // Apart from the loops above, which read text: this one the compiler can turn into
    // operations on several numbers at once.
    profile.values.resize(profile.values.size() + count);
    float* const values = profile.values.data() + profile.values.size() - count;
    for (std::size_t i = 0; i < count; ++i) {
      const auto elevation = static_cast<float>(raw[i] * resolution + datum);
      values[i] = raw[i] == dem::kVoidElevation ? kNoElevation : elevation;
    }
    left -= count;
  }
  return true;
}

/// Lays out the grid and gives each profile its place.
///
/// The quadrangle's corners tell how far the grid reaches from south to north, the base
/// coordinates how far from west to east.  Coordinates become rows and columns by rounding to
/// the nearest step; until the units are divided out at the end, all are in the file's unit.
bool GridReader::place() {
  const RecordA& a = grid_.header;
  const double step_x = a.resolution[0];
  const double step_y = a.resolution[1];
  double south = std::min(a.corners[0][1], a.corners[3][1]);
  double north = std::max(a.corners[1][1], a.corners[2][1]);
  // The corners of a projected quadrangle lie anywhere, its elevations at whole multiples of
  // the step; the rows must stand there.
  if (grid_.plan != GroundPlan::geographic) {
    south = std::floor(south / step_y) * step_y;
    north = std::ceil(north / step_y) * step_y;
  }
  const auto [first, last] = std::minmax_element(
      profiles_.begin(), profiles_.end(),
      [](const Profile& p, const Profile& q) { return p.header.base[0] < q.header.base[0]; });
  const double west = first->header.base[0];
  const double columns = std::floor((last->header.base[0] - west) / step_x + 0.5) + 1.0;
  const double rows = std::floor((north - south) / step_y + 1.5);
  // A sound file has more bytes than its grid has cells: an elevation takes six bytes and a
  // profile at least 144, while few cells of a quadrangle are outside of it.  This bounds the
  // grid's memory by four times the file's size.  Neither number is beyond an int then, and
  // NaN is refused too.
  if (!(rows >= 1.0 && rows <= kMost && columns <= kMost &&
        columns * rows <= static_cast<double>(cursor_.offset()))) {
    return refuse(
        "the corners at byte 546 and steps at byte 816 make a grid that its profiles do "
        "not fill");
  }

  for (Profile& profile : profiles_) {
    const double row = std::floor((profile.header.base[1] - south) / step_y + 0.5);
    profile.column =
        static_cast<kz_long>(std::floor((profile.header.base[0] - west) / step_x + 0.5));
    // Whatever lies beyond either end is as far as that; adding a profile's length, which has
    // six digits at most, still fits an int.
    profile.row = static_cast<kz_long>(std::clamp(row, -1e9, 1e9));
  }
  // By column, so that twins are neighbours, and neighbours are stored together later.  By
  // offset within a column, so that the message names the first of the two first.
  std::sort(profiles_.begin(), profiles_.end(), [](const Profile& p, const Profile& q) {
    return std::pair(p.column, p.offset) < std::pair(q.column, q.offset);
  });
  const auto twin =
      std::adjacent_find(profiles_.begin(), profiles_.end(),
                         [](const Profile& p, const Profile& q) { return p.column == q.column; });
  if (twin != profiles_.end()) {
    return refuse("the profiles at bytes " + std::to_string(twin->offset) + " and " +
                  std::to_string(std::next(twin)->offset) + " stand in the same column");
  }

  // Only now, so that rows and columns were found in the very numbers of the file.
  double units = 1.0;  // of the file in one of the grid
  if (grid_.plan == GroundPlan::geographic) {
    units = a.ground_units == 3 ? 3600.0 : kRadiansPerDegree;
  }
  grid_.columns = static_cast<kz_long>(columns);
  grid_.rows = static_cast<kz_long>(rows);
  grid_.west = west / units;
  grid_.north = north / units;
  grid_.step_x = step_x / units;
  grid_.step_y = step_y / units;
  for (std::size_t i = 0; i < 4; ++i) {
    grid_.corners[i] = {a.corners[i][0] / units, a.corners[i][1] / units};
  }
  return true;
}

/// Stores every elevation in its cell.  Profiles are in the order of their columns.
bool GridReader::make_grid() {
  grid_.elevations.assign(
      static_cast<std::size_t>(grid_.columns) * static_cast<std::size_t>(grid_.rows), kNoElevation);
  for (std::size_t i = 0; i < profiles_.size(); i += kTogether) {
    fill_columns(std::span(profiles_).subspan(i, std::min(kTogether, profiles_.size() - i)));
  }
  // A grid of nothing but NaN would say that the file has no elevations, while it is the
  // corners that are wrong.
  std::size_t total = 0;
  for (const Profile& profile : profiles_) total += profile.count();
  if (total > 0 && grid_.left_out == total) {
    return refuse("no elevation lies within the corners that the header gives from byte 546 on");
  }
  sum_up();
  return true;
}

/// Stores the elevations of up to `kTogether` profiles, and counts those outside of the grid.
///
/// This turns columns into rows: a profile's elevations are neighbours in the file, while the
/// grid has those of a row side by side.  Rows count from the south here and from the north in
/// the grid, so that the order is turned round as well.
void GridReader::fill_columns(std::span<const Profile> profiles) {
  // What the inner loop needs of a profile, and no more.
  struct Column {
    const float* values;
    kz_long from, to;  // rows counted from the south
    kz_long column;
  };
  std::array<Column, kTogether> columns{};
  float* const cells = grid_.elevations.data();
  const auto width = static_cast<std::size_t>(grid_.columns);
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    const Profile& profile = profiles[i];
    columns[i] = {profile.values.data(), profile.row, profile.row + profile.header.size[0],
                  profile.column};
    // Both ends within the grid: their difference is the part that lies inside, if any.
    const kz_long inside =
        std::clamp(columns[i].to, 0, grid_.rows) - std::clamp(columns[i].from, 0, grid_.rows);
    grid_.left_out += profile.count() - static_cast<std::size_t>(inside);
  }
  // Row by row: each profile is read in order, and what is written side by side shares lines of
  // cache, which are waited for once.
  const auto line_of = [&](kz_long row) {
    return cells + static_cast<std::size_t>(grid_.rows - 1 - row) * width;
  };
  const auto fill_some = [&](kz_long from, kz_long to) {
    for (kz_long row = from; row < to; ++row) {
      float* const line = line_of(row);
      for (std::size_t i = 0; i < profiles.size(); ++i) {
        const Column& c = columns[i];
        if (row >= c.from && row < c.to) line[c.column] = c.values[row - c.from];
      }
    }
  };
  // Nearly all rows of nearly all quadrangles are in every profile, and there nobody asks.
  kz_long from = 0;
  kz_long to = grid_.rows;
  for (std::size_t i = 0; i < profiles.size(); ++i) {
    from = std::max(from, columns[i].from);
    to = std::min(to, columns[i].to);
  }
  if (from >= to) from = to = 0;
  fill_some(0, from);
  for (kz_long row = from; row < to; ++row) {
    float* const line = line_of(row);
    for (std::size_t i = 0; i < profiles.size(); ++i) {
      line[columns[i].column] = columns[i].values[row - columns[i].from];
    }
  }
  fill_some(to, grid_.rows);
}

/// Finds the range of the elevations, and counts the cells without one.
void GridReader::sum_up() {
  // Several ranges at a time, since each comparison waits for the one before.
  constexpr std::size_t kLanes = 8;
  std::array<float, kLanes> lowest{};
  std::array<float, kLanes> highest{};
  std::array<std::uint32_t, kLanes> empty{};
  lowest.fill(std::numeric_limits<float>::infinity());
  highest.fill(-std::numeric_limits<float>::infinity());
  const auto take = [&](std::size_t lane, float value) {
    // False for NaN, both of them.
    lowest[lane] = value < lowest[lane] ? value : lowest[lane];
    highest[lane] = value > highest[lane] ? value : highest[lane];
    empty[lane] += value != value ? 1U : 0U;
  };
  const std::vector<float>& all = grid_.elevations;
  std::size_t i = 0;
  for (; i + kLanes <= all.size(); i += kLanes) {
    for (std::size_t lane = 0; lane < kLanes; ++lane) take(lane, all[i + lane]);
  }
  for (; i < all.size(); ++i) take(0, all[i]);

  for (const std::uint32_t count : empty) grid_.empty_cells += count;
  const bool none = grid_.empty_cells == all.size();
  grid_.lowest = none ? kNoElevation : *std::min_element(lowest.begin(), lowest.end());
  grid_.highest = none ? kNoElevation : *std::max_element(highest.begin(), highest.end());
}

}  // namespace

float ElevationGrid::at(kz_long row, kz_long column) const {
  if (row < 0 || row >= rows || column < 0 || column >= columns) return kNoElevation;
  return elevations[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                    static_cast<std::size_t>(column)];
}

double ElevationGrid::x(kz_long column) const { return west + column * step_x; }
double ElevationGrid::y(kz_long row) const { return north - row * step_y; }

// Both forms read by the same steps.  Containers of the standard library throw when memory runs
// out; here that ends, and becomes an error like any other.

Result<ElevationGrid> read_dem(std::span<const char> bytes, std::string_view name) {
  try {
    return GridReader(bytes, name).read();
  } catch (const std::bad_alloc&) {
    return no_memory(name);
  }
}

Result<ElevationGrid> read_dem(const std::string& path) {
  const auto refuse = [&path](const char* why) {
    return Error{ErrorKind::cannot_read, path + ": " + why};
  };
  struct Close {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };
  try {
    const std::unique_ptr<std::FILE, Close> file(FILEfopen(path.c_str(), "rb"));
    if (!file) return refuse("cannot be opened");
    (void)std::setvbuf(file.get(), nullptr, _IONBF, 0);  // read in large pieces as it is
    Result<ElevationGrid> grid = GridReader(file.get(), path).read();
    // A read that failed looked like the end of the file to the cursor, and the grid's own
    // error, if there is one, says so; the host's failure is the better reason.
    if (std::ferror(file.get()) != 0) return refuse("cannot be read");
    return grid;
  } catch (const std::bad_alloc&) {
    return no_memory(path);
  }
}

}  // namespace kzgis
