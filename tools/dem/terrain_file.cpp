// One part, in the units that the light on a relief is calculated in.

#include "tools/dem/terrain_file.h"

#include <cstddef>
#include <memory>
#include <utility>

#include "tools/dem/relief.h"

namespace kzgis::tools {

void write_terrain(std::ostream& out, MeshFormat format, const ElevationGrid& grid,
                   std::span<const double> x, std::span<const double> y, std::span<const double> z,
                   std::span<const std::uint32_t> triangles) {
  const CellSize cell = cell_size(grid);
  const double x_m = cell.x_m / grid.step_x;
  const double y_m = cell.y_m / grid.step_y;
  const double z_m = elevation_unit_m(grid);
  MeshPart part;
  part.triangles.assign(triangles.begin(), triangles.end());
  part.vertices.reserve(x.size());
  for (std::size_t i = 0; i < x.size(); ++i) {
    part.vertices.push_back({x[i] * x_m, y[i] * y_m, z[i] * z_m});
  }
  constexpr bool kSpatial = true;
  const std::unique_ptr<MeshWriter> writer = make_mesh_writer(format, out, kSpatial);
  writer->add(std::move(part));
  writer->finish();
}

}  // namespace kzgis::tools
