#!/usr/bin/env python3
"""make_seeds.py: writes the seeds of the fuzzers, small files of every kind they take.

The seeds are kept in the repository; this says where they come from.
"""
import pathlib
import struct

HERE = pathlib.Path(__file__).parent


def write(name, data):
    path = HERE / name
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(data)


# ESRI Shapefile Technical Description, 1998.
def header(shape_type, size):
    return (struct.pack(">7i", 9994, 0, 0, 0, 0, 0, size // 2)
            + struct.pack("<2i8d", 1000, shape_type, 0, 0, 9, 9, 0, 0, 0, 0))


def shapefile(shape_type, contents):
    shp = shx = b""
    for number, content in enumerate(contents, 1):
        shx += struct.pack(">2i", (100 + len(shp)) // 2, len(content) // 2)
        shp += struct.pack(">2i", number, len(content) // 2) + content
    return header(shape_type, 100 + len(shp)) + shp, header(shape_type, 100 + len(shx)) + shx


def rings(shape_type, parts):
    starts, points = [], []
    for part in parts:
        starts.append(len(points))
        points += part
    return (struct.pack("<i4d2i", shape_type, 0, 0, 9, 9, len(starts), len(points))
            + struct.pack(f"<{len(starts)}i", *starts)
            + b"".join(struct.pack("<2d", *p) for p in points))


def table(fields, rows):
    """A dBASE III table of text columns."""
    record = 1 + sum(width for _, width in fields)
    data = struct.pack("<4BIHH20x", 3, 120, 1, 1, len(rows), 33 + 32 * len(fields), record)
    for name, width in fields:
        data += struct.pack("<11sc4xBB14x", name.encode(), b"C", width, 0)
    data += b"\r"
    for row in rows:
        data += b" " + b"".join(v.encode().ljust(w) for v, (_, w) in zip(row, fields))
    return data + b"\x1a"


SQUARE = [(0, 0), (0, 9), (9, 9), (9, 0), (0, 0)]
HOLE = [(2, 2), (5, 2), (5, 5), (2, 5), (2, 2)]
POLYGONS = shapefile(5, [rings(5, [SQUARE, HOLE]), struct.pack("<i", 0), rings(5, [SQUARE])])
LINES = shapefile(3, [rings(3, [[(0, 0), (3, 4)], [(5, 5), (6, 6), (7, 5)]])])
POINTS = shapefile(1, [struct.pack("<i2d", 1, 3, 4), struct.pack("<i2d", 1, -3, 5)])
MULTI = shapefile(8, [struct.pack("<i4di4d", 8, 0, 0, 9, 9, 2, 1, 2, 3, 4)])


# The outline files of World DataBank II.
TURN = 1296000


def segment(lon, lat, deltas, count=None):
    body = b''
    for dlon, dlat in deltas:
        if -64 <= dlon < 64 and -128 <= dlat < 128:
            body += struct.pack('<H', ((dlon + 64 if dlon >= 0 else dlon + 256) << 8) | dlat & 255)
        else:
            body += struct.pack('<4H', (dlon >> 16) & 0xBFFF, dlon & 0xFFFF,
                                (dlat >> 16) & 0xBFFF, dlat & 0xFFFF)
    return struct.pack('<iiIIH', lon, lat, 0, len(deltas) + 1 if count is None else count, 0) + body


def bank(segments):
    body, dictionary = b'', b''
    for level, data in enumerate(segments):
        dictionary += struct.pack('<IiiiiIHH', level, 324000, -324001, TURN - 1, 1,
                                  20 + len(body), 0, level)
        body += data
    head = struct.pack('<5I', 0x20770002, 20 + len(body), len(segments), 0, 0)
    return head + body + dictionary


def write_banks():
    # Corners in hundredths of a degree, precision in arc-seconds; then the file.
    files = {
        'short': bank([segment(36000, 36000, [(10, 10)] * 9 + [(-60, -120)] * 9)]),
        'long': bank([segment(36000, 36000, [(9000, 9000)] * 6 + [(-70000, -30000)] * 3)]),
        'seam': bank([segment(TURN - 300, 0, [(60, 1)] * 12),
                      segment(300, 0, [(-60, 1)] * 12)]),
        'beyond': bank([segment(5, 5, [(1, 1)], count=0xFFFFFFFF)]),
        'many': bank([segment(36000 + i, 3600, [(50, 50)] * 3) for i in range(19)]),
    }
    boxes = {
        'globe': (-9000, 0, 9000, -1, 0),
        'plain': (0, 500, 1200, 1200, 60),
        'wrap': (-1000, -1000, 1000, 1000, 30),
    }
    for file_name, data in files.items():
        for box_name, settings in boxes.items():
            write(f"corpus/databank/{file_name}_{box_name}",
                  struct.pack("<4hH", *settings) + data)


def main():
    write_banks()
    for name, (shp, shx) in {"polygons": POLYGONS, "lines": LINES, "points": POINTS,
                             "multi": MULTI, "empty": shapefile(5, [])}.items():
        write(f"corpus/shapefile/{name}", struct.pack("<H", len(shp)) + shp + shx)

    # fuzz/contours.h: on the grid a vertex is y * 16 + x.
    grid = bytes([0x11, 0x1E, 0xEE, 0xE1])
    hole = bytes([0x33, 0x63, 0x66, 0x36])
    island = bytes([0x44, 0x45, 0x55])
    bow_tie = bytes([0x11, 0xEE, 0x1E, 0xE1])
    touching = bytes([0x11, 0x34, 0x43])
    exact = b"".join(struct.pack("<2d", x * 1e-3, y * 1e6) for x, y in [(0, 0), (7, 1), (3, 9)])
    odd = struct.pack("<8d", float("nan"), 0, float("inf"), 1, -0.0, 5e-324, 1e308, -1e308)
    contours = {
        "square": b"\0" + grid, "hole": b"\0" + grid + b"\xff" + hole,
        "island": b"\0" + hole + b"\xff" + island + b"\xff" + grid,
        "bow_tie": b"\0" + bow_tie, "touching": b"\0" + grid + b"\xff" + touching,
        "many": b"\x1e" + grid + b"\xff" + hole, "one": b"\0\x11", "two": b"\0\x11\x22",
        "exact": b"\1" + exact, "odd": b"\1" + odd,
    }
    for name, data in contours.items():
        write(f"corpus/polygon/{name}", data)
        write(f"corpus/triangulator/{name}", b"\0" + data)
    script = bytes(range(14)) + bytes([0, 1, 2, 3, 4, 5, 255, 254])
    write("corpus/triangulator/script", bytes([len(script)]) + contours["hole"] + script)

    write("corpus/path/list", b"one:two:three\0$A<1>/file")
    write("corpus/path/whole", b"/data\0$A/Maps\\africa.Map")
    write("corpus/path/unset", b"\0$KZ_PATH<0>/data/$B_1<3>$B_1<9>$")
    write("corpus/path/long", b"x" * 600 + b"\0$A$A")

    write("corpus/project/header", b"\0\1city,lat,lon\nRome,41.9,12.5\n")
    write("corpus/project/dms", b"\2\5" + b"45:30:00,10d30m0s\n\"45d30'0\"\"S\",7 W\n")
    write("corpus/project/inverse", b"\1\1x,y\n1e6,2e6,3\n")
    write("corpus/project/quotes", b"\4\0" + b'"a\nb",1,2\r\n"c,d",3,"4"\r\r\n\n"open')

    write("files/layer.shp", POLYGONS[0])
    write("files/layer.shx", POLYGONS[1])
    write("files/riv.shp", LINES[0])
    write("files/riv.shx", LINES[1])
    write("files/riv.dbf", table([("CONT", 8), ("RANK", 4)], [("europe", "1")]))
    commands = {
        "help": ["--help"], "version": ["--version"],
        "info": ["info", "--records", "layer.shp"],
        "project": ["project", "--to", "albers", "--base", "45,10", "--parallels", "35,60", "-"],
        "map": ["map", "layer.shp", "riv.shp", "--style", "countries,river", "--to", "globe",
                "--base", "5,5", "--size", "99x99", "--graticule", "30", "--title", "t",
                "--mesh", "-o", "a.png"],
        "box": ["map", "layer", "--box", "-9,-9,9,9", "-o", "a.svg", "--size", "64x64"],
        "bank": ["map", "--bank", "bank", "--theme", "river:1-3", "--precision", "60", "-o", "-",
                 "--format", "svg"],
        "pack": ["pack", "riv.shp", "bank"],
        "labels": ["pack", "layer.shp", "riv.shp", "bank", "--theme", "coastal", "--continent",
                   "asia", "--continent", "@CONT", "--level", "3", "--segment", "2"],
        "triangulate": ["triangulate", "layer.shp", "-o", "-", "--format", "geojson",
                        "--records", "1:2"],
        "globe": ["triangulate", "layer.shp", "--check", "--project", "globe", "--radius", "1"],
    }
    for name, arguments in commands.items():
        write(f"corpus/command/{name}", "\n".join(arguments).encode())


main()
