// Fuzzes the triangulator's building blocks, called in the order in which
// `triangulate_polygon` uses them, and then out of it, on arbitrary contours.
//
// Input: a byte: how many bytes at the end are the script of single calls; the rest as in
// fuzz/contours.h.

#include <cstdint>
#include <ctime>
#include <vector>

#include "fuzz/contours.h"
#include "fuzz/harness.h"
#include "kzgis/triangulate.h"

namespace {

using kzgis::triangulation::Point;

/// Contours as the triangulator takes them: counts, and vertices from number 1.
struct Polygon {
  explicit Polygon(const Contours& contours) {
    const auto total = static_cast<kz_long>(contours.x.size());
    for (std::size_t r = 0; r < contours.starts.size(); ++r) {
      const kz_long end = r + 1 < contours.starts.size() ? contours.starts[r + 1] : total;
      counts.push_back(end - contours.starts[r]);
    }
    vertices.resize(contours.x.size() + 1);
    for (std::size_t i = 0; i < contours.x.size(); ++i) {
      vertices[i + 1] = {contours.x[i], contours.y[i]};
    }
  }
  kz_long size() const { return static_cast<kz_long>(vertices.size()) - 1; }
  /// How many triangles are announced, and so what callers have room for.
  std::size_t room() const {
    const kz_long triangles = size() + 2 * (static_cast<kz_long>(counts.size()) - 1) - 2;
    return triangles > 0 ? static_cast<std::size_t>(triangles) : 0;
  }

  std::vector<kz_long> counts;
  std::vector<Point> vertices;
};

void check_indices(const std::vector<kz_long>& triangles, kz_long count, kz_long low,
                   kz_long high) {
  for (std::size_t i = 0; i < 3 * static_cast<std::size_t>(count); ++i) {
    require(triangles[i] >= low && triangles[i] <= high);
  }
}

/// Fills the segment table as the entry point does.
void fill_segments(const Polygon& polygon) {
  kz_long first = 1;
  for (const kz_long count : polygon.counts) {
    for (kz_long i = 0; i < count; ++i) {
      kzgis::triangulation::Segment& segment = seg[first + i];
      const kz_long next = i + 1 < count ? first + i + 1 : first;
      const kz_long prev = i > 0 ? first + i - 1 : first + count - 1;
      segment = {};
      segment.start = polygon.vertices[static_cast<std::size_t>(first + i)];
      segment.end = polygon.vertices[static_cast<std::size_t>(next)];
      segment.next_seg = next;
      segment.prev_seg = prev;
    }
    first += count;
  }
}

void run_in_order(const Polygon& polygon) {
  const kz_long n = polygon.size();
  require(initilize(n + 1) == 0);
  fill_segments(polygon);
  require(generate_random_ordering(n) == 0);
  construct_trapezoids(n);
  const kz_long pieces = monotonate_trapezoids(n);
  std::vector<kz_long> triangles(3 * polygon.room());
  const kz_long count =
      triangulate_monotone_polygons(n, pieces, reinterpret_cast<kz_long(*)[3]>(triangles.data()));
  require(count >= 0 && static_cast<std::size_t>(count) <= polygon.room());
  check_indices(triangles, count, 1, n);
}

/// One call with small numbers, in range and out of it.
///
/// @param triangles  with room for as many as are announced
void run_one(unsigned what, kz_long a, kz_long b, const Polygon& polygon,
             std::vector<kz_long>& triangles) {
  kz_long slot_a = 0;
  kz_long slot_b = 0;
  const auto& vertices = polygon.vertices;
  const auto vertex = [&](kz_long i) {
    return &vertices[static_cast<std::size_t>(i < 0 ? 0 : i) % vertices.size()];
  };
  switch (what % 20) {
    case 0:
      add_segment(a);
      break;
    case 1:
      locate_endpoint(vertex(a), vertex(b), a);
      break;
    case 2:
      newnode();
      break;
    case 3:
      newtrap();
      break;
    case 4:
      is_left_of_segment(a, vertex(b));
      break;
    case 5:
      merge_trapezoid_run(a, b, a, 1);
      break;
    case 6:
      refresh_segment_roots(a);
      break;
    case 7:
      traverse_trapezoids(0, a, b, 1 + (b & 1));
      break;
    case 8:
      split_monotone_polygon(0, a, b);
      break;
    case 9:
      vertex_chain_positions(a, b, &slot_a, &slot_b);
      break;
    case 10:
      angle_measure(vertex(a), vertex(b), vertex(a + 1));
      break;
    case 11:
      choose_segment();
      break;
    case 12:
      is_point_inside_polygon(&vertex(a)->x);
      break;
    case 13:
      create_initial_structure(a);
      break;
    case 14:
      triangulate_monotone_piece(polygon.size(), a, 1 + (b & 1),
                                 reinterpret_cast<kz_long(*)[3]>(triangles.data()));
      break;
    case 15:
      triangulate_monotone_polygons(polygon.size(), a,
                                    reinterpret_cast<kz_long(*)[3]>(triangles.data()));
      break;
    case 16:
      construct_trapezoids(a);
      break;
    case 17:
      if (b == 0) release_tables();
      break;
    case 18:
      require(_equal_to(vertex(a), vertex(b)) == 0 || _less_than(vertex(a), vertex(b)) == 0 ||
              _greater_than(vertex(a), vertex(b)) == 0);
      require(_greater_than_equal_to(vertex(a), vertex(b)) >= _greater_than(vertex(a), vertex(b)));
      print_error("%d %s\n", a, "of some length");
      break;
    default:
      math_N(a, b);
      math_logstar_n(a);
      break;
  }
}

}  // namespace

// The insertion order is seeded from the clock; a find must come back when it is run again.
extern "C" std::time_t time(std::time_t*) { return 1; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  silence();
  if (size < 2) return 0;
  const std::size_t script_size = data[0] % size;
  const std::uint8_t* const script = data + size - script_size;
  const Polygon polygon(contours_of(data + 1, size - 1 - script_size));
  if (polygon.size() == 0) return 0;

  std::vector<kz_long> triangles(3 * polygon.room());
  triangulate_polygon(static_cast<kz_long>(polygon.counts.size()), polygon.counts.data(),
                      reinterpret_cast<const double(*)[2]>(polygon.vertices.data()),
                      reinterpret_cast<kz_long(*)[3]>(triangles.data()));
  run_in_order(polygon);
  for (std::size_t i = 0; i + 2 < script_size; i += 3) {
    run_one(script[i], static_cast<std::int8_t>(script[i + 1]),
            static_cast<std::int8_t>(script[i + 2]), polygon, triangles);
  }
  return 0;
}
