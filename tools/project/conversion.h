// From a point in degrees to its world coordinates, or back.

#ifndef KZGIS_TOOLS_PROJECT_CONVERSION_H
#define KZGIS_TOOLS_PROJECT_CONVERSION_H

#include <functional>
#include <optional>

#include "tools/project/columns.h"
#include "tools/support/projection_options.h"

namespace kzgis::tools {

/// Converts one point; nothing when there is no place for it.
using Conversion = std::function<std::optional<Triple>(const Triple&)>;

/// By the chart that the options describe.  Throws `UsageError` where there is none.
Conversion chart_conversion(const ProjectionOptions& options, bool inverse);

/// By the classic `Projection`, to the last bit: its short pi, its longitude differences as they
/// stand, and no way back for six of the fifteen.
///
/// Throws `UsageError` and `CommandError` for what it has no sensible meaning of.  A point has no
/// place when the class refuses it, which it says on standard error itself.
Conversion classic_conversion(const ProjectionOptions& options, bool inverse);

}  // namespace kzgis::tools

#endif
