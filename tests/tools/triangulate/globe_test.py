#!/usr/bin/env python3
"""globe_test.py KZGIS DATA_DIR: countries on the globe are whole, meet, and have their areas.

Polygons are read from the shapefile here, their areas on the sphere are the closed form of what
lies between a side, straight in degrees, and the equator.
"""
import bisect
import collections
import math
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "mesh_files"))
import other_readers as other  # noqa: E402

KZGIS, DATA = sys.argv[1:]
LAYER = pathlib.Path(DATA, "ne/ne_110m_countries.shp")
CROSSED = 140
# Records on the antimeridian, and how many of their shores' vertices lie there.
SHORES = {7: 1, 54: 2, 136: 4}


def place(lon, lat):
    lon, lat = math.radians(lon), math.radians(lat)
    return (math.cos(lat) * math.cos(lon), math.cos(lat) * math.sin(lon), math.sin(lat))


def sphere_area(rings):
    total = []
    for ring in rings:
        for (x0, y0), (x1, y1) in zip(ring, [*ring[1:], ring[0]]):
            half = math.radians(y1 - y0) / 2
            mean = math.sin(math.radians(y0 + y1) / 2) * (math.sin(half) / half if half else 1.0)
            total.append(math.radians(x1 - x0) * mean)
    return abs(math.fsum(total))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def dot(a, b):
    return sum(p * q for p, q in zip(a, b))


def excess(a, b, c):
    """The area of a triangle of great arcs (J. Tuynman, "Areas of spherical and hyperbolic
    triangles in terms of their midpoints", 2013, has the formula's history)."""
    return 2.0 * math.atan2(dot(a, cross(b, c)), 1.0 + dot(a, b) + dot(b, c) + dot(c, a))


class Globe:
    """The mesh of a layer, each record with vertices of its own."""

    def __init__(self, path, *options):
        subprocess.run([KZGIS, "triangulate", str(LAYER), "--to", "globe", "--radius", "1", "-o",
                        str(path), *options], check=True, capture_output=True, timeout=120)
        mesh = other.read_ply(path)
        self.vertices = mesh.vertices
        self.faces = collections.defaultdict(list)
        for face, record in zip(mesh.faces, mesh.records):
            self.faces[record].append(face)

    def borders(self, record):
        """The edges of one triangle, as pairs of places."""
        edges = collections.Counter()
        for a, b, c in self.faces[record]:
            edges.update([(a, b), (b, c), (c, a)])
        assert set(edges.values()) == {1}, record
        return {(self.vertices[a], self.vertices[b]) for a, b in edges if (b, a) not in edges}

    def corners(self, record):
        return [tuple(self.vertices[v] for v in face) for face in self.faces[record]]


def check_record(globe, record, rings):
    """No triangle is turned over, but for what rounding makes of a needle; and areas differ by no more than what lies between a
    piece of a degree, straight in degrees, and its great arc: on a parallel, at most a 16th of its
    square away."""
    triangles = globe.corners(record)
    areas = [excess(*triangle) for triangle in triangles]
    rounding = 1e-16
    assert min(areas) > -rounding, (record, min(areas))
    assert all(abs(math.hypot(*v) - 1.0) < 1e-15 for t in triangles for v in t), record
    exact = sphere_area(rings)
    border = math.fsum(math.dist(a, b) for a, b in globe.borders(record))
    between = border * math.radians(1.0) ** 2 / 16
    assert abs(math.fsum(areas) - exact) < between, (record, math.fsum(areas), exact, between)


def check_own_vertices(globe, record, rings):
    """Each vertex of the file is one of the border, but those at the pole, which is inside."""
    there = sorted({v for edge in globe.borders(record) for v in edge})
    for ring in rings:
        for lon, lat in ring:
            own = place(lon, lat)
            first = bisect.bisect_left(there, (own[0] - 1e-14, -2.0, -2.0))
            last = bisect.bisect_right(there, (own[0] + 1e-14, 2.0, 2.0))
            found = any(math.dist(own, v) < 1e-14 for v in there[first:last])
            assert found or lat == -90.0, (record, lon, lat)


def check_neighbours(globe, records):
    """A side that two records have in common is a border of both, once in each direction."""
    owners = collections.defaultdict(set)
    for number, rings in enumerate(records, 1):
        if number == CROSSED:
            continue
        for ring in rings:
            for a, b in zip(ring, [*ring[1:], ring[0]]):
                if a != b:
                    owners[min(a, b), max(a, b)].add(number)
    borders = {n: globe.borders(n) for n in range(1, len(records) + 1)}
    shared = 0
    for (a, b), numbers in owners.items():
        if len(numbers) != 2 or math.dist(a, b) > 0.9:
            continue
        first, second = numbers
        ends = [place(*a), place(*b)]
        near = lambda edge, p, q: math.dist(edge[0], p) < 1e-14 and math.dist(edge[1], q) < 1e-14
        mine = [e for e in borders[first] if near(e, *ends) or near(e, *ends[::-1])]
        assert len(mine) == 1, (first, second, a, b, mine)
        assert mine[0][::-1] in borders[second], (first, second, a, b)
        shared += 1
        if shared == 200:
            break
    assert shared == 200, shared


def check_antimeridian(globe, record, shores):
    """No edge of a triangle runs along 180 degrees: the vertices there are those of shores."""
    on_it = {v for t in globe.corners(record) for v in t if v[0] < 0.0 and abs(v[1]) < 1e-9}
    assert len(on_it) == shores, (record, on_it)
    assert not [e for e in globe.borders(record) if e[0] in on_it and e[1] in on_it], record


def main():
    records = other.read_shapefile(LAYER)
    with tempfile.TemporaryDirectory() as tmp:
        globe = Globe(pathlib.Path(tmp, "a.ply"))
        for number, rings in enumerate(records, 1):
            if number != CROSSED:
                check_record(globe, number, rings)
                check_own_vertices(globe, number, rings)
        check_neighbours(globe, records)
        for number, shores in SHORES.items():
            check_antimeridian(globe, number, shores)
        fine = Globe(pathlib.Path(tmp, "b.ply"), "--longest-side", "2")
        for number, rings in enumerate(records, 1):
            if number != CROSSED:
                check_record(fine, number, rings)
        longest = max(math.dist(t[i], t[i - 1]) for n in fine.faces for t in fine.corners(n)
                      for i in range(3))
        assert longest <= 2.0 * math.sin(math.radians(1.0)) + 1e-15, longest
        check_neighbours(fine, records)


main()
