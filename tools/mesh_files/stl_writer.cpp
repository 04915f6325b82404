// 3D Systems' StereoLithography format (1989), binary and little-endian:
//    0  char[80]  text; must not begin with "solid", by which the other STL is known
//   80  uint32    number of triangles
//   84  for each  float normal[3], a[3], b[3], c[3]; uint16 0

#include "tools/mesh_files/stl_writer.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

#include "tools/mesh_files/binary.h"
#include "tools/mesh_files/float_point.h"
#include "tools/support/command_error.h"
#include "tools/support/number_text.h"

namespace kzgis::tools {

namespace {

constexpr std::size_t kHeaderBytes = 80;

/// The nearest number of eight digits, so that three of them have room in the header.
double short_number(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.8g", value);
  return parse_number(text.data()).value_or(0.0);
}

std::string header(const WorldPoint& origin) {
  std::string text = "kzgis; origin";
  for (const double coordinate : {origin.x, origin.y, origin.z}) {
    text += ' ';
    append_number(text, coordinate);
  }
  text.resize(kHeaderBytes, ' ');
  return text;
}

}  // namespace

void StlWriter::finish() {
  Extent extent;
  for (const MeshPart& part : parts_) extent.add(part);
  const WorldPoint middle = extent.middle();
  const WorldPoint origin{short_number(middle.x), short_number(middle.y), short_number(middle.z)};

  std::string text;
  std::uint64_t written = 0;
  for (const MeshPart& part : parts_) {
    const auto corner = [&](std::size_t i) {
      return to_floats(difference(part.vertices[part.triangles[i]], origin));
    };
    for (std::size_t i = 0; i < part.triangles.size(); i += 3) {
      const std::array corners{corner(i), corner(i + 1), corner(i + 2)};
      // What floats cannot tell from a line is left out: what was closed stays closed, since the
      // two sides of such a triangle lie on each other.
      if (corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0]) {
        continue;
      }
      const auto point = [&](std::size_t k) { return part.vertices[part.triangles[i + k]]; };
      const FloatPoint normal =
          to_floats(direction_of(cross_product(point(0), point(1), point(2))));
      for (const FloatPoint& p : {normal, corners[0], corners[1], corners[2]}) {
        for (const float coordinate : p) append_binary(text, coordinate);
      }
      append_bits(text, 0, 2);
      ++written;
    }
  }
  if (written > std::numeric_limits<std::uint32_t>::max()) {
    throw CommandError(std::to_string(written) + " triangles are more than .stl can count");
  }
  std::string count;
  append_binary(count, static_cast<std::uint32_t>(written));
  out_ << header(origin) << count << text;
}

}  // namespace kzgis::tools
