// CGAL's constrained Delaunay triangulation, plain and refined, as one peer of several benchmarks:
// its templates are compiled once.

#ifndef KZGIS_BENCH_CGAL_PEER_H
#define KZGIS_BENCH_CGAL_PEER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The corners of a triangle, x and y by turns.
using CgalTriangle = std::array<double, 6>;

/// The triangles inside of rings laid end to end, by the odd-even rule.
///
/// @param counts  how many vertices each ring has
/// @param least_angle_deg  0 for no new vertices, else what Ruppert's refinement goes for
std::vector<CgalTriangle> cgal_triangles(std::span<const double> x, std::span<const double> y,
                                         std::span<const std::int32_t> counts,
                                         double least_angle_deg = 0.0);

#endif
