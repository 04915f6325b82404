#!/usr/bin/env python3
"""4_meshes.py SHAPEFILE: a whole layer as triangles in flat arrays, in threads of its own."""
import sys

import numpy as np

import kzgis

with kzgis.Shapefile(sys.argv[1]) as file:
    meshes = kzgis.triangulate_many(file, errors="collect")
    for index, error in meshes.errors.items():
        print(f"record {index + 1} ({file[index].attributes['NAME']}): {error}")
print(meshes)

# One vertex buffer, one index buffer, and where each record begins: as graphics cards and Arrow
# have it.
print("vertices", meshes.vertices.shape, "triangles", meshes.triangles.shape)
counts = np.diff(meshes.triangle_offsets)
print("most triangles:", counts.max(), "in record", counts.argmax() + 1)

# The least angle of a triangle tells how good it is.
least = meshes.angles().min(axis=1)
print(f"median of the least angles: {np.median(least):.1f} degrees")
