// Polygons from a fuzzer's bytes.

#ifndef KZGIS_FUZZ_CONTOURS_H
#define KZGIS_FUZZ_CONTOURS_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "kzgis/types.h"

/// Rings laid end to end.
struct Contours {
  std::vector<double> x, y;
  std::vector<kz_long> starts;
  bool on_grid = false;  ///< all coordinates are whole numbers, small enough for exact products
};

/// Input: a byte that says how; then vertices.
///
/// The byte's lowest bit is 0 for vertices on a grid: one byte each, four bits each way, so
/// that they coincide, touch and line up often; 1 for two doubles as they are in memory, NaN
/// and infinities among them.  A byte 0xFF in front of a vertex starts a new ring.  The next
/// four bits are how often all rings are repeated, shifted; where the upper three are set,
/// a hundred times as often and, if odd, not as rings of their own but as one with the last:
/// up to 10,000 vertices, or rings, from a few bytes.
inline Contours contours_of(const std::uint8_t* data, std::size_t size) {
  constexpr std::size_t kMost = 10000;
  Contours contours;
  if (size == 0) return contours;
  contours.on_grid = (data[0] & 1U) == 0;
  const unsigned written = data[0] >> 1U & 0x0FU;
  const bool large = data[0] >> 5U == 7U;
  const bool in_one = large && written % 2 == 1;
  const unsigned repeats = large ? 100 * (written + 1) : written;
  contours.starts.push_back(0);
  const std::size_t width = contours.on_grid ? 1 : 16;
  for (std::size_t at = 1; at + width <= size;) {
    if (data[at] == 0xFF) {
      contours.starts.push_back(static_cast<kz_long>(contours.x.size()));
      ++at;
      continue;
    }
    double p[2];
    if (contours.on_grid) {
      p[0] = data[at] & 0x0FU;
      p[1] = data[at] >> 4U;
    } else {
      std::memcpy(p, data + at, sizeof p);
    }
    contours.x.push_back(p[0]);
    contours.y.push_back(p[1]);
    at += width;
  }
  const std::size_t vertices = contours.x.size();
  const std::size_t rings = contours.starts.size();
  for (unsigned n = 1; n <= repeats && (n + 1) * std::max(vertices, rings) <= kMost; ++n) {
    for (std::size_t r = 0; r < rings && !in_one; ++r) {
      contours.starts.push_back(static_cast<kz_long>(n * vertices) + contours.starts[r]);
    }
    for (std::size_t i = 0; i < vertices; ++i) {
      // Past the rings before, or touching them; whole numbers in doubles stay exact.
      contours.x.push_back(contours.x[i] + 15.0 * n);
      contours.y.push_back(contours.y[i]);
    }
  }
  return contours;
}

#endif
