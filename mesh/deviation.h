// How far triangles are from the elevations under them.

#ifndef KZGIS_MESH_DEVIATION_H
#define KZGIS_MESH_DEVIATION_H

#include <cstdint>

#include "mesh/height_field.h"
#include "mesh/sites.h"

namespace kzgis::mesh {

/// A point of a height field, and how far a triangle is above or below it.
struct Deviation {
  double height = 0.0;
  std::uint32_t point = kNone;
};

/// A number that tells points apart which are as bad as each other: the lowest comes first.
///
/// Points in a row are far apart in this order, whose multiplier is 2^32 over the golden ratio
/// (D. E. Knuth, "The Art of Computer Programming", volume 3, section 6.4).  In the order of the
/// field, a plain with spikes of one height would be cut up from one end to the other, with the
/// rest of it looked at again for each.
inline std::uint32_t turn_of(std::uint32_t point) { return point * 2654435769U; }

/// Compares triangles with elevations.
///
/// Over a point p, a triangle a b c has the height
///   za + (B (zb - za) + C (zc - za)) / D
/// where B, C and D are twice the areas of c a p, a b p and a b c: whole numbers, below the number
/// of points in the field.  So what is compared is
///   |B (zb - za) + C (zc - za) - D (z - za)| <= D * tolerance
/// with each product below D times the range of the elevations.  When the elevations are whole
/// multiples of a power of two, and twice the field's size times their range comes to no more than
/// 2^53 of it, all terms and sums are exact.  Else their rounding errors come to less than 4
/// epsilon D times the range, and the tolerance is made smaller by twice that.
class Judge {
 public:
  Judge(const HeightField& field, double tolerance);

  /// Whether the tolerance is so small that rounding counts: every point is to be a vertex then.
  bool wants_all() const { return bearable_ <= slack_; }

  /// The worst point of those that a triangle is too far from; kNone without any.  Points on its
  /// edges belong to it.
  ///
  /// With `wants_all` a triangle's own corners may count as too far off, but none where nothing
  /// else of the field is in it.
  ///
  /// Before: the triangle is counter-clockwise, and all points in it have elevations.
  Deviation worst(std::uint32_t a, std::uint32_t b, std::uint32_t c) const;

 private:
  const HeightField* field_;
  double slack_;     ///< for rounding, on both sides of the comparison
  double bearable_;  ///< the tolerance, less the slack
};

}  // namespace kzgis::mesh

#endif
