// How often signs are asked for, for each vertex of fixed polygons: what makes the library slow
// without making it wrong shows here, whatever else the machine is doing.  The bounds are what was
// counted and a little more.

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

#include "exact/predicates.h"
#include "exact/tiling.h"
#include "mesh/apart.h"
#include "mesh/delaunay.h"
#include "mesh/ring_sweep.h"
#include "mesh/sites.h"
#include "triangulate/polygons.h"

namespace {

constexpr int kVertices = 10000;

/// A polygon of a family, and how often each step asks for signs, per vertex.
class Counted {
 public:
  explicit Counted(IntPolygon (*make)(int, std::mt19937_64&)) {
    std::mt19937_64 random(1);
    for (const IntRing& ring : make(kVertices, random).rings) {
      starts_.push_back(static_cast<std::int32_t>(x_.size()));
      for (const IntPoint& p : ring) {
        x_.push_back(static_cast<double>(p.x));
        y_.push_back(static_cast<double>(p.y));
      }
    }
    const kzgis::Rings rings{x_, y_, starts_};
    EXPECT_TRUE(kzgis::mesh::parents_apart(rings));
    nesting = asked().orientation;
    const kzgis::mesh::Sites sites(rings);
    const auto cut = kzgis::mesh::cut_rings(rings, sites);
    EXPECT_TRUE(cut);
    if (!cut) return;
    cutting = asked().orientation;
    EXPECT_TRUE(kzgis::exact::tiles(sites.points(), cut->sides, cut->triangles,
                                    kzgis::exact::Flat::refused));
    proof = asked().orientation;
    const auto triangles = kzgis::mesh::make_delaunay(sites.points(), cut->sides, cut->triangles);
    delaunay = asked().in_circle;
    EXPECT_TRUE(kzgis::exact::tiles(sites.points(), cut->sides, triangles,
                                    kzgis::exact::Flat::refused, kzgis::exact::Inner::delaunay));
    delaunay_proof = asked().in_circle;
  }

  double nesting = 0.0, cutting = 0.0, proof = 0.0, delaunay = 0.0, delaunay_proof = 0.0;

 private:
  struct Asked {
    double orientation, in_circle;
  };

  /// Since the last time.
  Asked asked() {
    const auto [orientation, in_circle] = std::exchange(kzgis::exact::asked, {});
    const auto n = static_cast<double>(x_.size());
    return {static_cast<double>(orientation) / n, static_cast<double>(in_circle) / n};
  }

  std::vector<double> x_, y_;
  std::vector<std::int32_t> starts_;
};

void expect_at_most(const Counted& counted, double nesting, double cutting, double delaunay) {
  EXPECT_LE(counted.nesting, nesting);
  EXPECT_LE(counted.cutting, cutting);
  EXPECT_LE(counted.delaunay, delaunay);
  // Once for each triangle, once for each edge between two.
  EXPECT_LE(counted.proof, 1.5);
  EXPECT_LE(counted.delaunay_proof, 1.5);
}

TEST(Counted, SignsForAStar) { expect_at_most(Counted(star), 7, 6.5, 1.7); }
TEST(Counted, SignsForAComb) { expect_at_most(Counted(comb), 1.1, 3, 1.7); }
TEST(Counted, SignsForASpiral) { expect_at_most(Counted(spiral), 8.2, 6.2, 1.7); }
TEST(Counted, SignsForACoast) { expect_at_most(Counted(coast), 1.1, 2.1, 13.5); }
TEST(Counted, SignsForHoles) { expect_at_most(Counted(scattered_holes), 3.9, 4.9, 7); }
TEST(Counted, SignsForAConvexCurve) { expect_at_most(Counted(convex), 1.1, 2.1, 1.1); }

}  // namespace
