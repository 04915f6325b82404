// kzgis project with a shapefile: the outlines of its records on a map.

#ifndef KZGIS_TOOLS_PROJECT_SHAPEFILE_PROJECTION_H
#define KZGIS_TOOLS_PROJECT_SHAPEFILE_PROJECTION_H

#include <optional>
#include <string>

#include "tools/support/projection_options.h"

namespace CLI {
class App;
}

namespace kzgis::tools {

struct ShapefileProjection {
  std::string input;
  std::string output;
  std::string format;
  ProjectionOptions projection;
  std::optional<double> tolerance;
};

/// Adds --format.
void add_feature_format_option(CLI::App& command, std::string& format);

/// Draws the records and writes them.  Returns the exit code: 0 when every record was drawn.
int project_shapefile(const ShapefileProjection& options);

}  // namespace kzgis::tools

#endif
