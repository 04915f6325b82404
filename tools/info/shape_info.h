// kzgis info on a shapefile.

#ifndef KZGIS_TOOLS_INFO_SHAPE_INFO_H
#define KZGIS_TOOLS_INFO_SHAPE_INFO_H

#include "tools/info/info_report.h"

namespace kzgis::tools {

/// Reports the header of a shapefile, the verdict on its headers, and what it holds.
void report_shapefile(InfoReport& info);

}  // namespace kzgis::tools

#endif
