#!/usr/bin/env python3
"""Polygons: what lies in what, what is wrong with them, and the same region made valid."""
import numpy as np

import kzgis

square = np.array([(0, 0), (8, 0), (8, 8), (0, 8)])
lake = [(1, 1), (5, 1), (5, 5), (1, 5)]
island = [(2, 2), (3, 2), (3, 3)]

parents, depths = kzgis.nest([island, square, lake])
print("parents", parents, "depths", depths)

star = np.array([(np.sin(a), np.cos(a)) for a in np.arange(5) * 0.8 * np.pi])
try:
    kzgis.triangulate(star)
except kzgis.PolygonError as error:
    print(f"refused: {error.reason}; ring {error.ring}, vertex {error.vertex}")
print(len(kzgis.find_flaws(star)), "crossings in all")

outline = kzgis.make_valid(star)  # odd-even: the middle is outside
print(outline, f"area {outline.area:.4f}")

# Anything with __geo_interface__ is a polygon, and what comes out has one.
geo = outline.__geo_interface__
print(geo["type"], "of", len(geo["coordinates"]), "polygons")
print(kzgis.triangulate(geo))
