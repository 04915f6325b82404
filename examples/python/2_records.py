#!/usr/bin/env python3
"""2_records.py SHAPEFILE: the records of a shapefile, and the largest areas among them."""
import sys

import kzgis

# An equal-area chart makes areas true: degrees are none.
chart = kzgis.Chart("lambert cylindrical", radius=6371.007)

areas = {}
with kzgis.Shapefile(sys.argv[1]) as file:
    print(file, "with", ", ".join(field.name for field in file.fields))
    for record in file.sound(lambda index, error: print("damaged:", error)):
        # Whatever its rings do, the outline is valid: even a record whose sides cross.
        outline = chart.project_area(record, tolerance=1.0)
        areas[record.attributes["NAME"]] = outline.area

for name in sorted(areas, key=areas.get, reverse=True)[:5]:
    print(f"{name:15} {areas[name] / 1e6:6.2f} million square kilometres")
