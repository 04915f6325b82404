// Files of map features.

#ifndef KZGIS_TOOLS_PROJECT_FEATURE_WRITER_H
#define KZGIS_TOOLS_PROJECT_FEATURE_WRITER_H

#include <kzgis/chart.h>

#include <cstdint>
#include <memory>
#include <string>

#include "tools/project/map_feature.h"
#include "tools/support/attributes.h"

namespace kzgis::tools {

class FeatureWriter {
 public:
  FeatureWriter() = default;
  virtual ~FeatureWriter() = default;
  FeatureWriter(const FeatureWriter&) = delete;
  FeatureWriter& operator=(const FeatureWriter&) = delete;

  /// @param feature  not empty
  virtual void add(const MapFeature& feature) = 0;
  /// Gives the output its name.  Nothing can be added after it.
  virtual void commit() = 0;
};

/// GeoJSON: a feature for each record, with its number and its attributes as properties.
///
/// @param output  a file, or "-" for standard output
/// @param table   none, or the attributes of the records; borrowed
std::unique_ptr<FeatureWriter> make_geojson_features(const std::string& output,
                                                     const Attributes* table);

/// What the records of a shapefile are.
struct ShapefileContent {
  ShapeKind kind;
  bool many;  ///< of points: multipoints
};

/// A shapefile with its index, a table, and a ".prj" that says what the coordinates are.
///
/// The rows of the table are those of the records that are there; without a table each has the
/// number of its record.
///
/// @param output  its name, with .shp or without
/// @param table   none, or the attributes of the records; borrowed
std::unique_ptr<FeatureWriter> make_shapefile_features(const std::string& output,
                                                       const ShapefileContent& content,
                                                       const Attributes* table, const Chart& chart);

}  // namespace kzgis::tools

#endif
