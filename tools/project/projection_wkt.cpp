// Well-known text after Open Geospatial Consortium 01-009, "Coordinate Transformation Services"
// (2001), with the names of projections and parameters that ".prj" files have.
//
// Our origin is the base point.  Where a projection of that name has its own on the equator, or
// Bonne's for the pole at the pole, the false northing is the way from there.

#include "tools/project/projection_wkt.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

#include "tools/support/number_text.h"

namespace kzgis::tools {

namespace {

/// How a projection is called, and with which parameters.
struct Named {
  const char* name;
  double false_northing = 0.0;  ///< in radii
  std::vector<std::pair<const char*, double>> parameters;
};

constexpr double kDegree = std::numbers::pi / 180.0;
constexpr const char* kCentralMeridian = "Central_Meridian";
constexpr const char* kLatitudeOfOrigin = "Latitude_Of_Origin";
constexpr const char* kFirstParallel = "Standard_Parallel_1";
constexpr const char* kSecondParallel = "Standard_Parallel_2";

Named named(projType type, const ChartParameters& p) {
  const std::pair<const char*, double> meridian(kCentralMeridian, p.base_lon);
  const std::pair<const char*, double> origin(kLatitudeOfOrigin, p.base_lat);
  const std::pair<const char*, double> middle_lon("Longitude_Of_Center", p.base_lon);
  const std::pair<const char*, double> middle_lat("Latitude_Of_Center", p.base_lat);
  const std::pair<const char*, double> first(kFirstParallel, p.first_parallel.value_or(0.0));
  const std::pair<const char*, double> second(kSecondParallel, p.second_parallel.value_or(0.0));
  const std::pair<const char*, double> equator(kFirstParallel, 0.0);
  const std::pair<const char*, double> scale("Scale_Factor", 1.0);
  const double base = p.base_lat * kDegree;
  const double pole = p.base_lat < 0.0 ? -90.0 : 90.0;
  switch (type) {
    case MercatorProj:
      return {"Mercator", 0.0, {meridian, first}};
    case LambertCylindricalProj:
      return {"Cylindrical_Equal_Area", -std::sin(base), {meridian, equator}};
    case GnomonicProj:
      return {"Gnomonic", 0.0, {middle_lon, middle_lat}};
    case StereographicProj:
      return {"Stereographic", 0.0, {meridian, scale, origin}};
    case OrthographicProj:
      return {"Orthographic", 0.0, {middle_lon, middle_lat}};
    case PostelProj:
      return {"Azimuthal_Equidistant", 0.0, {meridian, origin}};
    case LambertAzimuthalProj:
      return {"Lambert_Azimuthal_Equal_Area", 0.0, {meridian, origin}};
    case LambertConicProj:
      return {"Lambert_Conformal_Conic", 0.0, {meridian, first, second, origin}};
    case AlbersProj:
      return {"Albers", 0.0, {meridian, first, second, origin}};
    case CassiniSoldnerProj:
      return {"Cassini", 0.0, {meridian, scale, origin}};
    case BonneProj:
      return {"Bonne", 0.0, {meridian, {kFirstParallel, p.base_lat}}};
    case WernerProj:
      return {"Bonne", pole * kDegree - base, {meridian, {kFirstParallel, pole}}};
    case SansonFlamsteedProj:
      return {"Sinusoidal", -base, {meridian}};
    default:
      return {"Equidistant_Cylindrical", -base, {meridian, equator}};
  }
}

void append_parameter(std::string& text, const char* name, double value) {
  text += std::string(",PARAMETER[\"") + name + "\",";
  append_number(text, value + 0.0);  // no -0
  text += ']';
}

}  // namespace

std::string projection_wkt(const Chart& chart) {
  ChartParameters parameters = chart.parameters();
  parameters.base_lon = std::remainder(parameters.base_lon, 360.0);
  const Named projection = named(chart.type(), parameters);
  std::string radius;
  append_number(radius, parameters.radius);
  // Programs know the dialect by the beginnings of these names.
  const std::string sphere = "GEOGCS[\"GCS_Sphere\",DATUM[\"D_Sphere\",SPHEROID[\"Sphere\"," +
                             radius +
                             ",0.0]],PRIMEM[\"Greenwich\",0.0],"
                             "UNIT[\"Degree\",0.0174532925199433]]";
  std::string text = "PROJCS[\"Sphere_" + std::string(projection.name) + "\"," + sphere +
                     ",PROJECTION[\"" + projection.name + "\"]";
  append_parameter(text, "False_Easting", 0.0);
  append_parameter(text, "False_Northing", parameters.radius * projection.false_northing);
  for (const auto& [name, value] : projection.parameters) append_parameter(text, name, value);
  return text + ",UNIT[\"Meter\",1.0]]";
}

}  // namespace kzgis::tools
