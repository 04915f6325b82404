// Meshes and nestings together with what stands in their way.

#ifndef KZGIS_TESTS_SUPPORT_MESHED_H
#define KZGIS_TESTS_SUPPORT_MESHED_H

#include <kzgis/mesh.h>

#include <utility>

/// A mesh, or an empty one with its flaw: for tests that look at both.
struct Meshed : kzgis::Mesh {
  kzgis::Flaw flaw;
};

inline Meshed meshed(const kzgis::Rings& rings, const kzgis::MeshOptions& options = {}) {
  kzgis::Result<kzgis::Mesh, kzgis::Flaw> result = kzgis::triangulate(rings, options);
  if (!result) return {{}, std::move(result).error()};
  return {std::move(*result), {}};
}

/// The same for nestings.
struct Nested : kzgis::Nesting {
  kzgis::Flaw flaw;
};

inline Nested nested(const kzgis::Rings& rings) {
  kzgis::Result<kzgis::Nesting, kzgis::Flaw> result = kzgis::nest(rings);
  if (!result) return {{}, std::move(result).error()};
  return {std::move(*result), {}};
}

#endif
