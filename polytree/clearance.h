// Whether two rings keep so far apart that rounding cannot matter between them.

#ifndef KZGIS_POLYTREE_CLEARANCE_H
#define KZGIS_POLYTREE_CLEARANCE_H

#include <span>

namespace kzgis::polytree {

/// A side of a ring, from left to right; from below where it is vertical.
struct Side {
  double x0, y0, x1, y1;
};

/// Whether no side of one ring meets a side of the other, nor comes so close above or below
/// it that the point test of a polygon node could err about a point of either ring.
///
/// That test compares heights on a side computed in doubles.  For coordinates of
/// `exact::in_range` up to `largest`, itself up to 2^400, these are wrong by less than
/// 2^-49 `largest`; the distance asked for is more than ten times that.
/// Every point of the one ring then gets the same answer from the other, and the true one.
///
/// The time grows with the number of pairs of sides at one height.
///
/// @param largest  a bound for the magnitude of every coordinate
bool keep_apart(std::span<const Side> one, std::span<const Side> other, double largest);

}  // namespace kzgis::polytree

#endif
