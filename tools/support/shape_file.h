// What the command says of shapefiles beyond the library: which of them it works on, and what
// speaks against a file whose every record can be read.

#ifndef KZGIS_TOOLS_SUPPORT_SHAPE_FILE_H
#define KZGIS_TOOLS_SUPPORT_SHAPE_FILE_H

#include <kzgis/shapefile.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace kzgis::tools {

/// Opens a shapefile by any of its names.  Throws `CommandError`.
Shapefile open_shapefile(const std::string& name);

/// Whether a name ends in .shp, in upper or lower case.
bool is_shapefile_name(const std::string& name);

/// What the types that differ in Z and M alone have in common.
enum class ShapeKind { null, points, lines, polygons };

/// Nothing for multipatches, and for numbers that no type has.
std::optional<ShapeKind> kind_of(ShapeType type);

/// Whether a record of points has any number of them.
bool holds_many(ShapeType type);

/// "polygon with z", or "99, which there is not".
std::string type_text(ShapeType type);

/// What the header of a shapefile or an index says of its file's length.
enum class Length { right, too_long, too_short };

/// `too_long` where it claims more than there is.
Length claimed_length(const std::string& path);

/// Why the index beside a shapefile is not used though there is something of its name; empty
/// when it is used, or there is none.
std::string why_no_index(const Shapefile& shapes);

/// The points of one part of a line or polygon.
struct Part {
  std::span<const double> x, y;
};
Part part_of(const ShapeRecord& record, std::size_t part);

/// What is wrong with a record that was read, as a sentence without its number; empty when
/// nothing is: coordinates are finite numbers, and each point of lines and polygons belongs to
/// a part.
std::string flaw_of(const ShapeRecord& record);

}  // namespace kzgis::tools

#endif
