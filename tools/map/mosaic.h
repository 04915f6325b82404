// Countries as tiles: who borders on whom, and colours that tell neighbours apart.

#ifndef KZGIS_TOOLS_MAP_MOSAIC_H
#define KZGIS_TOOLS_MAP_MOSAIC_H

#include <kzgis/mesh.h>

#include <cstddef>
#include <vector>

namespace kzgis::map {

/// What the polygons of one layer are to each other when they tile the land, as countries
/// do: two of them are neighbours when an edge of one is an edge of the other, vertex for
/// vertex.
struct Mosaic {
  std::vector<std::vector<std::size_t>> neighbours;  ///< of each shape, by its index
  Outline borders;                                   ///< the shared edges as lines, each once
};

/// Finds the shared edges and takes them out of the shapes' outlines, lines in degrees each: what
/// is left there is coast.
Mosaic take_mosaic(std::vector<Outline>& outlines);

/// Gives each shape one of `count` tints, as an index, so that neighbours differ as long as
/// there are tints enough; all are used about equally often.
std::vector<std::size_t> assign_tints(const Mosaic& mosaic, std::size_t count);

}  // namespace kzgis::map

#endif
