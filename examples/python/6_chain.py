#!/usr/bin/env python3
"""6_chain.py SHAPEFILE MESH: read, repair, project, triangulate, save.

The mesh has a node for each record with its attributes; the ending says which format.
"""
import sys

import kzgis

shapefile, mesh = sys.argv[1:]
window = (34, -27, 72, 45)  # south, west, north, east; longitudes from the base
chart = kzgis.Chart("albers", base=(52, 10), parallels=(43, 62), radius=6371.0, window=window)

outlines, attributes = [], []
with kzgis.Shapefile(shapefile) as file:
    for record in file.sound():
        flaws = kzgis.find_flaws(record)
        if flaws:
            print(f"record {record.number} is repaired: {flaws[0]}")
            record_rings = kzgis.make_valid(record)
        else:
            record_rings = record
        outline = chart.project_area(record_rings, tolerance=5.0)
        if len(outline):  # something of it is on the map
            outlines.append(outline)
            attributes.append(record.attributes)

meshes = kzgis.triangulate_many(outlines, least_angle=20)
print(meshes)
print(f"{meshes.area / 1e6:.2f} million square kilometres")
meshes.save(mesh, attributes=attributes)
