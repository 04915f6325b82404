#!/usr/bin/env python3
"""closed_test.py KZGIS ASSIMP DATA_DIR: extruded polygons are closed bodies of the right volume.

Edges are counted here, in the files: each has two triangles, in opposite directions, also where
a polygon touches itself in a vertex and four walls stand on one place.
"""
import pathlib
import struct
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "mesh_files"))
import other_readers as other  # noqa: E402

KZGIS, ASSIMP, DATA = sys.argv[1:]

# Each a polygon of some area that touches itself in a vertex, and how many vertices its bottom
# has: those twice that two corners share, and none in the midst, where stretches that two rings
# share are no sides.
TOUCHING = {
    "two squares at a corner": ([[(0, 0), (0, 1), (1, 1), (1, 0)], [(1, 1), (1, 2), (2, 2), (2, 1)]],
                                2.0, 8),
    "one ring through a vertex twice": ([[(0, 0), (0, 1), (1, 1), (1, 2), (2, 2), (2, 1), (1, 1),
                                          (1, 0)]], 2.0, 8),
    "a hole at the outer ring": ([[(0, 0), (0, 4), (4, 4), (4, 0)], [(0, 0), (2, 1), (1, 2)]],
                                 14.5, 7),
    "holes that touch": ([[(0, 0), (0, 4), (4, 4), (4, 0)], [(1, 1), (2, 1), (2, 2), (1, 2)],
                          [(2, 2), (3, 2), (3, 3), (2, 3)]], 14.0, 12),
    "four squares at a corner": ([[(0, 0), (0, 1), (1, 1), (1, 0)], [(1, 1), (1, 2), (2, 2), (2, 1)],
                                  [(1, 1), (0, 1), (0, 2), (1, 2)], [(1, 0), (1, 1), (2, 1), (2, 0)]],
                                 4.0, 8),
}


def write_shapefile(path, rings):
    """A file of one polygon, without index; from "ESRI Shapefile Technical Description" (1998)."""
    closed = [[*ring, ring[0]] for ring in rings]
    points = [point for ring in closed for point in ring]
    starts, count = [], 0
    for ring in closed:
        starts.append(count)
        count += len(ring)
    box = struct.pack("<4d", 0, 0, 9, 9)
    content = struct.pack("<i", 5) + box + struct.pack("<2i", len(rings), count)
    content += struct.pack(f"<{len(starts)}i", *starts)
    content += b"".join(struct.pack("<2d", *point) for point in points)
    record = struct.pack(">2i", 1, len(content) // 2) + content
    header = struct.pack(">7i", 9994, 0, 0, 0, 0, 0, (100 + len(record)) // 2)
    path.write_bytes(header + struct.pack("<2i", 1000, 5) + box + bytes(32) + record)


def triangulate(layer, path, *options):
    subprocess.run([KZGIS, "triangulate", str(layer), "-o", str(path), *options], check=True,
                   capture_output=True, timeout=120)


def check_ply(path):
    """Returns the mesh of a body that must be closed, each record by itself."""
    mesh = other.read_ply(path)
    assert not other.open_edges(mesh.faces), other.open_edges(mesh.faces)[:3]
    return mesh


def corners(mesh, record):
    return [tuple(mesh.vertices[v] for v in face)
            for face, of in zip(mesh.faces, mesh.records) if of == record]


def check_touching(tmp):
    for name, (rings, area, vertices) in TOUCHING.items():
        layer = tmp / "layer.shp"
        write_shapefile(layer, rings)
        for options in ([], ["--plain"]):
            triangulate(layer, tmp / "a.ply", "--extrude", "2.5", *options)
            mesh = check_ply(tmp / "a.ply")
            assert len(mesh.vertices) == 2 * vertices, (name, len(mesh.vertices))
            assert abs(other.volume(corners(mesh, 1)) - 2.5 * area) < 1e-12, name
            assert {z for _, _, z in mesh.vertices} == {0.0, 2.5}, name
            triangulate(layer, tmp / "a.stl", "--extrude", "2.5", *options)
            _, triangles = other.read_stl(tmp / "a.stl")
            # Places are all that the format has: as many triangles one way as the other.
            assert other.unbalanced_edges(triangles) == [], name
            assert abs(other.volume(triangles) - 2.5 * area) < 1e-5, name


def check_layer(tmp):
    """Heights from the table, to the last record; some have holes that touch."""
    layer = pathlib.Path(DATA, "ne/ne_50m_lakes_with_islands.shp")
    records = other.read_shapefile(layer)
    heights = other.read_column(layer.with_suffix(".dbf"), "scalerank")
    raised = [number for number, height in enumerate(heights, 1) if height > 0]
    said = subprocess.run([KZGIS, "triangulate", str(layer), "-o", str(tmp / "b.ply"), "--extrude",
                           "@scalerank"], capture_output=True, encoding="utf-8", timeout=120,
                          check=False)
    assert said.returncode == (0 if len(raised) == len(records) else 1), said
    mesh = check_ply(tmp / "b.ply")
    assert sorted(set(mesh.records)) == raised
    for number in raised:
        expected = other.record_area(records[number - 1]) * heights[number - 1]
        assert abs(other.volume(corners(mesh, number)) - expected) < 1e-9, number


def check_countries(tmp):
    layer = pathlib.Path(DATA, "ne/ne_110m_countries.shp")
    triangulate(layer, tmp / "c.ply", "--extrude", "1", "--repair")
    mesh = check_ply(tmp / "c.ply")
    # All but the record that crosses itself, the 140th, whose rings do not tell its area.
    for number, rings in enumerate(other.read_shapefile(layer), 1):
        if number != 140:
            volume = other.volume(corners(mesh, number))
            assert abs(volume - other.record_area(rings)) < 1e-9, (number, volume)
    triangulate(layer, tmp / "c.glb", "--extrude", "1", "--repair")
    read = other.assimp_ply(ASSIMP, tmp / "c.glb", tmp / "read.ply")
    body = [tuple(read.vertices[v] for v in face) for face in read.faces]
    whole = [tuple(mesh.vertices[v] for v in face) for face in mesh.faces]
    assert abs(other.volume(body) / other.volume(whole) - 1.0) < 1e-5
    for normal in read.normals:  # walls stand, tops and bottoms lie
        assert abs(normal[1]) > 0.999 or abs(normal[1]) < 1e-3, normal


def check_globe(tmp):
    layer = pathlib.Path(DATA, "ne/ne_110m_countries.shp")
    triangulate(layer, tmp / "d.ply", "--extrude", "0.25", "--repair", "--to", "globe", "--radius",
                "2")
    mesh = check_ply(tmp / "d.ply")
    radii = sorted(sum(c * c for c in vertex) ** 0.5 for vertex in mesh.vertices)
    half = len(radii) // 2
    assert abs(radii[0] - 2) < 1e-12 and abs(radii[half - 1] - 2) < 1e-12
    assert abs(radii[half] - 2.25) < 1e-12 and abs(radii[-1] - 2.25) < 1e-12
    assert min(other.volume(corners(mesh, record)) for record in set(mesh.records)) > 0.0


def main():
    with tempfile.TemporaryDirectory() as tmp:
        for check in (check_touching, check_layer, check_countries, check_globe):
            check(pathlib.Path(tmp))


main()
