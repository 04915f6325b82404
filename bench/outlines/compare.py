#!/usr/bin/env python3
"""compare.py KZGIS LAYER.shp...: polygons on maps, by this library, d3-geo and GDAL.

Prints one table: how many positions are on the wrong side of an outline, how many records are lost
or refused, and nanoseconds of processor for each vertex of the layers.

A position is wrong if it is inside of a record in degrees and its place on the map is not inside of
the record's outline there, or the other way round.  Places come from textbook formulas below (Snyder,
"Map Projections: A Working Manual", 1987), on a sphere.  Positions closer to a side on the map or
to the edge of the map than twice the tolerance do not count, nor do those where the map has no place.

GDAL and the command are timed with their reading and writing of files; d3 in memory.  GDAL runs with
-wrapdateline and sides cut to one degree, which is as near to the tolerance as it comes; d3 gets
sides cut to half a degree, because its own are great arcs.

Takes Debian's gdal-bin and python3-numpy, and d3-geo: npm install in this directory.
"""
import json
import os
import pathlib
import resource
import subprocess
import sys
import tempfile

import numpy as np

RADIUS = 6378000.0
TOLERANCE = np.pi * RADIUS / 1600.0  # half a pixel of a map 1,600 pixels wide
POSITIONS = 40  # of each record
HERE = pathlib.Path(__file__).resolve().parent


class Azimuthal:
    """A projection that draws an angle from the centre at a distance of its own."""

    def __init__(self, scale, reach_deg):
        self.scale, self.reach = scale, np.radians(reach_deg)

    def angle(self, lat, lon, base_lat):
        la, lo, b = np.radians(lat), np.radians(lon), np.radians(base_lat)
        cosine = np.sin(b) * np.sin(la) + np.cos(b) * np.cos(la) * np.cos(lo)
        return np.arccos(np.clip(cosine, -1.0, 1.0))

    def project(self, lat, lon, base_lat):
        la, lo, b = np.radians(lat), np.radians(lon), np.radians(base_lat)
        angle = self.angle(lat, lon, base_lat)
        with np.errstate(all="ignore"):
            k = np.where(angle < 1e-9, 1.0, self.scale(angle) / np.sin(angle))
        k = np.where(angle < self.reach, k, np.nan)
        x = k * np.cos(la) * np.sin(lo)
        y = k * (np.cos(b) * np.sin(la) - np.sin(b) * np.cos(la) * np.cos(lo))
        return RADIUS * x, RADIUS * y

    def from_edge(self, lat, lon, base_lat):
        return RADIUS * (self.scale(self.reach) - self.scale(self.angle(lat, lon, base_lat)))


class Upright:
    """A projection with straight parallels: how wide a radian is on one, and where it is drawn."""

    def __init__(self, width, ordinate):
        self.width, self.ordinate = width, ordinate

    def project(self, lat, lon, _):
        la = np.radians(lat)
        return RADIUS * np.radians(lon) * self.width(la), RADIUS * self.ordinate(la)

    def from_edge(self, lat, lon, _):
        return RADIUS * (np.pi - np.abs(np.radians(lon))) * self.width(np.radians(lat))


def mercator(lat):
    inside = np.abs(lat) < np.radians(85.05)
    return np.where(inside, np.arctanh(np.sin(np.where(inside, lat, 0.0))), np.nan)


# name: formulas, reach in degrees for d3, PROJ's definition.
MAPS = {
    "cartesian": (Upright(np.ones_like, lambda lat: lat), None, "+proj=eqc"),
    "mercator": (Upright(np.ones_like, mercator), None, "+proj=merc"),
    "gnomonic": (Azimuthal(np.tan, 60.0), 60, "+proj=gnom"),
    "stereographic": (Azimuthal(lambda c: 2.0 * np.tan(0.5 * c), 90.0), 90, "+proj=stere"),
    "orthographic": (Azimuthal(np.sin, 90.0), 90, "+proj=ortho"),
    "postel": (Azimuthal(lambda c: c, 180.0), None, "+proj=aeqd"),
    "lambert azimuthal": (Azimuthal(lambda c: 2.0 * np.sin(0.5 * c), 180.0), None, "+proj=laea"),
    "sanson-flamsteed": (Upright(np.cos, lambda lat: lat), None, "+proj=sinu"),
}
BASES = [(0.0, 0.0), (0.0, 180.0), (40.0, -100.0)]
NO_D3 = {"sanson-flamsteed"}  # not in d3-geo itself
UPRIGHT = {"cartesian", "mercator", "sanson-flamsteed"}  # a base latitude would only move them


def processor_s(command, **options):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run(command, capture_output=True, **options)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return done, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def polygons_of(geometry):
    """Rings of any geometry, whatever they are to each other."""
    if geometry is None:
        return []
    if geometry["type"] == "GeometryCollection":
        return [ring for part in geometry["geometries"] for ring in polygons_of(part)]
    parts = {"Polygon": [geometry.get("coordinates")], "MultiPolygon": geometry.get("coordinates")}
    return [ring for polygon in parts.get(geometry["type"], []) for ring in polygon]


def sides_of(rings):
    """Ends of all sides: x, y, x of the next, y of the next."""
    sides = [np.empty((0, 4))]
    for ring in rings:
        points = np.asarray(ring, dtype=float)[:, :2]
        sides.append(np.hstack([points, np.roll(points, -1, axis=0)]))
    return np.vstack(sides)


def is_inside(sides, x, y):
    """Whether an odd number of sides lies to the right of a point."""
    ax, ay, bx, by = sides.T
    crosses = (ay > y) != (by > y)
    with np.errstate(all="ignore"):
        at = ax + (y - ay) * (bx - ax) / (by - ay)
    return int(np.count_nonzero(crosses & (at > x))) % 2 == 1


def distance(sides, x, y):
    ax, ay, bx, by = sides.T
    ux, uy = bx - ax, by - ay
    length2 = ux * ux + uy * uy
    with np.errstate(all="ignore"):
        t = np.clip(((x - ax) * ux + (y - ay) * uy) / length2, 0.0, 1.0)
    t = np.where(length2 > 0.0, t, 0.0)
    return np.min(np.hypot(x - ax - t * ux, y - ay - t * uy), initial=np.inf)


def wrapped(lon):
    return (lon + 180.0) % 360.0 - 180.0


def drawn_sides(sides, formulas, base):
    """Sides in degrees as chords of a tenth of a degree on the map; what the map tears is left out."""
    pieces = [np.empty((0, 4))]
    for ax, ay, bx, by in sides:
        n = max(1, int(np.ceil(max(abs(bx - ax), abs(by - ay)) / 0.1)))
        t = np.linspace(0.0, 1.0, n + 1)
        lon, lat = ax + t * (bx - ax), ay + t * (by - ay)
        x, y = formulas.project(lat, wrapped(lon - base[1]), base[0])
        piece = np.column_stack([x[:-1], y[:-1], x[1:], y[1:]])
        torn = np.abs(np.diff(wrapped(lon - base[1]))) > 180.0
        pieces.append(piece[~torn & np.isfinite(piece).all(axis=1)])
    return np.vstack(pieces)


class Judge:
    """Positions of every record, and which of them are inside in degrees."""

    def __init__(self, records):
        random = np.random.default_rng(20)
        self.records = [sides_of(rings) for rings in records]
        self.positions = []
        for sides in self.records:
            low, high = sides[:, :2].min(axis=0) - 1.0, sides[:, :2].max(axis=0) + 1.0
            lon = random.uniform(max(low[0], -180.0), min(high[0], 180.0), POSITIONS)
            lat = random.uniform(max(low[1], -90.0), min(high[1], 90.0), POSITIONS)
            inside = [is_inside(sides, *place) for place in zip(lon, lat)]
            self.positions.append((lon, lat, inside))

    def places(self, formulas, base):
        """For each record, places on the map that count, and whether they are inside."""
        result = []
        for sides, (lon, lat, inside) in zip(self.records, self.positions):
            drawn = drawn_sides(sides, formulas, base)
            from_base = wrapped(lon - base[1]), base[0]
            x, y = formulas.project(lat, *from_base)
            inner = formulas.from_edge(lat, *from_base) > 2.0 * TOLERANCE
            result.append([
                (*place, is_in) for *place, is_in, counts in zip(x, y, inside, inner)
                if counts and np.isfinite(place).all()
                and distance(drawn, *place) > 2.0 * TOLERANCE
            ])
        return result


def errors(places, outlines):
    """Wrong positions, and records whose inside is on the map and which are not."""
    wrong = lost = 0
    for expected, rings in zip(places, outlines):
        if not rings:
            lost += any(inside for _, _, inside in expected)
            continue
        sides = sides_of(rings)
        wrong += sum(is_inside(sides, x, y) != inside for x, y, inside in expected)
    return wrong, lost


def features(path, count):
    """Rings on the map by record, from a file whose features say which record they are."""
    outlines = [[] for _ in range(count)]
    for feature in json.loads(path.read_text()).get("features", []):
        outlines[feature["properties"]["record"]] += polygons_of(feature["geometry"])
    return outlines


def by_kzgis(kzgis, layer, out, name, base):
    done, seconds = processor_s([
        kzgis, "project", layer, "--to", name, "--base", f"{base[0]},{base[1]}", "--tolerance",
        str(TOLERANCE), "-o", out
    ])
    return done.returncode == 0, seconds


def by_gdal(layer, out, definition, base):
    target = f"{definition} +lat_0={base[0]} +lon_0={base[1]} +R={RADIUS} +units=m +no_defs"
    if definition in ("+proj=eqc", "+proj=merc", "+proj=sinu"):
        target = target.replace(f"+lat_0={base[0]} ", "")
    done, seconds = processor_s([
        "ogr2ogr", "-f", "GeoJSON", "-skipfailures", "-wrapdateline", "-segmentize", "1", "-s_srs",
        f"+proj=longlat +R={RADIUS} +no_defs", "-t_srs", target, out, layer
    ])
    return done.returncode == 0, seconds


def record_layer(layer, directory):
    """The layer with its records' numbers as their only attribute, and its rings."""
    numbered = directory / "layer.shp"
    table = pathlib.Path(layer).stem
    subprocess.run(
        ["ogr2ogr", "-dialect", "OGRSQL", "-sql", f"SELECT FID AS record FROM \"{table}\"",
         numbered, layer], check=True, capture_output=True)
    text = subprocess.run(["ogr2ogr", "-f", "GeoJSON", "/vsistdout/", numbered], check=True,
                          capture_output=True, text=True).stdout
    records = [polygons_of(f["geometry"]) for f in json.loads(text)["features"]]
    return numbered, records


def main():
    kzgis, layers = sys.argv[1], sys.argv[2:]
    maps = [(name, base) for name in MAPS for base in BASES if base[0] == 0.0 or name not in UPRIGHT]
    print("| layer | map | base | kzgis wrong / lost | ns | GDAL wrong / lost | ns "
          "| d3-geo wrong / lost | ns |")
    print("|---|---|---|---|---|---|---|---|---|")
    for layer in layers:
        with tempfile.TemporaryDirectory() as tmp:
            tmp = pathlib.Path(tmp)
            numbered, records = record_layer(layer, tmp)
            vertices = sum(len(ring) for rings in records for ring in rings)
            judge = Judge(records)
            asked = [(name, base) for name, base in maps if name not in NO_D3]
            question = {
                "polygons": records, "tolerance": TOLERANCE, "radius": RADIUS,
                "maps": [{"name": name, "lat": base[0], "lon": base[1], "reach": MAPS[name][1]}
                         for name, base in asked]
            }
            answer = subprocess.run(["node", HERE / "d3_outlines.mjs"], input=json.dumps(question),
                                    capture_output=True, text=True, check=True).stdout
            by_d3 = dict(zip(asked, json.loads(answer)))
            for name, base in maps:
                formulas, _, definition = MAPS[name]
                places = judge.places(formulas, base)
                cells = []
                for tool in ("kzgis", "gdal"):
                    out = tmp / f"{tool}.geojson"
                    seconds = np.inf
                    for _ in range(3):
                        out.unlink(missing_ok=True)
                        _, took = (by_kzgis(kzgis, numbered, out, name, base) if tool == "kzgis" else
                                   by_gdal(numbered, out, definition, base))
                        seconds = min(seconds, took)
                    wrong, lost = errors(places, features(out, len(records)))
                    cells += [f"{wrong} / {lost}", f"{1e9 * seconds / vertices:.0f}"]
                if (name, base) in by_d3:
                    drawn = by_d3[name, base]
                    wrong, lost = errors(places, drawn["outlines"])
                    cells += [f"{wrong} / {lost}", f"{drawn['ns']:.0f}"]
                else:
                    cells += ["", ""]
                print(f"| {pathlib.Path(layer).stem} | {name} | {base[0]:g},{base[1]:g} | "
                      + " | ".join(cells) + " |", flush=True)


if __name__ == "__main__":
    os.environ.setdefault("CPL_LOG", os.devnull)
    main()
