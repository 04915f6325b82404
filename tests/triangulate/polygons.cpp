#include "triangulate/polygons.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "triangulate/tiling.h"

namespace {

std::int64_t between(std::mt19937_64& random, std::int64_t low, std::int64_t high) {
  const auto width = static_cast<std::uint64_t>(high - low + 1);
  return low + static_cast<std::int64_t>(random() % width);
}

IntPolygon named(std::string label, IntRing outer) {
  label += " of " + std::to_string(outer.size());
  IntPolygon polygon;
  polygon.label = std::move(label);
  polygon.rings.push_back(std::move(outer));
  return polygon;
}

IntRing star_ring(int n, IntPoint centre, double radius, std::mt19937_64& random) {
  constexpr double kTurn = 6.283185307179586;
  IntRing ring;
  for (int i = 0; i < n; ++i) {
    const double angle = kTurn * (i + 0.4 * static_cast<double>(random() % 1000) / 1000) / n;
    const double r = radius * (0.3 + 0.7 * static_cast<double>(random() % 1000) / 1000);
    ring.push_back({centre.x + std::llround(r * std::cos(angle)),
                    centre.y + std::llround(r * std::sin(angle))});
  }
  return ring;
}

/// Midpoint displacement over 2^k >= n steps: heights in [-range, range] or so.
std::vector<std::int64_t> fractal(int n, std::int64_t range, std::mt19937_64& random) {
  std::size_t steps = 1;
  while (steps < static_cast<std::size_t>(n)) steps *= 2;
  std::vector<std::int64_t> height(steps + 1, 0);
  for (std::size_t step = steps; step > 1; step /= 2) {
    for (std::size_t i = 0; i < steps; i += step) {
      height[i + step / 2] = (height[i] + height[i + step]) / 2 + between(random, -range, range);
    }
    range = range * 7 / 10;
  }
  return height;
}

/// Whether the closed segments ab and cd share a point.
bool touch(IntPoint a, IntPoint b, IntPoint c, IntPoint d) {
  const int abc = turn(a, b, c);
  const int abd = turn(a, b, d);
  const int cda = turn(c, d, a);
  const int cdb = turn(c, d, b);
  if (abc * abd < 0 && cda * cdb < 0) return true;
  const auto on = [](IntPoint p, IntPoint q, IntPoint r) {
    return std::min(p.x, q.x) <= r.x && r.x <= std::max(p.x, q.x) && std::min(p.y, q.y) <= r.y &&
           r.y <= std::max(p.y, q.y);
  };
  return (abc == 0 && on(a, b, c)) || (abd == 0 && on(a, b, d)) || (cda == 0 && on(c, d, a)) ||
         (cdb == 0 && on(c, d, b));
}

}  // namespace

std::vector<kz_long> IntPolygon::vertex_counts() const {
  std::vector<kz_long> counts;
  for (const IntRing& ring : rings) counts.push_back(static_cast<kz_long>(ring.size()));
  return counts;
}

std::vector<IntPoint> IntPolygon::vertices() const {
  std::vector<IntPoint> all;
  for (const IntRing& ring : rings) all.insert(all.end(), ring.begin(), ring.end());
  return all;
}

std::vector<kzgis::triangulation::Point> IntPolygon::points(double scale) const {
  std::vector<kzgis::triangulation::Point> all;
  for (const IntPoint& p : vertices()) {
    all.push_back({static_cast<double>(p.x) * scale, static_cast<double>(p.y) * scale});
  }
  return all;
}

kz_long IntPolygon::triangle_count() const {
  const auto counts = vertex_counts();
  const auto holes = static_cast<kz_long>(counts.size()) - 1;
  return std::accumulate(counts.begin(), counts.end(), 0) + 2 * holes - 2;
}

IntPolygon convex(int n, std::mt19937_64&) {
  IntRing ring;
  for (std::int64_t i = 0; i < n; ++i) ring.push_back({i, i * i});
  return named("convex", ring);
}

IntPolygon star(int n, std::mt19937_64& random) {
  return named("star", star_ring(n, {0, 0}, 0x1p30, random));
}

IntPolygon spiral(int n, std::mt19937_64&) {
  // The middle of the corridor: arms of 4, 4, 8, 8, 12, 12, ... east, north, west, south.
  std::vector<IntPoint> middle{{0, 0}};
  constexpr IntPoint kDirection[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  const int arms = std::max(1, n / 2 - 1);
  for (int i = 0; i < arms; ++i) {
    const std::int64_t length = 4 * (i / 2 + 1);
    const IntPoint d = kDirection[i % 4];
    middle.push_back({middle.back().x + length * d.x, middle.back().y + length * d.y});
  }
  // Its two walls, 1 to the right and 1 to the left.
  IntRing right;
  IntRing left;
  for (int i = 0; i <= arms; ++i) {
    const IntPoint in = kDirection[(i == 0 ? 0 : i - 1) % 4];
    const IntPoint out = kDirection[(i == arms ? arms - 1 : i) % 4];
    const bool end = i == 0 || i == arms;
    const IntPoint normal{-in.y - (end ? 0 : out.y), in.x + (end ? 0 : out.x)};
    const IntPoint p = middle[static_cast<std::size_t>(i)];
    right.push_back({p.x - normal.x, p.y - normal.y});
    left.push_back({p.x + normal.x, p.y + normal.y});
  }
  right.insert(right.end(), left.rbegin(), left.rend());
  return named("spiral", right);
}

IntPolygon comb(int n, std::mt19937_64& random) {
  const int teeth = std::max(1, n / 2 - 1);
  IntRing ring{{0, -1}, {2 * teeth, -1}};
  for (std::int64_t i = teeth; i-- > 0;) {
    ring.push_back({2 * i + 1, 1000 + between(random, 0, 1)});
    ring.push_back({2 * i, between(random, 0, 1)});
  }
  return named("comb", ring);
}

IntPolygon skyline(int n, std::mt19937_64& random) {
  const int houses = std::max(1, n / 2 - 1);
  IntRing ring{{0, 0}, {houses, 0}};
  for (std::int64_t i = houses; i-- > 0;) {
    const std::int64_t height = between(random, 1, 4);
    if (ring.back() != IntPoint{i + 1, height}) ring.push_back({i + 1, height});
    ring.push_back({i, height});
  }
  return named("skyline", ring);
}

IntPolygon coast(int n, std::mt19937_64& random) {
  const int half = std::max(2, n / 2);
  const auto below = fractal(half, 1 << 20, random);
  const auto above = fractal(half, 1 << 20, random);
  const std::int64_t lift = 1 << 24;
  IntRing ring;
  for (int i = 0; i < half; ++i) ring.push_back({i * 50LL, below[static_cast<std::size_t>(i)]});
  for (int i = half; i-- > 0;) {
    ring.push_back({i * 50LL, lift + above[static_cast<std::size_t>(i)]});
  }
  return named("coast", ring);
}

IntPolygon square_coast(int n, std::mt19937_64&) {
  IntRing ring{{0, 0}, {1, 0}, {1, 1}, {0, 1}};
  while (static_cast<int>(ring.size()) * 8 <= n) {
    IntRing finer;
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const IntPoint a = ring[i];
      const IntPoint b = ring[(i + 1) % ring.size()];
      const IntPoint d{b.x - a.x, b.y - a.y};  // a quarter of the edge, once scaled by 4
      const IntPoint up{-d.y, d.x};
      IntPoint p{4 * a.x, 4 * a.y};
      const auto step = [&](IntPoint by) {
        finer.push_back(p);
        p = {p.x + by.x, p.y + by.y};
      };
      const IntPoint down{-up.x, -up.y};
      for (const IntPoint by : {d, up, d, down, down, d, up, d}) step(by);
    }
    ring = std::move(finer);
  }
  return named("square coast", ring);
}

IntPolygon collinear_runs(int n, std::mt19937_64& random) {
  const std::int64_t m = std::max(1, n / 3);
  const std::int64_t dx = between(random, 1, 9);
  const IntPoint step[] = {{dx, 0}, {-dx, between(random, 1, 9)}};
  IntRing ring;
  IntPoint p{0, 0};
  for (int side = 0; side < 2; ++side) {
    for (std::int64_t i = 0; i < m; ++i) {
      ring.push_back(p);
      p = {p.x + step[side].x, p.y + step[side].y};
    }
  }
  for (std::int64_t i = 0; i < m; ++i) {
    ring.push_back(p);
    p.y -= step[1].y;
  }
  return named("collinear runs", ring);
}

IntPolygon needles(int n, std::mt19937_64& random) {
  const int teeth = std::max(1, n / 2 - 1);
  constexpr std::int64_t kLength = std::int64_t{1} << 24;
  IntRing ring{{-1, 0}, {-1, -1}};
  for (std::int64_t i = 0; i < teeth; ++i) {
    ring.push_back({kLength + between(random, 0, 1000), i});
    if (i + 1 < teeth) ring.push_back({between(random, 0, 1000), i});
  }
  ring.push_back({-1, teeth});
  // Edges of all directions between nearly and exactly east.
  return transformed(named("needles", ring), 1, 0, 1, 1);
}

IntPolygon square_holes(int n, std::mt19937_64&) {
  const int side = std::max(1, static_cast<int>(std::sqrt(n / 4)));
  IntPolygon polygon =
      named("square holes", {{0, 0}, {4 * side, 0}, {4 * side, 4 * side}, {0, 4 * side}});
  for (std::int64_t i = 0; i < side; ++i) {
    for (std::int64_t j = 0; j < side; ++j) {
      const IntPoint p{4 * i + 1, 4 * j + 1};
      polygon.rings.push_back({p, {p.x, p.y + 2}, {p.x + 2, p.y + 2}, {p.x + 2, p.y}});
    }
  }
  return polygon;
}

IntPolygon scattered_holes(int n, std::mt19937_64& random) {
  const int side = std::max(1, static_cast<int>(std::sqrt(n / 7)));
  constexpr std::int64_t kCell = 1 << 12;
  const std::int64_t width = kCell * side;
  IntPolygon polygon = named("scattered holes", {{0, 0}, {width, 0}, {width, width}, {0, width}});
  for (std::int64_t i = 0; i < side; ++i) {
    for (std::int64_t j = 0; j < side; ++j) {
      const IntPoint centre{kCell * i + kCell / 2 + between(random, -100, 100),
                            kCell * j + kCell / 2 + between(random, -100, 100)};
      const auto corners = static_cast<int>(between(random, 3, 10));
      IntRing hole = star_ring(corners, centre, 1500.0, random);
      std::reverse(hole.begin(), hole.end());
      polygon.rings.push_back(std::move(hole));
    }
  }
  return polygon;
}

IntPolygon tangle(int n, std::mt19937_64& random) {
  n = std::clamp(n, 3, 60);
  const std::int64_t grid = n < 12 ? 6 : 14;
  for (;;) {
    IntRing ring;
    while (static_cast<int>(ring.size()) < n) {
      const IntPoint p{between(random, 0, grid), between(random, 0, grid)};
      if (std::find(ring.begin(), ring.end(), p) == ring.end()) ring.push_back(p);
    }
    // Reversing the stretch between two crossing edges uncrosses them and shortens the way.
    bool crossed = true;
    for (int round = 0; crossed && round < 4 * n; ++round) {
      crossed = false;
      for (std::size_t i = 0; i < ring.size(); ++i) {
        for (std::size_t j = i + 2; j < ring.size(); ++j) {
          const std::size_t after = (j + 1) % ring.size();
          if (after == i || !touch(ring[i], ring[i + 1], ring[j], ring[after])) continue;
          std::reverse(ring.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                       ring.begin() + static_cast<std::ptrdiff_t>(j) + 1);
          crossed = true;
        }
      }
    }
    if (doubled_area(ring) < 0) std::reverse(ring.begin(), ring.end());
    IntPolygon polygon = named("tangle", ring);
    if (is_simple(polygon)) return polygon;
  }
}

const std::vector<Family>& families() {
  static const std::vector<Family> all{
      {"convex", convex},
      {"star", star},
      {"spiral", spiral},
      {"comb", comb},
      {"skyline", skyline},
      {"coast", coast},
      {"square_coast", square_coast},
      {"collinear_runs", collinear_runs},
      {"needles", needles},
      {"square_holes", square_holes},
      {"scattered_holes", scattered_holes},
      {"tangle", tangle},
  };
  return all;
}

IntPolygon transformed(IntPolygon polygon, std::int64_t a, std::int64_t b, std::int64_t c,
                       std::int64_t d) {
  for (IntRing& ring : polygon.rings) {
    for (IntPoint& p : ring) p = {a * p.x + b * p.y, c * p.x + d * p.y};
  }
  return polygon;
}

bool is_simple(const IntPolygon& polygon) {
  struct Edge {
    IntPoint a, b;
    std::size_t ring, index, next;
  };
  std::vector<Edge> edges;
  for (std::size_t r = 0; r < polygon.rings.size(); ++r) {
    const IntRing& ring = polygon.rings[r];
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const std::size_t next = (i + 1) % ring.size();
      edges.push_back({ring[i], ring[next], r, i, next});
    }
  }
  for (std::size_t i = 0; i < edges.size(); ++i) {
    for (std::size_t j = i + 1; j < edges.size(); ++j) {
      const Edge& e = edges[i];
      const Edge& f = edges[j];
      const bool f_follows = e.ring == f.ring && e.next == f.index;
      const bool e_follows = e.ring == f.ring && f.next == e.index;
      if (f_follows || e_follows) {
        // Neighbours may share their vertex and nothing else.
        const IntPoint before = f_follows ? e.a : f.a;
        const IntPoint at = f_follows ? f.a : e.a;
        const IntPoint after = f_follows ? f.b : e.b;
        if (turn(before, at, after) == 0 &&
            (before.x - at.x) * (after.x - at.x) + (before.y - at.y) * (after.y - at.y) > 0) {
          return false;
        }
        continue;
      }
      if (touch(e.a, e.b, f.a, f.b)) return false;
    }
  }
  return true;
}

Place place_of(const IntPolygon& polygon, IntPoint doubled) {
  bool inside = false;
  for (const IntRing& ring : polygon.rings) {
    for (std::size_t i = 0; i < ring.size(); ++i) {
      const IntPoint p = ring[i];
      const IntPoint q = ring[(i + 1) % ring.size()];
      const IntPoint a{2 * p.x, 2 * p.y};
      const IntPoint b{2 * q.x, 2 * q.y};
      if (touch(a, b, doubled, doubled)) return Place::boundary;
      if ((a.y > doubled.y) == (b.y > doubled.y)) continue;
      const int side = turn(a, b, doubled);
      if (b.y > a.y ? side > 0 : side < 0) inside = !inside;
    }
  }
  return inside ? Place::inside : Place::outside;
}
