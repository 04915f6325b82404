// Whether straight stretches of the plane cancel, wherever they are cut.

#ifndef KZGIS_EXACT_STRETCHES_H
#define KZGIS_EXACT_STRETCHES_H

#include <cstdint>
#include <span>
#include <vector>

#include "exact/predicates.h"

namespace kzgis::exact {

/// A straight stretch between two places, and how many times it counts; opposite directions may
/// have opposite signs.
struct Stretch {
  std::uint32_t left, right;  ///< numbers of the places; left < right
  std::int64_t times;
};

/// What it means to cancel: that nothing is left, or nothing but even numbers.
enum class Cancel { to_zero, modulo_2 };

/// Whether the stretches cancel in every point of the plane, off the places.
///
/// Stretches that have both ends in common cancel by counting.  Of what is left, only stretches
/// of one straight line can cancel each other, cut as they may be; and on a line it is enough to
/// look at their ends.  Where they do not cancel, a piece of the line is left on which their sum
/// is not zero, and at the end of that piece more of them end than begin.  So the answer is yes
/// just if at every place, on every line through it, as many stretches end as begin; modulo 2,
/// if an even number has an end there.
///
/// O(n log n) for n stretches; every decision is exact.  Throws `std::bad_alloc` without memory.
///
/// @param places  `in_range` and different, ordered by x and, at the same x, by y
bool cancel(std::span<const Point> places, std::vector<Stretch> stretches, Cancel how);

}  // namespace kzgis::exact

#endif
