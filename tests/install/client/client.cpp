// A client as small as can be that still needs the compiled library.

#include <kzgis/dem.h>
#include <kzgis/elevation.h>
#include <kzgis/latlon.h>
#include <kzgis/projection.h>
#include <kzgis/shape.h>
#include <kzgis/terrain.h>

#include <iostream>

int main() {
  Projection projection(CartesianProj);
  double* world = nullptr;
  if (projection.FromTo(LatLon(0.0, 90.0), &world) != 3) return 1;
  const double x = world[0];
  delete[] world;
  const KZ_GIS_ESRI_Shape_c none(nullptr);
  if (none.ShapeFileIsOpen() != 0) return 1;
  if (DEM_LogicalRecord().fetchElevations() != nullptr) return 1;
  if (kzgis::read_dem("none")) return 1;
  if (kzgis::triangulate_terrain({}, -1.0)) return 1;
  std::cout << LatLon(324000L, -36000L) << '\n';
  // A quarter of a turn on the default globe.
  return x > 10018538.0 && x < 10018540.0 ? 0 : 1;
}
