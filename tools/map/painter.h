// A sheet of paper with a map on it.

#ifndef KZGIS_TOOLS_MAP_PAINTER_H
#define KZGIS_TOOLS_MAP_PAINTER_H

#include <cairo.h>

#include <string>
#include <vector>

#include "tools/map/layer.h"
#include "tools/map/page.h"
#include "tools/map/style.h"

namespace kzgis::map {

struct StyledLayer {
  Layer layer;
  Role role = Role::land;
  /// Of each record the sides between its triangles, in degrees as the file has them; empty
  /// when they are not to be drawn.
  std::vector<Outline> mesh = {};
};

/// What a picture looks like apart from its layers.
struct Sheet {
  double width = 0.0;
  double height = 0.0;
  double graticule_deg = 15.0;  ///< 0: none
  std::string title;            ///< empty: none
  bool globe = false;           ///< the map is round and shaded like a ball
};

/// The sheet's size when the user names none: the map's own shape, 1600 on the long side.
void set_usual_size(Sheet& sheet, const Chart& chart);

/// Fits the chart between the sheet's margins.
Page lay_out(const Chart& chart, const Sheet& sheet);

/// Draws the whole sheet: paper, sea, layers, graticule, frame, title.
///
/// Filled layers lie under the graticule, lines and points above it; within each group the
/// later layer lies above the earlier.
///
/// @param page  what `lay_out` gave for this sheet
void paint(cairo_t* cairo, const Page& page, const Sheet& sheet,
           const std::vector<StyledLayer>& layers);

}  // namespace kzgis::map

#endif
