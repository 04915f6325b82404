// What a map's coordinates are, in the words of a ".prj" file.

#ifndef KZGIS_TOOLS_PROJECT_PROJECTION_WKT_H
#define KZGIS_TOOLS_PROJECT_PROJECTION_WKT_H

#include <kzgis/chart.h>

#include <string>

namespace kzgis::tools {

/// The coordinate system of a flat chart on its sphere, as well-known text in the dialect of
/// shapefiles.  The unit is the metre: radii in metres make it true.
std::string projection_wkt(const Chart& chart);

}  // namespace kzgis::tools

#endif
