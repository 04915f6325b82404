// What a map is drawn from: the records of one shapefile, or of one theme of a data bank.

#ifndef KZGIS_TOOLS_MAP_LAYER_H
#define KZGIS_TOOLS_MAP_LAYER_H

#include <kzgis/mesh.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tools/support/record_walk.h"

namespace kzgis::map {

enum class LayerKind { points, lines, polygons };

struct Layer {
  LayerKind kind = LayerKind::points;
  /// In degrees, x the longitude: the rings or lines of each, or its points.  Null and empty
  /// records are left out.
  std::vector<Outline> records;
  std::vector<std::uint32_t> numbers = {};  ///< of each of them in the file, counted from 1
};

/// Reads a whole shapefile.
///
/// A damaged record is complained of and skipped.  Throws `tools::CommandError`
/// when the file is no shapefile or its coordinates are not degrees.
Layer read_layer(const std::string& file, const tools::Complain& complain);

}  // namespace kzgis::map

#endif
