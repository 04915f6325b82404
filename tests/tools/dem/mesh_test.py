#!/usr/bin/env python3
"""mesh_test.py KZGIS GDAL_TRANSLATE ASSIMP DEMS: elevation models as meshes, read by others.

GDAL reads the elevations themselves; assimp and the formats' own descriptions read the meshes.
"""
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).parent.parent / "mesh_files"))
import other_readers as other  # noqa: E402

KZGIS, GDAL_TRANSLATE, ASSIMP = sys.argv[1:4]
DEMS = pathlib.Path(sys.argv[4])


def write(dem, path, *options):
    subprocess.run([KZGIS, "dem", str(DEMS / dem), "-o", str(path), *options], check=True,
                   timeout=120)


def elevations(dem, tmp):
    """x, y and z of each point, in metres, as GDAL has them."""
    path = tmp / "grid.xyz"
    subprocess.run([GDAL_TRANSLATE, "-q", "-of", "XYZ", str(DEMS / dem), str(path)], check=True,
                   timeout=120)
    rows = (map(float, line.split()) for line in path.read_text().splitlines())
    return {(x, y): z for x, y, z in rows if z != -32767.0}


def check_crater(tmp):
    grid = elevations("st_helens_crater.dem", tmp)
    faces = []
    for tolerance in ("0", "2", "10"):
        path = tmp / "crater.ply"
        write("st_helens_crater.dem", path, "--tolerance", tolerance)
        mesh = other.read_ply(path)
        for x, y, z in mesh.vertices:
            assert abs(grid[(x, y)] - z) < 1e-9, (x, y, z)
        corners = {(x, y) for x, y, _ in mesh.vertices}
        if tolerance == "0":
            assert corners == set(grid)
        for face in mesh.faces:
            (ax, ay, _), (bx, by, _), (cx, cy, _) = (mesh.vertices[v] for v in face)
            assert (bx - ax) * (cy - ay) - (by - ay) * (cx - ax) > 0.0, face
        faces.append(len(mesh.faces))
    assert faces[0] > 1.5 * faces[1] > 4 * faces[2] > 0, faces
    # The same triangles in every format.
    for ending in ("glb", "stl", "obj"):
        path = tmp / f"crater.{ending}"
        write("st_helens_crater.dem", path, "--tolerance", "10")
        read = other.assimp_ply(ASSIMP, path, tmp / f"{ending}.ply")
        assert len(read.faces) == faces[2], (ending, len(read.faces), faces)


def check_mountain(tmp):
    """Of 296,186 triangles in full."""
    for tolerance, most in (("0", 296186), ("5", 296186 // 4), ("20", 296186 // 20)):
        path = tmp / "mountain.stl"
        write("st_helens.dem.gz", path, "--tolerance", tolerance)
        count = len(other.read_stl(path)[1])
        assert count <= most and (tolerance != "0" or count == most), (tolerance, count)


def check_refusals(tmp):
    for tolerance in ("-1", "nan", "inf", "tall"):
        refused = subprocess.run([KZGIS, "dem", str(DEMS / "st_helens_crater.dem"), "-o",
                                  str(tmp / "a.stl"), "--tolerance", tolerance],
                                 capture_output=True, encoding="utf-8", timeout=60)
        assert refused.returncode == 2 and "is no tolerance" in refused.stderr, refused
        assert not (tmp / "a.stl").exists()


def main():
    with tempfile.TemporaryDirectory() as tmp:
        for check in (check_crater, check_mountain, check_refusals):
            check(pathlib.Path(tmp))


main()
