// One point has one meaning in every subcommand, and `project` reads what it wrote.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <numbers>
#include <sstream>
#include <string>
#include <vector>

#include "kzgis/chart.h"
#include "shape/shapefile_writer.h"
#include "support/capture.h"
#include "tools/command.h"

namespace {

using kzgis::projection_name;

class OneMeaning : public ShapefileTest {
 protected:
  static int run(const std::vector<std::string>& arguments) {
    std::vector<const char*> argv{"kzgis"};
    for (const std::string& argument : arguments) argv.push_back(argument.c_str());
    StdoutCapture summary;
    return kzgis::tools::run_command(static_cast<int>(argv.size()), argv.data());
  }

  static std::vector<std::string> lines_of(const std::string& file) {
    std::vector<std::string> lines;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
  }

  static std::vector<std::string> fields_of(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line + ',');
    for (std::string field; std::getline(in, field, ',');) fields.push_back(field);
    return fields;
  }

  /// x, y and z of every point, as `kzgis project` writes them.
  std::vector<std::string> projected(const std::vector<Point>& points,
                                     const std::vector<std::string>& options) {
    std::ofstream csv(path("points.csv"));
    csv.precision(17);
    csv << "lon,lat\n";
    for (const auto& [lon, lat] : points) csv << lon << ',' << lat << '\n';
    csv.close();
    std::vector<std::string> arguments{"project", path("points.csv"), "-o", path("world.csv")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(run(arguments), 0);
    std::vector<std::string> world;
    for (const std::string& line : lines_of(path("world.csv"))) {
      const std::vector<std::string> fields = fields_of(line);
      world.push_back(fields[2] + ' ' + fields[3] + ' ' + fields[4]);
    }
    world.erase(world.begin());
    return world;
  }

  /// The same of the corners of a polygon, as `kzgis triangulate` writes them.
  std::vector<std::string> triangulated(const std::vector<Point>& points,
                                        const std::vector<std::string>& options) {
    std::vector<Point> ring = points;
    ring.push_back(ring.front());
    const std::string file = write(ShapefileWriter(5).add(arc_content({0}, ring, 5))) + ".shp";
    std::vector<std::string> arguments{"triangulate", file, "-o", path("mesh.obj")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(run(arguments), 0);
    std::vector<std::string> world;
    for (const std::string& line : lines_of(path("mesh.obj"))) {
      if (line.starts_with("v ")) world.push_back(line.substr(2));
    }
    return world;
  }
};

TEST_F(OneMeaning, TenWestLiesTenDegreesInTheWest) {
  const std::vector<std::string> options{"--to", "mercator", "--radius", "1"};
  const std::vector<Point> points{{-10, 10}, {-9, 10}, {-10, 11}};
  const std::vector<std::string> world = projected(points, options);
  EXPECT_NEAR(std::stod(world[0]), -std::numbers::pi / 18.0, 1e-15);
  EXPECT_THAT(triangulated(points, options), testing::IsSupersetOf(world));
}

TEST_F(OneMeaning, ProjectAndTriangulateGiveOnePointTheSameNumbers) {
  for (const double base_lon : {0.0, 7.3, 170.0, -123.4, 350.0}) {
    for (int type = 0; type < GlobeProj; ++type) {
      // West and east of the base and over the antimeridian, a whole turn away in one case.
      const double turn = base_lon == 7.3 ? 360.0 : 0.0;
      const auto at = [&](double lon, double lat) { return Point{base_lon + turn + lon, lat}; };
      const std::vector<Point> points{at(-10, 10), at(0, 3.3), at(25.7, 9), at(12, 44), at(-4, 31)};
      const std::vector<std::string> options{
          "--to",     std::string(projection_name(static_cast<projType>(type))),
          "--base",   "20," + std::to_string(base_lon),
          "--radius", "1"};
      // Sides that are curves have corners between.
      EXPECT_THAT(triangulated(points, options), testing::IsSupersetOf(projected(points, options)))
          << options[1] << " about " << base_lon;
    }
  }
}

// On the globe, to the last digits: pieces that the antimeridian divides are joined there.
TEST_F(OneMeaning, ProjectAndTriangulateGiveOnePointOfTheGlobeTheSamePlace) {
  const std::vector<Point> points{{170, 10}, {180, 3.3}, {205.7, 9}, {192, 44}, {176, 31}};
  const std::vector<std::string> options{"--to", "globe", "--radius", "1"};
  const std::vector<std::string> corners = triangulated(points, options);
  for (const std::string& world : projected(points, options)) {
    EXPECT_TRUE(std::any_of(corners.begin(), corners.end(), [&](const std::string& corner) {
      std::istringstream a(world);
      std::istringstream b(corner);
      double off = 0.0;
      for (double p = 0, q = 0; a >> p && b >> q;) off = std::max(off, std::fabs(p - q));
      return off < 1e-15;
    })) << world;
  }
}

TEST_F(OneMeaning, WhatGoesThereComesBack) {
  const std::vector<Point> points{{-10, 10}, {0, 0}, {89, 1}, {-47.25, 60}, {33, -30}};
  for (int type = 0; type < 15; ++type) {
    const std::string name(projection_name(static_cast<projType>(type)));
    const std::vector<std::string> options{"--to", name, "--base", "5,2"};
    projected(points, options);
    std::vector<std::string> back{"project", "--inverse", path("world.csv"), "-o",
                                  path("back.csv")};
    back.insert(back.end(), options.begin(), options.end());
    ASSERT_EQ(run(back), 0) << name;
    const std::vector<std::string> lines = lines_of(path("back.csv"));
    ASSERT_EQ(lines.size(), points.size() + 1);
    EXPECT_EQ(lines[0], "lon,lat,x,y,z,lat,lon,alt");
    for (std::size_t i = 0; i < points.size(); ++i) {
      const std::vector<std::string> fields = fields_of(lines[i + 1]);
      ASSERT_EQ(fields.size(), 8U);
      EXPECT_NEAR(std::stod(fields[5]), points[i].second, 1e-9) << name;
      EXPECT_NEAR(std::stod(fields[6]), points[i].first, 1e-9) << name;
    }
  }
}

}  // namespace
