"""What other programs and the formats' own descriptions say of files, apart from kzgis."""
import collections
import json
import math
import pathlib
import struct
import subprocess


def read_shapefile(path):
    """The rings of each record, as lists of points without the repeated last one; from "ESRI
    Shapefile Technical Description" (1998)."""
    data = pathlib.Path(path).read_bytes()
    records, offset = [], 100
    while offset < len(data):
        words = struct.unpack_from(">i", data, offset + 4)[0]
        parts, points = struct.unpack_from("<2i", data, offset + 8 + 36)
        starts = [*struct.unpack_from(f"<{parts}i", data, offset + 52), points]
        flat = struct.unpack_from(f"<{2 * points}d", data, offset + 52 + 4 * parts)
        xy = list(zip(flat[::2], flat[1::2]))
        records.append([xy[a:b - 1] for a, b in zip(starts, starts[1:])])
        offset += 8 + 2 * words
    return records


def ring_area(ring):
    """Positive when it runs counter-clockwise; differences, since the coordinates are large."""
    (x0, y0) = ring[0]
    return 0.5 * math.fsum((ax - x0) * (by - y0) - (ay - y0) * (bx - x0)
                           for (ax, ay), (bx, by) in zip(ring, ring[1:]))


def record_area(rings):
    """Outer rings run clockwise, holes the other way."""
    return -math.fsum(map(ring_area, rings))


def record_triangles(rings):
    """How many triangles without new vertices tile a record whose rings do not touch, by Euler's
    formula; a vertex that is repeated at once counts once."""
    holes = sum(ring_area(ring) > 0 for ring in rings)
    corners = sum(a != b for ring in rings for a, b in zip(ring, [*ring[1:], ring[0]]))
    return corners + 2 * holes - 2 * (len(rings) - holes)


Mesh = collections.namedtuple("Mesh", "vertices normals faces records")


def read_ply(path):
    """Text or binary, as G. Turk's "The PLY Polygon File Format" (1994) has it; of vertices with
    x, y, z or these and a normal, of faces with the vertex list or that and a record."""
    data = pathlib.Path(path).read_bytes()
    head, _, body = data.partition(b"end_header\n")
    lines = head.decode("ascii").splitlines()
    vertices, faces = (int(line.split()[2]) for line in lines if line.startswith("element"))
    of_vertex = [line.split() for line in lines if line.startswith("property")][:-1]
    record = any(line == "property int record" for line in lines)
    if record:
        of_vertex = of_vertex[:-1]
    width = len(of_vertex)
    if lines[1] == "format ascii 1.0":
        rows = [line.split() for line in body.decode("ascii").splitlines()]
        points = [tuple(map(float, row[:width])) for row in rows[:vertices]]
        lists = [list(map(int, row)) for row in rows[vertices:]]
    else:
        assert lines[1] == "format binary_little_endian 1.0", lines[1]
        assert {kind for _, kind, _ in of_vertex} == {"double"}, of_vertex
        size = 8 * width
        points = [struct.unpack_from(f"<{width}d", body, size * i) for i in range(vertices)]
        face = struct.Struct("<B4i" if record else "<B3i")
        assert len(body) == size * vertices + face.size * faces
        lists = [face.unpack_from(body, size * vertices + face.size * i) for i in range(faces)]
    assert len(points) == vertices and len(lists) == faces
    assert all(row[0] == 3 for row in lists)
    return Mesh([p[:3] for p in points], [p[3:] for p in points], [tuple(r[1:4]) for r in lists],
                [r[4] for r in lists] if record else [])


def read_stl(path):
    """Triangles of a binary STL, moved back from the origin that its header names."""
    data = pathlib.Path(path).read_bytes()
    origin = [float(word) for word in data[:80].decode("ascii").split()[2:]]
    count = struct.unpack_from("<I", data, 80)[0]
    assert len(data) == 84 + 50 * count
    triangles = []
    for i in range(count):
        f = struct.unpack_from("<12f", data, 84 + 50 * i)
        triangles.append(tuple(f[k:k + 3] for k in (3, 6, 9)))
    return origin, triangles


def read_glb_json(path):
    """The first chunk, by Khronos glTF 2.0 (ISO/IEC 12113:2022)."""
    data = pathlib.Path(path).read_bytes()
    magic, version, length, chunk, kind = struct.unpack_from("<4sIII4s", data)
    assert (magic, version, length, kind) == (b"glTF", 2, len(data), b"JSON")
    return json.loads(data[20:20 + chunk])


def assimp_ply(assimp, path, to):
    """The file as assimp's importer reads it."""
    subprocess.run([assimp, "export", str(path), str(to)], check=True, capture_output=True,
                   timeout=120)
    return read_ply(to)


def assimp_counts(assimp, path):
    """What `assimp info` counts, by the word in front."""
    said = subprocess.run([assimp, "info", str(path), "-r"], check=True, capture_output=True,
                          encoding="utf-8", timeout=120).stdout
    pairs = (line.split(":") for line in said.splitlines() if line.count(":") == 1)
    return {name.strip(): int(value) for name, value in pairs if value.strip().isdigit()}


def volume(triangles):
    """Six times the tetrahedra from a corner of the body, by the divergence theorem."""
    base = triangles[0][0]
    total = []
    for triangle in triangles:
        a, b, c = (tuple(p[k] - base[k] for k in range(3)) for p in triangle)
        total.append(a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
                     a[2] * (b[0] * c[1] - b[1] * c[0]))
    return math.fsum(total) / 6.0


def open_edges(faces):
    """The edges that are not shared by exactly two faces, in opposite directions."""
    count = collections.Counter()
    for a, b, c in faces:
        count.update([(a, b), (b, c), (c, a)])
    return [(a, b) for (a, b), n in count.items() if n != 1 or count[(b, a)] != 1]


def unbalanced_edges(triangles):
    """The edges along which not as many triangles run one way as the other."""
    count = collections.Counter()
    for a, b, c in triangles:
        count.update([(a, b), (b, c), (c, a)])
    return [(a, b) for (a, b), n in count.items() if n != count[(b, a)]]


def read_column(path, field):
    """The numbers of a field of a dBASE table, 0 where it is blank."""
    data = pathlib.Path(path).read_bytes()
    rows, header, width = struct.unpack_from("<IHH", data, 4)
    start = 1  # behind the mark of deleted rows
    for offset in range(32, header - 1, 32):
        name = data[offset:offset + 11].split(b"\0")[0].decode("ascii")
        length = data[offset + 16]
        if name == field:
            break
        start += length
    texts = (data[header + width * i + start:][:length] for i in range(rows))
    return [float(text.strip() or b"0") for text in texts]
