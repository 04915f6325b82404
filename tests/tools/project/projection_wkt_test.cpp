// What GDAL does not look at in outlines_test.py: the words themselves.

#include "tools/project/projection_wkt.h"

#include <gtest/gtest.h>

#include <string>

namespace kzgis::tools {
namespace {

std::string wkt(projType type, const ChartParameters& parameters) {
  return projection_wkt(Chart::make(type, parameters).value());
}

TEST(ProjectionWkt, NamesProjectionSphereAndParameters) {
  ChartParameters parameters;
  parameters.base_lat = 48.0;
  parameters.base_lon = 375.0;
  EXPECT_EQ(wkt(AlbersProj, parameters),
            "PROJCS[\"Sphere_Albers\",GEOGCS[\"GCS_Sphere\",DATUM[\"D_Sphere\",SPHEROID[\"Sphere\","
            "6378000,0.0]],PRIMEM[\"Greenwich\",0.0],UNIT[\"Degree\",0.0174532925199433]],"
            "PROJECTION[\"Albers\"],PARAMETER[\"False_Easting\",0],PARAMETER[\"False_Northing\",0],"
            "PARAMETER[\"Central_Meridian\",15],PARAMETER[\"Standard_Parallel_1\",20],"
            "PARAMETER[\"Standard_Parallel_2\",60],PARAMETER[\"Latitude_Of_Origin\",48],"
            "UNIT[\"Meter\",1.0]]");
}

// Bonne's map for the pole has its origin there: 60 degrees from the base, a radius of 3 each.
TEST(ProjectionWkt, MovesTheOriginToTheBase) {
  ChartParameters parameters;
  parameters.base_lat = -30.0;
  parameters.radius = 3.0;
  const std::string text = wkt(WernerProj, parameters);
  EXPECT_NE(text.find("PROJECTION[\"Bonne\"]"), std::string::npos) << text;
  EXPECT_NE(text.find("\"False_Northing\",-3.14159265358979"), std::string::npos) << text;
  EXPECT_NE(text.find("\"Standard_Parallel_1\",-90]"), std::string::npos) << text;
}

}  // namespace
}  // namespace kzgis::tools
