#ifndef KZGIS_TOOLS_MAP_LAYER_H
#define KZGIS_TOOLS_MAP_LAYER_H

#include <functional>
#include <string>
#include <vector>

#include "tools/map/geo.h"

namespace kzgis::map {

enum class LayerKind { points, lines, polygons };

/// One record of a shapefile: its rings, its lines, or one part with all its points.
using Parts = std::vector<GeoLine>;

struct Layer {
  LayerKind kind = LayerKind::points;
  std::vector<Parts> records;  ///< null and empty records are left out
};

/// Receives one line, without a line end, on each record that could not be read.
using Complain = std::function<void(const std::string&)>;

/// Reads a whole shapefile.
///
/// A record that cannot be read is complained of and skipped.  Throws `tools::CommandError`
/// when the file is no shapefile or its coordinates are not degrees.
Layer read_layer(const std::string& file, const Complain& complain);

}  // namespace kzgis::map

#endif
