// kzgis info on an elevation model.

#ifndef KZGIS_TOOLS_INFO_DEM_INFO_H
#define KZGIS_TOOLS_INFO_DEM_INFO_H

#include "tools/info/info_report.h"

namespace kzgis::tools {

/// Reports the header of a DEM by the classic class, which takes some numbers wrong, and in a
/// line what the elevations are.
void report_dem(InfoReport& info);

}  // namespace kzgis::tools

#endif
