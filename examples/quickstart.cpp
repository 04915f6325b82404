#include <kzgis/projection.h>

#include <iostream>

int main() {
  Projection projection(OrthographicProj, 45.0, 10.0);  // seen from above 45 N, 10 E
  projection.setGlobeRadius(6371000.0);                 // so world coordinates are metres
  double* world = nullptr;                              // FromTo allocates x, y, z
  if (projection.FromTo(LatLon(48.2, 16.4), &world) < 0) return 1;
  std::cout << "x " << world[0] << ", y " << world[1] << '\n';
  if (const LatLon* place = projection.FromTo(world)) {  // and back
    std::cout << "latitude " << place->fetchLat() << ", longitude " << place->fetchLon() << '\n';
  }
  delete[] world;
}
