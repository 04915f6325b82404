// Pictures of the real world, looked at pixel by pixel where it is known what is there.

#include <cairo.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <sstream>
#include <string>

#include "lines.h"
#include "support/sanitized.h"
#include "tools/map/layer.h"
#include "tools/map/map_chart.h"
#include "tools/map/page.h"
#include "tools/map/painter.h"
#include "tools/picture/render.h"

namespace kzgis::map {
namespace {

const std::string kData = KZGIS_TEST_DATA_DIR "/ne/";

struct Place {
  const char* name;
  double lat;
  double lon;
  bool land;
};

// Each a few hundred kilometres from the nearest coast of the 1:110m layer, the Caspian
// hole apart.
constexpr Place kPlaces[] = {
    {"Congo", 0, 20, true},           {"Sahara", 23, 8, true},
    {"Kansas", 39, -99, true},        {"Brazil", -10, -55, true},
    {"Australia", -25, 135, true},    {"Yakutia", 65, 125, true},
    {"Chukotka", 67.5, 178, true},    {"Chukotka, west of 180", 67, -179, true},
    {"Antarctica", -82, 60, true},    {"near the south pole", -89, -120, true},
    {"Caspian Sea", 42, 50.7, false}, {"Pacific", 0, -140, false},
    {"Fiji basin", -30, -179, false}, {"South Atlantic", -30, -18, false},
    {"Indian Ocean", -35, 85, false}, {"near the north pole", 89, 30, false},
};

class Picture {
 public:
  Picture(const Chart& chart, const Sheet& sheet, const std::vector<StyledLayer>& layers)
      : page_(lay_out(chart, sheet)),
        surface_(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(sheet.width),
                                            static_cast<int>(sheet.height)),
                 cairo_surface_destroy) {
    cairo_t* cairo = cairo_create(surface_.get());
    paint(cairo, page_, sheet, layers);
    EXPECT_EQ(cairo_status(cairo), CAIRO_STATUS_SUCCESS);
    cairo_destroy(cairo);
    cairo_surface_flush(surface_.get());
  }

  const Page& page() const { return page_; }

  struct Rgb {
    int red, green, blue;
  };
  Rgb at(const Pixel& p) const {
    const auto* row =
        cairo_image_surface_get_data(surface_.get()) +
        static_cast<std::ptrdiff_t>(p.y) * cairo_image_surface_get_stride(surface_.get());
    const auto pixel =
        reinterpret_cast<const std::uint32_t*>(row)[static_cast<std::ptrdiff_t>(p.x)];
    return {static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
            static_cast<int>(pixel & 255)};
  }

 private:
  Page page_;
  std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface_;
};

std::vector<StyledLayer> world() {
  return {{read_layer(kData + "ne_110m_land.shp",
                      [](const std::string& line) { ADD_FAILURE() << line; }),
           Role::land}};
}

// Land is yellowish and the sea bluish, in the globe's shadow too.
void expect_right(const Picture& picture, bool in_the_dark, const std::string& label) {
  const Page& page = picture.page();
  const ChartParameters& shown = page.chart().parameters();
  int seen = 0;
  for (const Place& place : kPlaces) {
    const std::optional<Pixel> at = page.place(place.lon, place.lat);
    if (!at) continue;
    if (shown.reach_deg) {
      // The rim of a map of the whole globe squeezes land into less than a pixel; the
      // globe's is in the dark.
      const double share =
          std::hypot(at->x - page.centre().x, at->y - page.centre().y) / page.radius();
      if (share > (in_the_dark ? 0.8 : 0.96)) continue;
    } else {
      // Lines at the border, and where latitudes lie closer than lines are wide, are no land.
      const Box& w = *shown.window;
      const double lon = std::remainder(place.lon - shown.base_lon, 360.0);
      const bool under_frame = w.max_x - std::fabs(lon) < 6.0 || w.max_y - place.lat < 0.3;
      if (under_frame || place.lat - w.min_y < 3.0) continue;
    }
    ++seen;
    const Picture::Rgb colour = picture.at(*at);
    EXPECT_EQ(colour.red > colour.blue, place.land)
        << label << ": " << place.name << " is " << colour.red << ' ' << colour.green << ' '
        << colour.blue;
  }
  EXPECT_GE(seen, 2) << label;
}

TEST(Picture, LandIsLandAndSeaIsSeaInEveryProjection) {
  const std::vector<StyledLayer> layers = world();
  Sheet sheet{700, 700, 0.0, ""};
  int pairs = 0;
  for (int type = 0; type <= 14; ++type) {
    for (const double base_lon : {0.0, 180.0, -100.0}) {
      for (const double base_lat : {0.0, 45.0, 90.0, -30.0}) {
        MapRequest request;
        request.type = static_cast<projType>(type);
        request.base = std::pair{base_lat, base_lon};
        const bool latitude_matters = (type >= GnomonicProj && type <= LambertAzimuthalProj) ||
                                      type == BonneProj || type == WernerProj || type == GlobeProj;
        if (!latitude_matters && base_lat != 45.0) continue;
        if (type == BonneProj && base_lat == 0.0) continue;
        // Every projection, and every base, but not every pair.
        constexpr int kLess = kWatchedShare > 1 ? 4 : 1;
        if (latitude_matters && ++pairs % kLess != 0) continue;
        sheet.globe = type == GlobeProj;
        const Picture picture(map_chart(request), sheet, layers);
        std::ostringstream label;
        label << "type " << type << " base " << base_lat << ", " << base_lon;
        expect_right(picture, sheet.globe, label.str());
        for (const Pixel& corner : {Pixel{1, 1}, Pixel{698, 1}, Pixel{1, 698}, Pixel{698, 698}}) {
          const Picture::Rgb colour = picture.at(corner);
          EXPECT_EQ(colour.red + colour.green + colour.blue, 3 * 255) << label.str();
        }
      }
    }
  }
}

TEST(Picture, TheTwoHalvesOfChukotkaMeetWithoutAHairline) {
  Sheet sheet{900, 900, 0.0, ""};
  for (const projType type : {StereographicProj, CartesianProj, SansonFlamsteedProj}) {
    MapRequest request;
    request.type = type;
    request.base = std::pair{67.0, 173.37};  // so that the seam runs through pixels
    const Picture picture(map_chart(request), sheet, world());
    for (double lat = 66.8; lat < 67.8; lat += 0.1) {
      const Pixel at = picture.page().place(180.0, lat).value();
      for (const double dx : {-1.0, 0.0, 1.0}) {
        const Picture::Rgb colour = picture.at({at.x + dx, at.y});
        EXPECT_NEAR(colour.red, 241, 2) << "type " << type << " at " << lat;
        EXPECT_NEAR(colour.blue, 213, 2) << "type " << type << " at " << lat;
      }
    }
  }
}

TEST(Picture, PlacesAreDots) {
  const StyledLayer places{
      {LayerKind::points, {outline({{{30.0, 10.0}}}), outline({{{-150.0, 0.0}}})}}, Role::places};
  MapRequest request;
  request.type = OrthographicProj;
  const Picture picture(map_chart(request), Sheet{600, 600, 15.0, ""}, {places});
  const Picture::Rgb dot = picture.at(picture.page().place(30.0, 10.0).value());
  EXPECT_GT(dot.red, 150);
  EXPECT_LT(dot.green, 120);
  // The one on the far side is not drawn on the near one.
  const Picture::Rgb none = picture.at(picture.page().place(-30.0, 0.5).value());
  EXPECT_GT(none.green, 150);
}

// One record of two parts, which the file cuts at 180 degrees.
TEST(Picture, TheTwoHalvesOfACountryMeetWithoutAHairline) {
  const StyledLayer russia{{read_layer(kData + "ne_110m_countries.shp",
                                       [](const std::string& line) { ADD_FAILURE() << line; })},
                           Role::countries};
  MapRequest request;
  request.type = LambertConicProj;
  request.base = std::pair{67.0, 173.37};
  const Picture picture(map_chart(request), Sheet{900, 900, 0.0, ""}, {russia});
  const Picture::Rgb inland = picture.at(picture.page().place(178.5, 67.3).value());
  for (double lat = 66.8; lat < 67.8; lat += 0.1) {
    const Pixel at = picture.page().place(180.0, lat).value();
    for (const double dx : {-1.0, 0.0, 1.0}) {
      const Picture::Rgb colour = picture.at({at.x + dx, at.y});
      EXPECT_NEAR(colour.red, inland.red, 2) << "at " << lat;
      EXPECT_NEAR(colour.blue, inland.blue, 2) << "at " << lat;
    }
  }
}

TEST(Picture, TheSameDrawingGivesTheSameBytes) {
  const std::vector<StyledLayer> layers = world();
  for (const tools::PictureFormat format :
       {tools::PictureFormat::png, tools::PictureFormat::svg, tools::PictureFormat::pdf}) {
    std::string first;
    for (int round = 0; round < 2; ++round) {
      const Sheet sheet{300, 200, 30.0, "World"};
      const Page page = lay_out(map_chart({}), sheet);
      std::ostringstream out;
      tools::render(out, format, sheet.width, sheet.height,
                    [&](cairo_t* cairo) { paint(cairo, page, sheet, layers); });
      EXPECT_GT(out.str().size(), 5000u);
      if (round == 0) first = out.str();
      // Cairo numbers the parts of its SVG files through a whole run.
      if (format != tools::PictureFormat::svg) {
        EXPECT_TRUE(first == out.str());
      }
    }
    const std::string start = format == tools::PictureFormat::png   ? "\x89PNG"
                              : format == tools::PictureFormat::svg ? "<?xml"
                                                                    : "%PDF";
    EXPECT_EQ(first.substr(0, start.size()), start);
  }
}

TEST(Sheet, UsualSizeHasTheMapsShape) {
  const auto size_of = [](projType type, const char* title) {
    MapRequest request;
    request.type = type;
    Sheet sheet;
    sheet.title = title;
    set_usual_size(sheet, map_chart(request));
    return std::pair{sheet.width, sheet.height};
  };
  EXPECT_EQ(size_of(CartesianProj, ""), (std::pair{1600.0, 800.0}));
  EXPECT_EQ(size_of(GlobeProj, ""), (std::pair{1600.0, 1600.0}));
  EXPECT_EQ(size_of(CassiniSoldnerProj, "").second, 1600.0);
  EXPECT_GT(size_of(CartesianProj, "World").second, 830.0);
}

}  // namespace
}  // namespace kzgis::map
