// The two tables of tests/data/, row by row.  The inputs are doubles and the results
// are right to the last digit; what the library may differ by is its own rounding.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "kzgis/projection.h"
#include "projection/support.h"

using namespace projection_test;

namespace {

struct Row {
  std::string line;
  std::string name;
  std::vector<double> values;  // base (2), parallels (2), radius, input (3), result (3)
};

std::vector<Row> read_table(const std::string& file) {
  std::ifstream in(std::string(KZGIS_TEST_TABLE_DIR) + "/" + file);
  std::vector<Row> rows;
  std::string line;
  std::getline(in, line);  // origin
  std::getline(in, line);  // column names
  while (std::getline(in, line)) {
    Row row{line, {}, {}};
    std::istringstream fields(line);
    std::getline(fields, row.name, ',');
    for (std::string field; std::getline(fields, field, ',');) {
      row.values.push_back(std::stod(field));
    }
    rows.push_back(row);
  }
  return rows;
}

Projection projection_of(const Row& row) {
  Projection p(CartesianProj, row.values[4], row.values[0], row.values[1]);
  EXPECT_EQ(p.setProjection(UtString(row.name)), 1);
  EXPECT_EQ(p.setFirstPar(row.values[2]), 1);
  EXPECT_EQ(p.setSecondPar(row.values[3]), 1);
  return p;
}

TEST(Table, ForwardRowsHoldToTheRoundingOfTheirTerms) {
  const std::vector<Row> rows = read_table("projection_forward.csv");
  ASSERT_EQ(rows.size(), 448U);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    ASSERT_EQ(row.values.size(), 11U);
    const double* v = row.values.data();
    Projection p = projection_of(row);
    double* xyz = nullptr;
    ASSERT_EQ(p.FromTo(LatLon(v[5], v[6], v[7]), &xyz), 3);
    // The terms of a formula are about as large as the globe or the largest result.
    const double scale = std::max({v[4], std::fabs(v[8]), std::fabs(v[9]), std::fabs(v[10])});
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(xyz[i], v[8 + i], ulps(scale, 32.0));
    delete[] xyz;
  }
}

TEST(Table, InverseRowsHoldToTheRoundingOfTheirTerms) {
  const std::vector<Row> rows = read_table("projection_inverse.csv");
  ASSERT_EQ(rows.size(), 147U);
  for (const Row& row : rows) {
    SCOPED_TRACE(row.line);
    ASSERT_EQ(row.values.size(), 11U);
    const double* v = row.values.data();
    Projection p = projection_of(row);
    const LatLon* point = p.FromTo(v[5], v[6], v[7]);
    ASSERT_NE(point, nullptr);
    // An angle comes out of terms of up to a full turn.
    EXPECT_NEAR(point->fetchLat(), v[8], ulps(360.0, 4.0));
    EXPECT_NEAR(point->fetchLon(), v[9], ulps(360.0, 4.0));
    EXPECT_NEAR(point->fetchAltitude(), v[10], ulps(std::max(v[4], std::fabs(v[10])), 4.0));
  }
}

}  // namespace
