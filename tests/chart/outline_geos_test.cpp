// Areas on the plane, judged by GEOS: they are valid multipolygons.

#include <geos_c.h>

#include <memory>
#include <string>

#include "chart/support.h"
#include "kzgis/outline.h"
#include "kzgis/shapefile.h"

namespace {

GEOSContextHandle_t geos() {
  static const std::unique_ptr<GEOSContextHandle_HS, decltype(&GEOS_finish_r)> handle(
      GEOS_init_r(), GEOS_finish_r);
  return handle.get();
}

std::string ring_text(const kzgis::Outline& outline, std::size_t ring) {
  const auto first = static_cast<std::size_t>(outline.starts[ring]);
  const std::size_t end = ring + 1 < outline.starts.size()
                              ? static_cast<std::size_t>(outline.starts[ring + 1])
                              : outline.x.size();
  std::string text = "(";
  for (std::size_t i = first; i <= end; ++i) {
    char point[64];
    const std::size_t v = i < end ? i : first;
    std::snprintf(point, sizeof point, "%s%.17g %.17g", i > first ? "," : "", outline.x[v],
                  outline.y[v]);
    text += point;
  }
  return text + ")";
}

/// Boundaries, each with the holes that lie right in it.
std::string text_of(const kzgis::Outline& outline, const kzgis::Nesting& nesting) {
  std::string text;
  for (std::size_t ring = 0; ring < outline.starts.size(); ++ring) {
    if (nesting.depth[ring] % 2 == 0) continue;
    text += (text.empty() ? "MULTIPOLYGON((" : ",(") + ring_text(outline, ring);
    for (std::size_t hole = 0; hole < outline.starts.size(); ++hole) {
      if (nesting.parent[hole] == static_cast<std::int32_t>(ring)) {
        text += "," + ring_text(outline, hole);
      }
    }
    text += ")";
  }
  return text.empty() ? "MULTIPOLYGON EMPTY" : text + ")";
}

std::string flaw_of(const kzgis::Outline& outline) {
  const auto nesting = kzgis::nest(outline.rings());
  if (!nesting) return nesting.error().message;
  const auto destroy = [](GEOSGeometry* geometry) { GEOSGeom_destroy_r(geos(), geometry); };
  const std::unique_ptr<GEOSGeometry, decltype(destroy)> geometry(
      GEOSGeomFromWKT_r(geos(), text_of(outline, *nesting).c_str()), destroy);
  if (!geometry) return "no geometry";
  const std::unique_ptr<char, void (*)(void*)> reason(GEOSisValidReason_r(geos(), geometry.get()),
                                                      [](void* p) { GEOSFree_r(geos(), p); });
  return std::string(reason.get()) == "Valid Geometry" ? "" : reason.get();
}

TEST(ProjectAreaAndGeos, AgreeThatCountriesAreValid) {
  auto countries = kzgis::Shapefile::open(KZGIS_TEST_DATA_DIR "/ne/ne_110m_countries.shp");
  ASSERT_TRUE(countries);
  chart_test::Random random(2001);
  for (auto record : *countries) {
    ASSERT_TRUE(record);
    for (const projType type : chart_test::kFlat) {
      const kzgis::Chart chart = chart_test::made(type, chart_test::parameters_for(type, random));
      const double tolerance = std::pow(10.0, random.between(2.0, 5.5));
      const auto outline = kzgis::project_area(chart, record->rings(), tolerance);
      ASSERT_TRUE(outline) << outline.error().message;
      ASSERT_EQ(flaw_of(*outline), "")
          << "record " << record->number << " " << chart_test::told(chart) << " " << tolerance;
    }
  }
}

TEST(ProjectAreaAndGeos, AgreeThatTanglesAreMadeValid) {
  chart_test::Random random(2002);
  for (int i = 0; i < 400; ++i) {
    kzgis::Outline tangle;
    for (unsigned ring = 0; ring <= random.below(3); ++ring) {
      tangle.starts.push_back(static_cast<std::int32_t>(tangle.x.size()));
      for (unsigned v = 0; v < 4 + random.below(9); ++v) {
        tangle.x.push_back(random.below(25) * 15.0 - 180.0);
        tangle.y.push_back(random.below(13) * 15.0 - 90.0);
      }
    }
    const auto mended = kzgis::make_valid(tangle.rings());
    ASSERT_TRUE(mended) << mended.error().message;
    ASSERT_EQ(flaw_of(*mended), "") << "case " << i;
    const projType type = chart_test::kFlat[random.below(14)];
    const kzgis::Chart chart = chart_test::made(type, chart_test::parameters_for(type, random));
    const auto outline = kzgis::project_area(chart, tangle.rings(), 20000.0);
    ASSERT_TRUE(outline) << outline.error().message;
    ASSERT_EQ(flaw_of(*outline), "") << "case " << i << " " << chart_test::told(chart);
  }
}

}  // namespace
