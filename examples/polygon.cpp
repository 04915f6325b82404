#include <kzgis/mesh.h>

#include <cstdint>
#include <iostream>
#include <vector>

int main() {
  const std::vector<double> x{0, 9, 9, 0, 3, 6, 6, 3};  // a square, and a hole in it
  const std::vector<double> y{0, 0, 9, 9, 3, 3, 6, 6};
  const std::vector<std::int32_t> starts{0, 4};
  const kzgis::Rings rings{x, y, starts};

  const auto mesh = kzgis::triangulate(rings);
  if (!mesh) {
    std::cerr << mesh.error().message << '\n';  // which ring and vertex, and why
    return 1;
  }
  // Three vertex numbers a triangle, counter-clockwise.
  std::cout << mesh->triangles.size() / 3 << " triangles\n";

  const auto nesting = kzgis::nest(rings);
  if (!nesting) return 1;
  std::cout << "ring 1 lies in ring " << nesting->parent[1] << ", at depth " << nesting->depth[1]
            << '\n';
}
