#!/usr/bin/env python3
"""geojson_test.py KZGIS OGRINFO LAYER: has GeoJSON of a layer read by others.

JSON, rings, winding and record numbers are looked at here; ogrinfo must open the file and
count as many features as the layer has records.
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile


def main():
    kzgis, ogrinfo, layer = sys.argv[1:]
    with tempfile.TemporaryDirectory() as tmp:
        path = str(pathlib.Path(tmp, "mesh.geojson"))
        subprocess.run([kzgis, "triangulate", layer, "-o", path], check=True, capture_output=True)
        with open(path, encoding="utf-8") as file:
            features = json.load(file)["features"]
        numbers = [feature["properties"]["record"] for feature in features]
        assert numbers == list(range(1, 20)), numbers
        total = 0.0
        for feature in features:
            assert feature["geometry"]["type"] == "MultiPolygon"
            for polygon in feature["geometry"]["coordinates"]:
                (ring,) = polygon
                assert len(ring) == 4 and ring[0] == ring[3], ring
                (ax, ay), (bx, by), (cx, cy) = ring[:3]
                twice = (bx - ax) * (cy - ay) - (by - ay) * (cx - ax)
                assert twice > 0.0, ring
                total += 0.5 * twice
        # GDAL 3.6, sum of OGR_GEOM_AREA over the layer.
        assert abs(total - 55.2242755889896) < 1e-9, total
        said = subprocess.run([ogrinfo, "-al", "-so", path], check=True, capture_output=True,
                              encoding="utf-8").stdout
        assert re.search(r"^Geometry: Multi Polygon$", said, re.M), said
        assert re.search(r"^Feature Count: 19$", said, re.M), said


main()
