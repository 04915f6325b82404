// Shapefiles from strangers, after "ESRI Shapefile Technical Description" (1998).
//
// Record header, big-endian, at the offset that the index gives or behind the record before:
//   0  int32  record number
//   4  int32  content length in 16-bit words
// Index record N, from 0, big-endian, at byte 100 + 8 N:
//   0  int32  offset of the record header in 16-bit words
//   4  int32  content length in 16-bit words: not looked at
// Words are taken without a sign: offsets and lengths reach to 8 GiB.
//
// Contents, little-endian, offsets from the first byte behind the record header:
//   points             lines and polygons               multipoints
//    0  int32  type     0  int32  type                   0  int32  type
//    4  double X        4  4 doubles  the box            4  4 doubles  the box
//   12  double Y       36  int32  number of parts       36  int32  number of points
//   20  double Z       40  int32  number of points      40  the points, X and Y of each
//       double M       44  int32 each  start of a part      Zmin, Zmax, Z of each point
//                          the points, and what follows     Mmin, Mmax, M of each point
//                          them in multipoints
// Z and what belongs to it stand in types with Z alone; M in those and in types with M, where
// a record may leave it out: what is missing is told by the content length alone.

#include "kzgis/shapefile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <limits>
#include <new>
#include <optional>
#include <utility>

#include "kzgis/filetools.h"
#include "platform/no_memory.h"
#include "platform/open_file.h"
#include "shape/byte_order.h"
#include "shape/file_names.h"
#include "shape/file_window.h"

namespace kzgis {
namespace {

using namespace shape_fields;

constexpr std::uint64_t kHeaderBytes = 100;
constexpr std::uint32_t kFileCode = 9994;
constexpr std::uint64_t kIndexEntryBytes = 8;
constexpr std::uint64_t kRecordHeaderBytes = 8;
constexpr std::uint64_t kTypeBytes = 4;
constexpr std::uint64_t kBoxEnd = 36;
constexpr std::uint64_t kMultipointFixedBytes = 40;
constexpr std::uint64_t kPartsFixedBytes = 44;
constexpr std::uint64_t kPartBytes = 4;
constexpr std::size_t kNumberBytes = 8;
constexpr std::size_t kPointBytes = 2 * kNumberBytes;
constexpr std::uint64_t kRangeBytes = 2 * kNumberBytes;

constexpr std::size_t kWindowBytes = std::size_t{1} << 16;
constexpr std::size_t kIndexWindowBytes = std::size_t{1} << 12;

constexpr std::uint64_t kMostRecords = std::numeric_limits<std::uint32_t>::max();

enum class Form { null, point, multipoint, parts };

/// What the content of a type is made of.
struct Layout {
  ShapeType type;
  const char* name;
  Form form;
  bool z, m;
};

constexpr Layout kLayouts[] = {
    {ShapeType::null, "null shape", Form::null, false, false},
    {ShapeType::point, "point", Form::point, false, false},
    {ShapeType::polyline, "polyline", Form::parts, false, false},
    {ShapeType::polygon, "polygon", Form::parts, false, false},
    {ShapeType::multipoint, "multipoint", Form::multipoint, false, false},
    {ShapeType::point_z, "point with z", Form::point, true, true},
    {ShapeType::polyline_z, "polyline with z", Form::parts, true, true},
    {ShapeType::polygon_z, "polygon with z", Form::parts, true, true},
    {ShapeType::multipoint_z, "multipoint with z", Form::multipoint, true, true},
    {ShapeType::point_m, "point with m", Form::point, false, true},
    {ShapeType::polyline_m, "polyline with m", Form::parts, false, true},
    {ShapeType::polygon_m, "polygon with m", Form::parts, false, true},
    {ShapeType::multipoint_m, "multipoint with m", Form::multipoint, false, true},
};

/// Null for multipatches, and for numbers that no type has.
const Layout* layout_of(ShapeType type) {
  const auto* const found =
      std::find_if(std::begin(kLayouts), std::end(kLayouts),
                   [type](const Layout& known) { return known.type == type; });
  return found != std::end(kLayouts) ? found : nullptr;
}

/// An array that keeps its room from record to record, its elements not set to anything.
template <class T>
class Room {
 public:
  /// Room for `count` elements; what was in it may be lost.  Without memory it throws
  /// `std::bad_alloc` and has none.
  T* of(std::size_t count) {
    if (count > size_) {
      // Layers whose records grow one by one should not allocate for each.
      const std::size_t size = std::max(count, size_ + size_ / 2);
      size_ = 0;
      elements_.reset();
      elements_.reset(new T[size]);
      size_ = size;
    }
    return elements_.get();
  }

 private:
  std::unique_ptr<T[]> elements_;
  std::size_t size_ = 0;
};

/// Reads on through a file from one place.
class Cursor {
 public:
  Cursor(FileWindow& file, std::uint64_t place) : file_(file), place_(place) {}

  void skip(std::uint64_t bytes) { place_ += bytes; }

  /// The next `count` bytes, no more than the window is wide; null when the file does not give
  /// them.
  const char* take(std::size_t count) {
    const std::span<const char> bytes = file_.from(place_, count);
    place_ += count;
    return bytes.data();
  }

  /// Hands the next elements, in runs as long as the window allows, to `use(bytes, first,
  /// number of elements)`.  False when the file does not give them all.
  template <class Use>
  bool each(std::size_t count, std::size_t element_bytes, const Use& use) {
    for (std::size_t first = 0; first < count;) {
      const std::span<const char> bytes = file_.from(place_, element_bytes);
      if (bytes.empty()) return false;
      const std::size_t run = std::min(count - first, bytes.size() / element_bytes);
      use(bytes.data(), first, run);
      place_ += run * element_bytes;
      first += run;
    }
    return true;
  }

  template <class T>
  bool numbers(std::size_t count, T* out) {
    return each(count, sizeof(T), [out](const char* bytes, std::size_t first, std::size_t run) {
      for (std::size_t i = 0; i < run; ++i) {
        out[first + i] = little_endian<T>(bytes + i * sizeof(T));
      }
    });
  }

  bool points(std::size_t count, double* x, double* y) {
    return each(count, kPointBytes, [x, y](const char* bytes, std::size_t first, std::size_t run) {
      for (std::size_t i = 0; i < run; ++i) {
        x[first + i] = little_endian<double>(bytes + i * kPointBytes);
        y[first + i] = little_endian<double>(bytes + i * kPointBytes + kNumberBytes);
      }
    });
  }

 private:
  FileWindow& file_;
  std::uint64_t place_;
};

Box box_at(const char* bytes) {
  return {little_endian<double>(bytes), little_endian<double>(bytes + kNumberBytes),
          little_endian<double>(bytes + 2 * kNumberBytes),
          little_endian<double>(bytes + 3 * kNumberBytes)};
}

std::uint64_t words_at(const char* bytes) { return 2 * std::uint64_t{big_endian(bytes)}; }

std::string text(std::uint64_t number) { return std::to_string(number); }

/// What is wrong with the starts of parts; empty when nothing is.
std::string flaw_of(std::span<const std::int32_t> parts, std::size_t points) {
  std::int64_t before = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::int64_t start = parts[i];
    if (start >= before && start <= static_cast<std::int64_t>(points)) {
      before = start;
      continue;
    }
    const std::string part =
        "part " + text(i + 1) + " begins at point " + std::to_string(start) + ", ";
    if (start < 0) return part + "in front of the first";
    if (start < before) return part + "in front of the part before it";
    return part + "but there are " + text(points);
  }
  return {};
}

/// Opens one of the files of a shapefile by its whole name.
/// @return null when it cannot be opened: `errno` says why, but for a named pipe
std::FILE* open_name(std::string name) {
  errno = 0;
  return open_expanded(name.data(), "rb");
}

}  // namespace

struct Shapefile::State {
  FileWindow shapes;
  std::optional<FileWindow> index;
  std::deque<std::uint64_t> places;  ///< of the records, where there is no index
  ShapeType type = ShapeType::null;
  Box box;
  std::uint32_t size = 0;
  Room<std::int32_t> parts;
  Room<double> x, y, z, m;
  std::string path, index_path;

  Error open(const std::string& given);
  bool open_index();
  void find_records();
  Result<ShapeRecord> read(std::uint32_t number);
  Result<ShapeRecord> read_content(const Layout& layout, std::uint64_t begin, std::uint64_t length,
                                   std::uint32_t number);
};

/// @return success, or why there is nothing to read
Error Shapefile::State::open(const std::string& given) {
  const auto refuse = [&given](ErrorKind kind, const std::string& why) {
    return Error{kind, given + ": " + why};
  };
  char expanded[kPathBytes];
  if (FILEmap_variables(given.c_str(), expanded) == nullptr) {
    return refuse(ErrorKind::cannot_read, "the name is too long");
  }
  const std::string name = expanded;
  const std::string base(without_extension(name, Case::any));
  const std::string ending = name.substr(base.size());
  std::string names[] = {name, base + ".shp", base + ".SHP"};
  const bool named_itself =
      ending.size() == kExtensionLength && (ending.back() == 'p' || ending.back() == 'P');

  std::FILE* file = nullptr;
  std::size_t which = named_itself ? 0 : 1;
  int reason = 0;  // of the first failure
  for (; which < std::size(names); ++which) {
    file = open_name(names[which]);
    if (file != nullptr) break;
    if (errno == ENOMEM) return no_memory(given);
    if (reason == 0 || reason == ENOENT) reason = errno;
    if (reason != ENOENT) break;
  }
  if (file == nullptr) {
    return refuse(ErrorKind::cannot_read, reason == 0 ? "cannot be opened" : std::strerror(reason));
  }

  shapes = FileWindow(file, kWindowBytes);
  if (shapes.size() < kHeaderBytes) {
    return refuse(ErrorKind::bad_data, "not a shapefile: " + text(shapes.size()) +
                                           " bytes are less than its header has");
  }
  const char* const header = shapes.from(0, kHeaderBytes).data();
  if (header == nullptr) return refuse(ErrorKind::cannot_read, "its header cannot be read");
  if (big_endian(header) != kFileCode) {
    return refuse(ErrorKind::bad_data, "not a shapefile: it does not begin with the code 9994");
  }
  type = ShapeType{little_endian<std::int32_t>(header + 32)};
  box = box_at(header + 36);

  path = std::move(names[which]);
  if (!open_index()) return no_memory(given);
  if (index) {
    size = static_cast<std::uint32_t>(
        std::min((index->size() - kHeaderBytes) / kIndexEntryBytes, kMostRecords));
  } else {
    find_records();
  }
  return {};
}

/// Opens the index beside a file, where there is one that begins like an index.
/// @return false without memory
bool Shapefile::State::open_index() {
  std::string same_case = path;
  same_case.back() += 'x' - 'p';
  const std::string base = path.substr(0, path.size() - kExtensionLength);
  for (const std::string& name : {same_case, base + ".shx", base + ".SHX"}) {
    std::FILE* const file = open_name(name);
    if (file == nullptr && errno == ENOMEM) return false;
    if (file == nullptr) continue;
    FileWindow window(file, kIndexWindowBytes);
    if (window.size() < kHeaderBytes) return true;
    const char* const header = window.from(0, kHeaderBytes).data();
    if (header != nullptr && big_endian(header) == kFileCode) {
      index.emplace(std::move(window));
      index_path = name;
    }
    return true;
  }
  return true;
}

/// Walks through the file from record to record, as far as their lengths lead.
///
/// A record is at least its type, so that no file makes more of them than it can hold.
void Shapefile::State::find_records() {
  std::uint64_t place = kHeaderBytes;
  while (place < shapes.size() && places.size() < kMostRecords) {
    places.push_back(place);
    // One that is cut off, or whose length cannot be, is the last.
    const std::uint64_t left = shapes.size() - place;
    if (left < kRecordHeaderBytes) break;
    const char* const header = shapes.from(place, kRecordHeaderBytes).data();
    if (header == nullptr) break;
    const std::uint64_t length = words_at(header + 4);
    if (length < kTypeBytes || length > left - kRecordHeaderBytes) break;
    place += kRecordHeaderBytes + length;
  }
  size = static_cast<std::uint32_t>(places.size());
}

/// Reads record `number`, from 1 to `size`; throws `std::bad_alloc` without memory.
Result<ShapeRecord> Shapefile::State::read(std::uint32_t number) {
  const auto refuse = [number](const std::string& why, ErrorKind kind = ErrorKind::bad_data) {
    return Error{kind, "record " + text(number) + ": " + why};
  };
  std::uint64_t place = 0;
  if (index) {
    const std::uint64_t entry = kHeaderBytes + (number - 1) * kIndexEntryBytes;
    const char* const bytes = index->from(entry, kIndexEntryBytes).data();
    if (bytes == nullptr) return refuse("its index cannot be read", ErrorKind::cannot_read);
    place = words_at(bytes);
    if (place < kHeaderBytes) {
      return refuse("the index places it at byte " + text(place) + ", in the file's header");
    }
    if (place >= shapes.size()) {
      return refuse("the index places it at byte " + text(place) + ", but the file has " +
                    text(shapes.size()));
    }
  } else {
    place = places[number - 1];
  }

  const std::uint64_t left = shapes.size() - place;
  if (left < kRecordHeaderBytes) {
    return refuse("the file ends in its header at byte " + text(place));
  }
  const auto cannot_read = [&] {
    return refuse("cannot be read at byte " + text(place), ErrorKind::cannot_read);
  };
  const char* const header = shapes.from(place, kRecordHeaderBytes).data();
  if (header == nullptr) return cannot_read();
  const std::uint32_t own_number = big_endian(header);
  const std::uint64_t length = words_at(header + 4);
  if (length < kTypeBytes) return refuse("a length of " + text(length) + " bytes has no type");
  if (length > left - kRecordHeaderBytes) {
    return refuse("its length is " + text(length) + " bytes, but the file ends after " +
                  text(left - kRecordHeaderBytes));
  }

  const std::uint64_t begin = place + kRecordHeaderBytes;
  const char* const type_bytes = shapes.from(begin, kTypeBytes).data();
  if (type_bytes == nullptr) return cannot_read();
  const ShapeType own_type{little_endian<std::int32_t>(type_bytes)};
  if (own_type == ShapeType::multipatch) return refuse("a multipatch, which is not read");
  const Layout* const layout = layout_of(own_type);
  if (layout == nullptr) {
    return refuse("there is no shape type " + std::to_string(static_cast<int>(own_type)));
  }
  Result<ShapeRecord> record = read_content(*layout, begin, length, own_number);
  if (record) return record;
  return refuse(record.error().message, record.error().kind);
}

/// Reads the content of a record, its type known and all of its length within the file.
/// @return the record, or an error without the number in its message
Result<ShapeRecord> Shapefile::State::read_content(const Layout& layout, std::uint64_t begin,
                                                   std::uint64_t length, std::uint32_t number) {
  ShapeRecord record;
  record.number = number;
  record.type = layout.type;
  // The length of a null shape may be that of what was deleted there.
  if (layout.form == Form::null) return record;

  const auto cannot_read = [begin] {
    return Error{ErrorKind::cannot_read,
                 "cannot be read at byte " + text(begin - kRecordHeaderBytes)};
  };
  Cursor cursor(shapes, begin);
  std::uint64_t needed = kTypeBytes;  // without M
  std::uint64_t range = 0;            // in front of all Z and of all M
  std::int32_t part_count = 0;
  std::int32_t point_count = 1;
  if (layout.form == Form::point) {
    needed += kPointBytes;
    cursor.skip(kTypeBytes);
  } else {
    const bool has_parts = layout.form == Form::parts;
    const std::size_t fixed = has_parts ? kPartsFixedBytes : kMultipointFixedBytes;
    if (length < fixed) {
      return Error{ErrorKind::bad_data, "its length of " + text(length) +
                                            " bytes is too short for a " +
                                            std::string(layout.name)};
    }
    const char* const bytes = cursor.take(fixed);
    if (bytes == nullptr) return cannot_read();
    record.box = box_at(bytes + kTypeBytes);
    if (has_parts) part_count = little_endian<std::int32_t>(bytes + kBoxEnd);
    point_count = little_endian<std::int32_t>(bytes + fixed - sizeof point_count);
    if (part_count < 0 || point_count < 0) {
      return Error{ErrorKind::bad_data, "it claims " + std::to_string(part_count) + " parts and " +
                                            std::to_string(point_count) + " points"};
    }
    range = kRangeBytes;
    needed = fixed + kPartBytes * static_cast<std::uint64_t>(part_count) +
             kPointBytes * static_cast<std::uint64_t>(point_count);
  }
  const auto points = static_cast<std::size_t>(point_count);
  const std::uint64_t measures = range + kNumberBytes * points;  // of all Z, and of all M
  if (layout.z) needed += measures;
  const bool has_m = layout.m && length == needed + measures;
  if (!has_m && length != needed) {
    std::string what = "a " + std::string(layout.name);
    if (layout.form != Form::point) what += " of " + text(points) + " points";
    if (layout.form == Form::parts) what += " in " + std::to_string(part_count) + " parts";
    return Error{ErrorKind::bad_data, "its length is " + text(length) + " bytes, but " + what +
                                          " needs " + text(needed) +
                                          (layout.m ? " or " + text(needed + measures) : "")};
  }

  // All of it lies within the file now, and takes no more memory than there.
  const auto part_total = static_cast<std::size_t>(part_count);
  std::int32_t* const starts = parts.of(part_total);
  if (!cursor.numbers(part_total, starts)) return cannot_read();
  record.parts = {starts, part_total};
  const std::string flaw = flaw_of(record.parts, points);
  if (!flaw.empty()) return Error{ErrorKind::bad_data, flaw};

  double* const all_x = x.of(points);
  double* const all_y = y.of(points);
  if (!cursor.points(points, all_x, all_y)) return cannot_read();
  record.x = {all_x, points};
  record.y = {all_y, points};
  const auto read_measures = [&](Room<double>& room, std::span<const double>& measured) {
    double* const numbers = room.of(points);
    cursor.skip(range);
    measured = {numbers, points};
    return cursor.numbers(points, numbers);
  };
  if (layout.z && !read_measures(z, record.z)) return cannot_read();
  if (has_m && !read_measures(m, record.m)) return cannot_read();
  if (layout.form == Form::point) record.box = {all_x[0], all_y[0], all_x[0], all_y[0]};
  return record;
}

const char* name_of(ShapeType type) {
  if (type == ShapeType::multipatch) return "multipatch";
  const Layout* const layout = layout_of(type);
  return layout != nullptr ? layout->name : nullptr;
}

Shapefile::Shapefile(std::unique_ptr<State> state) : state_(std::move(state)) {}
Shapefile::Shapefile(Shapefile&&) noexcept = default;
Shapefile& Shapefile::operator=(Shapefile&&) noexcept = default;
Shapefile::~Shapefile() = default;

Result<Shapefile> Shapefile::open(const std::string& path) {
  try {
    auto state = std::make_unique<State>();
    Error error = state->open(path);
    if (error) return error;
    return Shapefile(std::move(state));
  } catch (const std::bad_alloc&) {
    return no_memory(path);
  }
}

ShapeType Shapefile::type() const { return state_ ? state_->type : ShapeType::null; }

const Box& Shapefile::box() const {
  static constexpr Box kNone;
  return state_ ? state_->box : kNone;
}

std::uint32_t Shapefile::size() const { return state_ ? state_->size : 0; }

const std::string& Shapefile::path() const {
  static const std::string kNone;
  return state_ ? state_->path : kNone;
}

const std::string& Shapefile::index_path() const {
  static const std::string kNone;
  return state_ ? state_->index_path : kNone;
}

Result<ShapeRecord> Shapefile::read(std::uint32_t index) {
  try {
    if (index < size()) return state_->read(index + 1);
    return Error{ErrorKind::bad_argument, "record " + std::to_string(std::uint64_t{index} + 1) +
                                              ": the file has " + std::to_string(size())};
  } catch (const std::bad_alloc&) {
    char name[32];
    (void)std::snprintf(name, sizeof name, "record %llu", index + 1ULL);
    return no_memory(name);
  }
}

}  // namespace kzgis
