// kzgis info on outline files and data banks.

#ifndef KZGIS_TOOLS_INFO_BANK_INFO_H
#define KZGIS_TOOLS_INFO_BANK_INFO_H

#include "tools/info/info_report.h"

namespace kzgis::tools {

/// Reports what an outline file (".cbd") holds, level by level.
void report_bank_file(InfoReport& info);

/// Reports the polylines and points of each theme's levels in a whole data bank.  Throws
/// `CommandError` when the directory holds no outline file.
void report_bank(InfoReport& info);

}  // namespace kzgis::tools

#endif
