#!/usr/bin/env python3
"""outlines_test.py KZGIS OGR2OGR DATA_DIR: projected shapefiles as GDAL reads them.

The .prj says where a point lies: GDAL, told nothing else, brings points back to the degrees that
they came from.  Attributes stay with their records, .shp and .geojson hold the same shapes, and
GEOS finds them valid.
"""
import json
import math
import pathlib
import subprocess
import sys
import tempfile

KZGIS, OGR2OGR, DATA = sys.argv[1:]
RADIUS = 6378000.0
SPHERE = f"+proj=longlat +R={RADIUS} +no_defs"

MAPS = [
    ("cartesian", []), ("mercator", []), ("mercator", ["--parallels", "40,0"]),
    ("lambert-cylindrical", []), ("gnomonic", []), ("stereographic", []), ("orthographic", []),
    ("postel", []), ("lambert-azimuthal", []), ("lambert-conic-conformal", []),
    ("lambert-conic-conformal", ["--parallels", "35,35"]), ("albers", []),
    ("albers", ["--parallels", "-10,50"]), ("cassini-soldner", []), ("bonne", []), ("werner", []),
    ("sanson-flamsteed", []),
]
BASES = [(40.0, 10.0), (-35.0, -70.0)]


def project(layer, output, *options):
    run = subprocess.run([KZGIS, "project", str(layer), "-o", str(output), *options], check=True,
                         capture_output=True, encoding="utf-8", timeout=120)
    assert run.stderr == "", run.stderr
    return run.stdout


def ogr(source, to, *options):
    """A layer of GDAL's as GeoJSON, with all digits."""
    subprocess.run([OGR2OGR, "-f", "GeoJSON", "-lco", "COORDINATE_PRECISION=15", str(to), str(source),
                    *options], check=True, capture_output=True, timeout=120)
    return json.loads(to.read_text(encoding="utf-8"))["features"]


def distance(a, b):
    """In metres on the sphere, by the half chord."""
    vectors = [(math.cos(math.radians(lat)) * math.cos(math.radians(lon)),
                math.cos(math.radians(lat)) * math.sin(math.radians(lon)), math.sin(math.radians(lat)))
               for lon, lat in (a, b)]
    return RADIUS * math.dist(*vectors)


def check_points(tmp):
    layer = pathlib.Path(DATA, "ne/ne_110m_places.shp")
    degrees = [f["geometry"]["coordinates"] for f in ogr(layer, tmp / "degrees.json")]
    for name, options in MAPS:
        for base in BASES:
            what = (name, *options, base)
            options_of_map = ["--to", name, f"--base={base[0]},{base[1]}", *options]
            project(layer, tmp / "p.shp", *options_of_map)
            project(layer, tmp / "p.geojson", *options_of_map)
            ours = json.loads((tmp / "p.geojson").read_text(encoding="utf-8"))["features"]
            if name in ("bonne", "werner") and base[0] < 0.0:
                # PROJ has no way back from these in the south.
                forth = ogr(layer, tmp / "forth.json", "-s_srs", SPHERE, "-t_srs",
                            f"ESRI::{tmp / 'p.prj'}")
                assert len(forth) == len(ours) == 243, what
                for feature, there in zip(ours, forth):
                    off = math.dist(*(f["geometry"]["coordinates"] for f in (feature, there)))
                    assert off < 1e-3, (what, feature["properties"], off)
                continue
            back = ogr(tmp / "p.shp", tmp / "back.json", "-t_srs", SPHERE)
            assert len(back) == len(ours) > 60, (what, len(back), len(ours))
            for feature, there in zip(ours, back):
                record = feature["properties"].pop("record")
                off = distance(there["geometry"]["coordinates"], degrees[record - 1])
                assert off < 1e-3, (what, record, degrees[record - 1], off)
                assert feature["properties"] == there["properties"], what


def rings(geometry):
    polygons = geometry["coordinates"]
    if geometry["type"] == "Polygon":
        polygons = [polygons]
    return [ring for polygon in polygons for ring in polygon]


def check_polygons(tmp):
    """The same rings in both files, each polygon with its own holes; all of the lakes."""
    layer = pathlib.Path(DATA, "ne/ne_50m_lakes_with_islands.shp")
    options = ["--to", "lambert-azimuthal", "--base", "52,5"]
    said = project(layer, tmp / "l.shp", *options)
    assert said == project(layer, tmp / "l.geojson", *options)
    ours = json.loads((tmp / "l.geojson").read_text(encoding="utf-8"))["features"]
    read = ogr(tmp / "l.shp", tmp / "read.json")
    count = 0
    for feature, other in zip(ours, read):
        key = lambda ring: (len(ring), min(ring))
        mine, theirs = (sorted(rings(f["geometry"]), key=key) for f in (feature, other))
        assert len(mine) == len(theirs)
        for a, b in zip(mine, theirs):
            assert sorted(a[1:]) == sorted(b[1:]), feature["properties"]
        count += len(mine)
    assert len(read) == 19 and count == 71, (len(read), count)
    for file in ("l.shp", "l.geojson"):
        sums = ogr(tmp / file, tmp / "sums.json", "-dialect", "SQLite", "-sql",
                   "SELECT SUM(ST_IsValid(geometry)) AS valid, SUM(ST_Area(geometry)) AS area, "
                   "SUM(ST_NumGeometries(geometry)) AS polygons FROM l")[0]["properties"]
        assert sums["valid"] == 19, sums
        # The closed form on the sphere gives 480821189830.27.
        assert abs(sums["area"] / 480821189830.27 - 1.0) < 1e-5, sums


def check_countries(tmp):
    """Cut by the seam and the limb, with a record that crosses itself: valid all the same."""
    layer = pathlib.Path(DATA, "ne/ne_110m_countries.shp")
    for name, base in (("albers", "40,150"), ("orthographic", "50,-100"), ("bonne", "-30,20")):
        project(layer, tmp / "c.shp", "--to", name, f"--base={base}")
        found = ogr(tmp / "c.shp", tmp / "valid.json", "-dialect", "SQLite", "-sql",
                    "SELECT SUM(ST_IsValid(geometry)) AS valid, COUNT(*) AS records FROM c")
        assert found[0]["properties"]["valid"] == found[0]["properties"]["records"] > 30, name


def main():
    with tempfile.TemporaryDirectory() as tmp:
        for check in (check_points, check_polygons, check_countries):
            check(pathlib.Path(tmp))


main()
