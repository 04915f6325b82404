// The polygon records of a sample layer, read one by one.

#ifndef KZGIS_TESTS_SUPPORT_POLYGON_LAYER_H
#define KZGIS_TESTS_SUPPORT_POLYGON_LAYER_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <span>
#include <string>

#include "kzgis/shape.h"

class PolygonLayer {
 public:
  /// The rings of one record, laid end to end; valid until the next is read.
  struct Record {
    std::span<const double> x, y;
    std::span<const kz_long> starts;
  };

  explicit PolygonLayer(const std::string& name)
      : shape_((std::string(KZGIS_TEST_DATA_DIR "/ne/") + name).c_str()) {
    EXPECT_EQ(shape_.NumberOfDataRecords(&records_), 1U);
    EXPECT_EQ(shape_.SeekToFirstDataRecord(), 1U);
  }
  ~PolygonLayer() {
    std::free(starts_);
    std::free(x_);
    std::free(y_);
  }
  PolygonLayer(const PolygonLayer&) = delete;
  PolygonLayer& operator=(const PolygonLayer&) = delete;

  kz_ulong records() const { return records_; }

  Record next() {
    kz_long number = 0;
    kz_long parts = 0;
    kz_long points = 0;
    double box[4] = {};
    EXPECT_EQ(
        shape_.ReadPolygonShape(&number, &box[0], &box[1], &box[2], &box[3], &parts,
                                &parts_capacity_, &starts_, &points, &points_capacity_, &x_, &y_),
        1U);
    return {{x_, x_ + points}, {y_, y_ + points}, {starts_, starts_ + parts}};
  }

 private:
  KZ_GIS_ESRI_Shape_c shape_;
  kz_ulong records_ = 0;
  kz_long parts_capacity_ = 0;
  kz_long points_capacity_ = 0;
  kz_long* starts_ = nullptr;
  double* x_ = nullptr;
  double* y_ = nullptr;
};

#endif
