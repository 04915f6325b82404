// Every polygon record of the sample layers, through the tree.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "kzgis/polytree.h"
#include "polytree/rings.h"
#include "support/capture.h"
#include "support/polygon_layer.h"

namespace {

/// Twice the area that the rings enclose, boundaries being clockwise.
double twice_area(const Rings& rings) {
  double sum = 0.0;
  for (std::size_t p = 0; p < rings.starts.size(); ++p) {
    const std::size_t end = p + 1 < rings.starts.size() ? rings.starts[p + 1] : rings.x.size();
    for (std::size_t i = rings.starts[p]; i + 1 < end; ++i) {
      sum += rings.y[i] * rings.x[i + 1] - rings.x[i] * rings.y[i + 1];
    }
  }
  return sum;
}

/// Triangulates the layer and returns the numbers of the records refused, from 1.
std::vector<kz_ulong> refused(const std::string& name) {
  std::vector<kz_ulong> result;
  PolygonLayer layer(name);
  StderrCapture err;
  for (kz_ulong record = 1; record <= layer.records(); ++record) {
    SCOPED_TRACE(testing::Message() << name << " record " << record);
    const PolygonLayer::Record read = layer.next();
    Rings rings;
    rings.x.assign(read.x.begin(), read.x.end());
    rings.y.assign(read.y.begin(), read.y.end());
    rings.starts.assign(read.starts.begin(), read.starts.end());
    const KZ_GIS_PolygonTree_c tree = rings.tree();
    const Triangulation mesh = triangulate(tree);
    if (mesh.status != 1) {
      EXPECT_EQ(mesh.status, 2u);
      result.push_back(record);
      continue;
    }
    EXPECT_EQ(mesh.count, connections(tree));
    const double area = twice_area(rings);
    EXPECT_NEAR(twice_area(rings, mesh), area, 1e-9 * area);
  }
  return result;
}

TEST(SampleLayers, AreTriangulated) {
  EXPECT_EQ(refused("ne_110m_lakes"), (std::vector<kz_ulong>{}));
  EXPECT_EQ(refused("ne_110m_land"), (std::vector<kz_ulong>{}));
  EXPECT_EQ(refused("ne_110m_countries"), (std::vector<kz_ulong>{140}));  // crosses itself
  EXPECT_EQ(refused("ne_50m_lakes_with_islands"), (std::vector<kz_ulong>{}));
  EXPECT_EQ(refused("ne_50m_land"), (std::vector<kz_ulong>{}));
  EXPECT_EQ(refused("ne_50m_countries"), (std::vector<kz_ulong>{}));
}

}  // namespace
