// Coordinates from files that must be degrees.

#ifndef KZGIS_TOOLS_SUPPORT_DEGREES_H
#define KZGIS_TOOLS_SUPPORT_DEGREES_H

#include <span>
#include <string>

namespace kzgis::tools {

/// Whether two numbers may be a longitude and a latitude: the one from -720 to 720, since some
/// files run from 0 to 360 and some once more round, the other from pole to pole.  Projected
/// coordinates give themselves away.
bool are_degrees(double lon, double lat);

/// "coordinates are not degrees: 500000, 51"
std::string not_degrees(double lon, double lat);

/// The same of the first point that are none; empty when all are.
std::string why_not_degrees(std::span<const double> lon, std::span<const double> lat);

/// "500000, 51"
std::string pair_text(double x, double y);

}  // namespace kzgis::tools

#endif
