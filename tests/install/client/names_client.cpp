// Triangulates beside own_names.cpp: the two must not meet.

#include <kzgis/polytree.h>

#include <iostream>

bool names_are_my_own();

int main() {
  const double x[] = {0, 0, 9, 9};
  const double y[] = {0, 9, 9, 0};
  const kz_ulong start[] = {0};
  const KZ_GIS_PolygonTree_c square(0, 0, 0, 0, 1, start, 4, x, y);
  kz_ulong count = 0;
  kz_ulong corners[6];
  if (square.Triangulate(&count, corners) != 1 || count != 6) {
    std::cout << "no triangles\n";
    return 1;
  }
  if (!names_are_my_own()) {
    std::cout << "the library took names of the program's for its own\n";
    return 1;
  }
}
