// The classic meaning of world coordinates, array by array.

#include "chart/families.h"
#include "kzgis/chart.h"

namespace kzgis {
namespace {

/// What FromTo hands out, and takes back the next time.
struct Triple {
  Triple() = default;
  Triple(const Triple&) = delete;
  Triple& operator=(const Triple&) = delete;
  ~Triple() { delete[] xyz; }
  double* xyz = nullptr;
};

}  // namespace

std::size_t project_classic(const Projection& projection, std::span<const double> lat,
                            std::span<const double> lon, std::span<const double> alt,
                            std::span<double> x, std::span<double> y, std::span<double> z) {
  const chart::Spans spans{lat, lon, alt, x, y, z, true};
  Projection working(projection);
  Triple world;
  std::size_t without_place = 0;
  const std::size_t n = spans.size();
  for (std::size_t i = 0; i < n; ++i) {
    // A refusal is one of the settings: the class would complain of every point again.
    const bool placed =
        without_place == 0 && working.FromTo(LatLon(lat[i], lon[i]), alt[i], &world.xyz) > 0;
    without_place += placed ? chart::put(spans, i, true, world.xyz[0], world.xyz[1], world.xyz[2])
                            : chart::put(spans, i, false, 0.0, 0.0, 0.0);
  }
  return without_place;
}

}  // namespace kzgis
