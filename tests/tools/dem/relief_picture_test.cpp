// The picture of a quadrangle, looked at pixel by pixel and word by word.

#include "tools/dem/relief_picture.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <sstream>
#include <string>

#include "tools/dem/small_grid.h"

namespace kzgis::tools {

namespace {

/// The colour at a place of a PNG, 0xRRGGBB.
std::uint32_t pixel_of(const std::string& png, int x, int y) {
  std::istringstream in(png);
  const auto read = [](void* stream, unsigned char* bytes, unsigned size) {
    auto& from = *static_cast<std::istringstream*>(stream);
    return from.read(reinterpret_cast<char*>(bytes), size) ? CAIRO_STATUS_SUCCESS
                                                           : CAIRO_STATUS_READ_ERROR;
  };
  const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> image(
      cairo_image_surface_create_from_png_stream(read, &in), cairo_surface_destroy);
  std::uint32_t pixel = 0;
  std::memcpy(&pixel,
              cairo_image_surface_get_data(image.get()) +
                  std::ptrdiff_t{y} * cairo_image_surface_get_stride(image.get()) +
                  std::ptrdiff_t{x} * 4,
              sizeof pixel);
  return pixel & 0xFFFFFFU;
}

// The sheet is 700 pixels wide; the map, 240 by 240, begins at (230, 92).
TEST(DrawRelief, ShowsElevationsWhereTheCornersAreNotTheirs) {
  ElevationGrid grid = small_grid(20, 20, [](kz_long, kz_long column) { return column; });
  grid.lowest = 0.0F;
  grid.highest = 19.0F;
  grid.corners = {{{500050, 3999940}, {500050, 4000050}, {500150, 4000050}, {500150, 3999940}}};
  std::ostringstream out;
  draw_relief(out, PictureFormat::png, grid, {false, true, {}});
  // Half-way up lies straw and brown, not the green of the lowest place.
  const std::uint32_t colour = pixel_of(out.str(), 350, 212);
  EXPECT_GT(colour >> 16U, 220U);
  EXPECT_LT(colour & 0xFFU, 180U);
}

// Its corners enclose no area.  The map, 12 by 60, begins at (344, 92).
TEST(DrawRelief, ShowsASingleColumn) {
  ElevationGrid grid = small_grid(5, 1, [](kz_long row, kz_long) { return row; });
  grid.lowest = 0.0F;
  grid.highest = 4.0F;
  grid.corners = {{{500000, 4000050}, {500000, 4000090}, {500000, 4000090}, {500000, 4000050}}};
  std::ostringstream out;
  draw_relief(out, PictureFormat::png, grid, {false, true, {}});
  EXPECT_LT(pixel_of(out.str(), 347, 122) & 0xFFU, 180U);  // straw, not white
}

TEST(DrawRelief, OfVoidsAloneSaysSo) {
  ElevationGrid grid =
      small_grid(3, 3, [](kz_long, kz_long) { return std::numeric_limits<double>::quiet_NaN(); });
  grid.lowest = grid.highest = std::numeric_limits<float>::quiet_NaN();
  std::ostringstream all_void;
  draw_relief(all_void, PictureFormat::png, grid, {});
  EXPECT_EQ(range_text(grid), "no elevations");
  grid.lowest = 1.0F;
  grid.highest = 2.5F;
  grid.empty_cells = 0;
  EXPECT_EQ(range_text(grid), "1 to 2.5 metres");
}

}  // namespace

}  // namespace kzgis::tools
