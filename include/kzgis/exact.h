#ifndef KZGIS_EXACT_H
#define KZGIS_EXACT_H

#include <span>

#include "kzgis/export.h"

// Signs that rounding cannot make wrong.
//
// After J. R. Shewchuk, "Adaptive Precision Floating-Point Arithmetic and Fast Robust
// Geometric Predicates", Discrete & Computational Geometry 18 (1997): double arithmetic where
// its error bound settles the sign, an exact sum of the rounding errors where it does not.
// Nothing is shared: any number of threads may call at once.  Only `sign_of_sum` needs memory.

namespace kzgis::exact {

/// Whether a coordinate lies where nothing below can overflow or lose bits to underflow: 0,
/// or a magnitude from 2^-480 to 2^500.
KZGIS_EXPORT bool in_range(double v);

/// The turn from a over b to c: 1 to the left (counter-clockwise), -1 to the right, 0 when
/// the three points lie on one line, or when a coordinate is no finite number.
///
/// Exact for all coordinates `in_range`.
KZGIS_EXPORT int orientation(double ax, double ay, double bx, double by, double cx, double cy);

struct Product {
  double a, b;
};

/// The sign of the sum of all products a b: -1, 0 or 1; exact for factors `in_range`.
/// Throws `std::bad_alloc` without memory for two numbers per product.
KZGIS_EXPORT int sign_of_sum(std::span<const Product> products);

}  // namespace kzgis::exact

#endif
