// The picture of an elevation model.

#ifndef KZGIS_TOOLS_DEM_RELIEF_PICTURE_H
#define KZGIS_TOOLS_DEM_RELIEF_PICTURE_H

#include <kzgis/elevation.h>

#include <ostream>
#include <string>

#include "tools/dem/relief.h"
#include "tools/picture/render.h"

namespace kzgis::tools {

/// What a picture shows of the elevations.
struct ReliefStyle {
  bool shaded = true;
  bool tinted = true;
  Sun sun;
};

/// The lowest and the highest elevation with their unit, or that there are none.
std::string range_text(const ElevationGrid& grid);

/// Draws a grid with its name, a scale of colours in the unit of the elevations, and a
/// scale of distance where the ground has a unit.
void draw_relief(std::ostream& out, PictureFormat format, const ElevationGrid& grid,
                 const ReliefStyle& style);

}  // namespace kzgis::tools

#endif
