// Shapefiles as the command meets them: what is looked at beside the library's reader.

#include "tools/support/shape_file.h"

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "tools/support/command_error.h"
#include "tools/support/degrees.h"
#include "tools/support/input_file.h"
#include "tools/support/output_file.h"

namespace kzgis::tools {

Shapefile open_shapefile(const std::string& name) {
  auto shapes = Shapefile::open(name);
  if (shapes) return *std::move(shapes);
  // The library looked for a file of this name with ".shp" behind it.
  std::error_code unknown;
  if (shapes.error().kind == ErrorKind::cannot_read && !expanded(name).ends_with(".shp") &&
      std::filesystem::is_regular_file(expanded(name), unknown)) {
    throw CommandError(name + ": not the name of a shapefile, which ends in .shp");
  }
  fail(shapes.error());
}

bool is_shapefile_name(const std::string& name) {
  const std::string ending = ending_of(name);
  return ending == "shp" || ending == "SHP";
}

std::optional<ShapeKind> kind_of(ShapeType type) {
  switch (type) {
    case ShapeType::null:
      return ShapeKind::null;
    case ShapeType::point:
    case ShapeType::point_z:
    case ShapeType::point_m:
    case ShapeType::multipoint:
    case ShapeType::multipoint_z:
    case ShapeType::multipoint_m:
      return ShapeKind::points;
    case ShapeType::polyline:
    case ShapeType::polyline_z:
    case ShapeType::polyline_m:
      return ShapeKind::lines;
    case ShapeType::polygon:
    case ShapeType::polygon_z:
    case ShapeType::polygon_m:
      return ShapeKind::polygons;
    default:
      return std::nullopt;
  }
}

bool holds_many(ShapeType type) {
  return type == ShapeType::multipoint || type == ShapeType::multipoint_z ||
         type == ShapeType::multipoint_m;
}

std::string type_text(ShapeType type) {
  const char* const name = name_of(type);
  if (name != nullptr) return name;
  return std::to_string(static_cast<std::int32_t>(type)) + ", which there is not";
}

// At byte 24 of both files: the length in 16-bit words, big-endian.
Length claimed_length(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<char, 28> header{};
  file.read(header.data(), header.size());
  std::uint64_t words = 0;
  for (std::size_t i = 24; i < header.size(); ++i) {
    words = words << 8U | static_cast<unsigned char>(header.at(i));
  }
  const std::uintmax_t bytes = size_of(path);
  if (bytes == 2 * words) return Length::right;
  return bytes < 2 * words ? Length::too_long : Length::too_short;
}

std::string why_no_index(const Shapefile& shapes) {
  if (!shapes.index_path().empty()) return {};
  std::string path = shapes.path();
  path.back() = path.back() == 'P' ? 'X' : 'x';
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (status.type() == std::filesystem::file_type::not_found) return {};
  const std::string why = why_not_readable(path);
  return !why.empty() ? why : path + ": not an index of a shapefile";
}

Part part_of(const ShapeRecord& record, std::size_t part) {
  const auto begin = static_cast<std::size_t>(record.parts[part]);
  const std::size_t end = part + 1 < record.parts.size()
                              ? static_cast<std::size_t>(record.parts[part + 1])
                              : record.x.size();
  return {record.x.subspan(begin, end - begin), record.y.subspan(begin, end - begin)};
}

std::string flaw_of(const ShapeRecord& record) {
  const std::size_t points = record.x.size();
  for (std::size_t i = 0; i < points; ++i) {
    if (std::isfinite(record.x[i]) && std::isfinite(record.y[i])) continue;
    return "point " + std::to_string(i + 1) + " is nowhere: " + pair_text(record.x[i], record.y[i]);
  }
  const ShapeKind kind = kind_of(record.type).value_or(ShapeKind::null);
  if (points == 0 || (kind != ShapeKind::lines && kind != ShapeKind::polygons)) return {};
  if (record.parts.empty()) return std::to_string(points) + " points, but no parts";
  if (record.parts.front() == 0) return {};
  return "its first part begins at point " + std::to_string(record.parts.front()) +
         ", behind others";
}

}  // namespace kzgis::tools
