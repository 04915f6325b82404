// Every polygon record of the sample layers, through the tree.

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

#include "kzgis/polytree.h"
#include "kzgis/shape.h"
#include "polytree/rings.h"
#include "support/capture.h"

namespace {

/// The records of a layer, read one by one.
class Layer {
 public:
  explicit Layer(const std::string& name)
      : shape_((std::string(KZGIS_TEST_DATA_DIR "/ne/") + name).c_str()) {
    EXPECT_EQ(shape_.NumberOfDataRecords(&records_), 1u);
    EXPECT_EQ(shape_.SeekToFirstDataRecord(), 1u);
  }
  ~Layer() {
    std::free(parts_);
    std::free(x_);
    std::free(y_);
  }
  Layer(const Layer&) = delete;
  Layer& operator=(const Layer&) = delete;

  kz_ulong records() const { return records_; }
  Rings next() {
    kz_long number = 0;
    kz_long parts = 0;
    kz_long points = 0;
    double box[4] = {};
    EXPECT_EQ(
        shape_.ReadPolygonShape(&number, &box[0], &box[1], &box[2], &box[3], &parts,
                                &parts_capacity_, &parts_, &points, &points_capacity_, &x_, &y_),
        1u);
    Rings rings;
    rings.starts.assign(parts_, parts_ + parts);
    rings.x.assign(x_, x_ + points);
    rings.y.assign(y_, y_ + points);
    return rings;
  }

 private:
  KZ_GIS_ESRI_Shape_c shape_;
  kz_ulong records_ = 0;
  kz_long parts_capacity_ = 0;
  kz_long points_capacity_ = 0;
  kz_long* parts_ = nullptr;
  double* x_ = nullptr;
  double* y_ = nullptr;
};

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
  Layer layer(name);
  StderrCapture err;
  for (kz_ulong record = 1; record <= layer.records(); ++record) {
    SCOPED_TRACE(testing::Message() << name << " record " << record);
    const Rings rings = layer.next();
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
