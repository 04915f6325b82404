// One record as the readers hand it out, with its arrays and their release.

#ifndef KZGIS_TESTS_SHAPE_SHAPE_RECORD_H
#define KZGIS_TESTS_SHAPE_SHAPE_RECORD_H

#include <cstdlib>
#include <vector>

#include "kzgis/shape.h"

struct ShapeRecord {
  kz_long number = -7;
  double x_min = -7, y_min = -7, x_max = -7, y_max = -7;
  kz_long num_parts = -7;
  kz_long parts_capacity = 0;
  kz_long* parts = nullptr;
  kz_long num_points = -7;
  kz_long points_capacity = 0;
  double* x = nullptr;
  double* y = nullptr;

  ShapeRecord() = default;
  ShapeRecord(const ShapeRecord&) = delete;
  ShapeRecord& operator=(const ShapeRecord&) = delete;
  ~ShapeRecord() {
    std::free(parts);
    std::free(x);
    std::free(y);
  }

  kz_ulong read_arc(KZ_GIS_ESRI_Shape_c& shape) {
    return shape.ReadArcShape(&number, &x_min, &y_min, &x_max, &y_max, &num_parts, &parts_capacity,
                              &parts, &num_points, &points_capacity, &x, &y);
  }
  kz_ulong read_polygon(KZ_GIS_ESRI_Shape_c& shape) {
    return shape.ReadPolygonShape(&number, &x_min, &y_min, &x_max, &y_max, &num_parts,
                                  &parts_capacity, &parts, &num_points, &points_capacity, &x, &y);
  }
  kz_ulong read_multi_point(KZ_GIS_ESRI_Shape_c& shape) {
    return shape.ReadMultiPointShape(&number, &x_min, &y_min, &x_max, &y_max, &num_points,
                                     &points_capacity, &x, &y);
  }

  std::vector<kz_long> part_list() const { return {parts, parts + num_parts}; }
  std::vector<std::pair<double, double>> points(kz_long count) const {
    std::vector<std::pair<double, double>> list;
    for (kz_long i = 0; i < count; ++i) list.emplace_back(x[i], y[i]);
    return list;
  }
};

/// The four bytes at the shape stream's position, which moves on by eight: what a reader
/// takes for the record number, whatever it makes of the rest.
inline kz_long bytes_at_stream(KZ_GIS_ESRI_Shape_c& shape) {
  kz_long number = -7;
  double x;
  double y;
  shape.ReadPointShape(&number, &x, &y);
  return number;
}

#endif
