#!/usr/bin/env python3
"""5_relief.py DEM PICTURE MESH: a mountain in the light, and in few triangles."""
import sys

import matplotlib

matplotlib.use("Agg")

import kzgis
import kzgis.plot

model, picture, mesh = sys.argv[1:]
grid = kzgis.read_dem(model)
print(grid)
print("bounds", grid.bounds, "in", grid.ground_unit)

ax = kzgis.plot.relief(grid, azimuth=300)
ax.figure.savefig(picture, dpi=100, bbox_inches="tight")

for tolerance in (5, 20, 50):
    surface = grid.triangulate(tolerance)
    print(f"{len(surface):6} triangles are nowhere more than {tolerance:2} metres off")
surface.save(mesh)
