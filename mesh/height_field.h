// A grid of elevations, and the part of it that triangles can cover.

#ifndef KZGIS_MESH_HEIGHT_FIELD_H
#define KZGIS_MESH_HEIGHT_FIELD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "kzgis/elevation.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// The points of a grid, numbered row after row from the north-west, in whole coordinates: columns
/// from the west and rows from the south.  In these, signs are cheap and never need rounding.
///
/// Squares are what lies between four neighbouring points.  Covered are those with an elevation at
/// each corner.
class HeightField {
 public:
  /// @param grid  as many elevations as columns times rows; kept by reference
  explicit HeightField(const ElevationGrid& grid);

  std::size_t size() const { return points_.size(); }
  std::int64_t columns() const { return columns_; }
  std::int64_t rows() const { return rows_; }
  std::span<const exact::Point> points() const { return points_; }
  std::span<const float> elevations() const { return elevations_; }

  /// All triangles there are: two of each covered square, with the diagonal from the north-west.
  std::vector<std::uint32_t> all_triangles() const;

  /// The sides of what is covered, of one step each, along a row or a column.
  std::vector<exact::Side> sides() const;

 private:
  /// The corners of a square, counter-clockwise from the north-west.
  std::array<std::uint32_t, 4> square(std::int64_t row, std::int64_t column) const;
  /// Whether there is a square, and it is covered.
  /// @param row, column  of its north-western corner
  bool is_covered(std::int64_t row, std::int64_t column) const;

  std::span<const float> elevations_;
  std::int64_t columns_, rows_;
  std::vector<exact::Point> points_;
};

/// The sides of a height field put together: of the points that a border passes straight, it keeps
/// those that it is told to.
class Border {
 public:
  explicit Border(const HeightField& field);

  /// @param kept  of each point of the field, whether it is to be kept where a border passes it
  ///              straight; all others on the border are there anyway
  std::vector<exact::Side> sides(const std::vector<bool>& kept) const;

 private:
  std::vector<exact::Side> steps_;
  /// Of each point that the border passes straight, once, where it goes from there; else kNone.
  std::vector<std::uint32_t> onward_;
};

}  // namespace kzgis::mesh

#endif
