#!/usr/bin/env python3
"""read_back_test.py KZGIS ASSIMP OGR2OGR LAYER: meshes of a layer, read by other programs.

What they read is compared with the shapefile, read here, and with its table as GDAL reads it.
"""
import json
import math
import pathlib
import re
import subprocess
import sys
import tempfile

import other_readers as other

KZGIS, ASSIMP, OGR2OGR, LAYER = sys.argv[1:]
RECORDS = other.read_shapefile(LAYER)
TRIANGLES = [other.record_triangles(rings) for rings in RECORDS]
AREA = sum(map(other.record_area, RECORDS))
POINTS = {point for rings in RECORDS for ring in rings for point in ring}


def write(path, *options):
    """Returns the summary."""
    return subprocess.run([KZGIS, "triangulate", LAYER, "-o", str(path), *options], check=True,
                          capture_output=True, encoding="utf-8", timeout=120).stdout


def plane_area(mesh):
    def twice(face):
        (ax, ay, _), (bx, by, _), (cx, cy, _) = (mesh.vertices[v] for v in face)
        return (bx - ax) * (cy - ay) - (by - ay) * (cx - ax)
    areas = [twice(face) for face in mesh.faces]
    assert min(areas) >= 0.0, min(areas)
    return 0.5 * math.fsum(areas)


def check_points(vertices, tolerance):
    """Each is one of the layer's, and all of these are there."""
    cells = {}
    for point in POINTS:
        cells.setdefault((round(point[0], 2), round(point[1], 2)), []).append(point)
    seen = set()
    for x, y, z in vertices:
        assert abs(z) <= tolerance, z
        near = [(abs(p[0] - x) + abs(p[1] - y), p)
                for i in (-0.01, 0, 0.01) for j in (-0.01, 0, 0.01)
                for p in cells.get((round(x + i, 2), round(y + j, 2)), ())]
        assert near, (x, y)
        distance, point = min(near)
        assert distance <= tolerance, (x, y, point)
        seen.add(point)
    assert len(seen) == len(POINTS), (len(seen), len(POINTS))


def check_mesh(mesh, tolerance):
    assert len(mesh.faces) == sum(TRIANGLES), (len(mesh.faces), sum(TRIANGLES))
    check_points(mesh.vertices, tolerance)
    assert abs(plane_area(mesh) - AREA) < 20 * tolerance, (plane_area(mesh), AREA)


def moved(mesh, change):
    return mesh._replace(vertices=[change(*v) for v in mesh.vertices])


def table():
    """The properties of each record, as GDAL reads the table."""
    said = subprocess.run([OGR2OGR, "-f", "GeoJSON", "/vsistdout/", LAYER], check=True,
                          capture_output=True, encoding="utf-8", timeout=120).stdout
    return [feature["properties"] for feature in json.loads(said)["features"]]


def check_glb(tmp):
    path = tmp / "a.glb"
    write(path)
    gltf = other.read_glb_json(path)
    origin = gltf["asset"]["extras"]["origin"]
    mesh = other.assimp_ply(ASSIMP, path, tmp / "glb.ply")
    # glTF has y up, and z towards the south.
    check_mesh(moved(mesh, lambda x, y, z: (x + origin[0], origin[1] - z, y + origin[2])), 5e-5)
    for normal in mesh.normals:
        assert math.dist(normal, (0, 1, 0)) < 1e-6, normal
    counts = other.assimp_counts(ASSIMP, path)
    assert (counts["Nodes"], counts["Meshes"]) == (1 + len(RECORDS), len(RECORDS)), counts
    nodes = [gltf["nodes"][i] for i in gltf["nodes"][0]["children"]]
    expected = [{"record": number} | row for number, row in enumerate(table(), 1)]
    assert [node["extras"] for node in nodes] == expected
    assert [node["name"] for node in nodes] == [f"record_{row['record']}" for row in expected]
    # Floats count from the middle of the record: half of its longer side is all they must hold.
    for node, rings in zip(nodes, RECORDS):
        accessor = gltf["accessors"][gltf["meshes"][node["mesh"]]["primitives"][0]["attributes"]
                                     ["POSITION"]]
        for k in range(2):
            values = [point[k] for ring in rings for point in ring]
            middle = 0.5 * (min(values) + max(values))
            assert abs(node["translation"][k] + origin[k] - middle) < 1e-12
            assert abs(accessor["max"][k] - 0.5 * (max(values) - min(values))) < 1e-6
    for accessor in gltf["accessors"]:
        assert accessor["componentType"] in (5126, 5125), accessor  # floats, 32-bit indices


def check_stl(tmp):
    path = tmp / "a.stl"
    write(path)
    origin, triangles = other.read_stl(path)
    assert len(triangles) == sum(TRIANGLES)
    mesh = other.assimp_ply(ASSIMP, path, tmp / "stl.ply")
    check_mesh(moved(mesh, lambda x, y, z: (x + origin[0], y + origin[1], z + origin[2])), 5e-5)


def least_angles(mesh):
    """By the law of cosines' half-angle form, in degrees, sorted."""
    angles = []
    for face in mesh.faces:
        a, b, c = (mesh.vertices[v] for v in face)
        sides = sorted((math.dist(a, b), math.dist(b, c), math.dist(c, a)))
        s = 0.5 * sum(sides)
        sine = math.sqrt(max(0.0, (s - sides[1]) * (s - sides[2]) / (sides[1] * sides[2])))
        angles.append(math.degrees(2.0 * math.asin(sine)))
    return sorted(angles)


def check_ply(tmp):
    path = tmp / "a.ply"
    summary = write(path)
    own = other.read_ply(path)
    check_mesh(own, 1e-12)
    assert {vertex[:2] for vertex in own.vertices} == POINTS  # to the last bit
    assert [own.records.count(n + 1) for n in range(len(RECORDS))] == TRIANGLES
    check_mesh(other.assimp_ply(ASSIMP, path, tmp / "ply.ply"), 5e-5)

    angles = least_angles(own)
    said = re.search(r"least angle (\S+) degrees, median (\S+)$", summary.strip())
    assert abs(float(said[1]) / angles[0] - 1.0) < 0.01, (said[1], angles[0])
    assert abs(float(said[2]) / angles[len(angles) // 2] - 1.0) < 0.01, said[2]
    # Of all ways to cut, Delaunay's has the fattest triangles.
    plain = tmp / "plain.ply"
    write(plain, "--plain")
    sweep = least_angles(other.read_ply(plain))
    assert angles[0] > 10 * sweep[0] and angles[len(angles) // 2] > 1.5 * sweep[len(sweep) // 2]


def check_obj(tmp):
    path = tmp / "a.obj"
    write(path)
    check_mesh(other.assimp_ply(ASSIMP, path, tmp / "obj.ply"), 5e-5)
    assert other.assimp_counts(ASSIMP, path)["Meshes"] == len(RECORDS)


def check_geojson(tmp):
    path = tmp / "a.geojson"
    write(path)
    said = subprocess.run([OGR2OGR, "-f", "GeoJSON", "-lco", "COORDINATE_PRECISION=17",
                           "/vsistdout/", str(path)], check=True, capture_output=True,
                          encoding="utf-8", timeout=120).stdout
    features = json.loads(said)["features"]
    assert [f["properties"] for f in features] == [
        {"record": number} | row for number, row in enumerate(table(), 1)]
    for feature, rings, triangles in zip(features, RECORDS, TRIANGLES):
        assert feature["geometry"]["type"] == "MultiPolygon"
        polygons = feature["geometry"]["coordinates"]
        assert len(polygons) == triangles, (len(polygons), triangles)
        area = 0.0
        for polygon in polygons:
            (ring,) = polygon
            assert len(ring) == 4 and ring[0] == ring[3], ring
            turn = other.ring_area(ring[:3])
            assert turn > 0.0, ring  # RFC 7946: counter-clockwise
            area += turn
        assert abs(area - other.record_area(rings)) < 1e-9, area
        assert {tuple(p) for polygon in polygons for p in polygon[0]} == {
            point for ring in rings for point in ring}


def check_refined(tmp):
    path = tmp / "refined.ply"
    write(path, "--longest-side", "0.5", "--least-angle", "20")
    mesh = other.read_ply(path)
    assert len(mesh.faces) > 1.2 * sum(TRIANGLES)
    assert abs(plane_area(mesh) - AREA) < 1e-9 * AREA, (plane_area(mesh), AREA)
    for face in mesh.faces:
        a, b, c = (mesh.vertices[v] for v in face)
        assert max(math.dist(a, b), math.dist(b, c), math.dist(c, a)) <= 0.5 + 1e-12
    angles = least_angles(mesh)
    # Sharp corners of the lakes are left, a few in a hundred.
    assert angles[len(angles) // 10] >= 20.0 - 1e-9, angles[len(angles) // 10]


def main():
    with tempfile.TemporaryDirectory() as tmp:
        for check in (check_glb, check_stl, check_ply, check_obj, check_geojson,
                      check_refined):
            check(pathlib.Path(tmp))


main()
