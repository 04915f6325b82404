#!/usr/bin/env python3
"""make_seeds.py: writes the seeds of the fuzzers, small files of every kind they take.

The seeds are kept in the repository; this says where they come from: made here, or cut
from the sample data.
"""
import pathlib
import struct

HERE = pathlib.Path(__file__).parent
DATA = HERE.parent / "data"


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
MEASURES = struct.pack("<10d", 0, 9, *range(8))  # a range and eight numbers
MEASURED = shapefile(15, [
    rings(15, [SQUARE, HOLE[:3]]) + MEASURES + MEASURES,
    struct.pack("<i4d", 11, 1, 2, 3, 4), struct.pack("<i2d", 21, 1, 2),
    struct.pack("<i4di4d2d2d", 28, 0, 0, 9, 9, 2, 1, 2, 3, 4, 0, 9, 5, -2e38)])
MULTI = shapefile(8, [struct.pack("<i4di4d", 8, 0, 0, 9, 9, 2, 1, 2, 3, 4)])


def real_rings():
    """The rings of the sample's first polygon that has an island, as in fuzz/contours.h."""
    shp = (DATA / "ne/ne_50m_lakes_with_islands.shp").read_bytes()
    parts, points = struct.unpack_from("<2i", shp, 144)
    starts = [*struct.unpack_from(f"<{parts}i", shp, 152), points]
    first = 152 + 4 * parts
    rings_of = [shp[first + 16 * a:first + 16 * (b - 1)] for a, b in zip(starts, starts[1:])]
    return b"\xff".join(rings_of)


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


def real_segment():
    """The beginning of a coast of the sample data, in whole arc-seconds."""
    shp = (DATA / "wdb/cil.shp").read_bytes()
    parts, points = struct.unpack_from("<2i", shp, 144)
    first = 152 + 4 * parts
    line = [(round(3600 * x) % TURN, round(3600 * y))
            for x, y in struct.iter_unpack("<2d", shp[first:first + 16 * min(points, 60)])]
    return segment(*line[0], [(b[0] - a[0], b[1] - a[1]) for a, b in zip(line, line[1:])])


def write_banks():
    # Corners in hundredths of a degree, precision in arc-seconds; then the file.
    files = {
        'short': bank([segment(36000, 36000, [(10, 10)] * 9 + [(-60, -120)] * 9)]),
        'long': bank([segment(36000, 36000, [(9000, 9000)] * 6 + [(-70000, -30000)] * 3)]),
        'seam': bank([segment(TURN - 300, 0, [(60, 1)] * 12),
                      segment(300, 0, [(-60, 1)] * 12)]),
        'beyond': bank([segment(5, 5, [(1, 1)], count=0xFFFFFFFF)]),
        'real': bank([real_segment()]),
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


# USGS, Standards for Digital Elevation Models, 1998: records of 1024 characters.
def number(value, width=24, digits=15):
    """As FORTRAN writes it: 0.1D+01."""
    if value == 0:
        return f"{0:.{digits}f}".rjust(width - 4) + "D+00"
    mantissa, exponent = f"{value / 10:.{digits - 1}E}".split("E")
    sign, figures = ("-", mantissa[1:]) if value < 0 else ("", mantissa)
    text = f"{sign}0.{figures.replace('.', '')}"
    return f"{text}{'D' if width == 24 else 'E'}{int(exponent) + 2:+03d}".rjust(width)


def record_a(system, zone_unit, corners, lowest, highest, resolution, profiles):
    return ("TEST QUADRANGLE".ljust(40) + "MADE FOR TESTS".ljust(95) + "2 NW1MAPC"
            + "".join(f"{n:6d}" for n in (3, 1, system, 10)) + number(0) * 15
            + "".join(f"{n:6d}" for n in (*zone_unit, 4))
            + "".join(number(c) for corner in corners for c in corner)
            + number(lowest) + number(highest) + number(0) + f"{0:6d}"
            + "".join(number(r, 12, 6) for r in resolution) + f"{1:6d}{profiles:6d}"
            + "   402   10119871951I2 3 1 1   1   0")


def profile(column, base, elevations):
    """The blocks of one profile: 146 elevations in the first, 170 in each of the others."""
    head = ("".join(f"{n:6d}" for n in (1, column, len(elevations), 1))
            + "".join(number(v) for v in (*base, 0, 100, 200)))
    texts = [f"{e:6d}" for e in elevations]
    blocks = [head + "".join(texts[:146])]
    return blocks + ["".join(texts[i:i + 170]) for i in range(146, len(texts), 170)]


def write_elevations():
    corners = [(499990, 5000130), (500100, 5000110), (500110, 5000025)]
    tilted = [record_a(1, (2, 2), [(500000, 5000010), *corners], 100, 200, (30, 30, 1), 3),
              *profile(1, (500010, 5000010), [1, 2, 3]),
              *profile(2, (500040, 5000040), [11, 12, -32767, 14]),
              *profile(3, (500070, 5000040), [21, -22, 23])]
    west, east, south, north = -432000, -431997, 162000, 162450
    seconds = [record_a(0, (3, 2), [(west, south), (west, north), (east, north), (east, south)],
                        100, 200, (3, 3, 1), 2),
               *profile(1, (west, south), range(-5, 146)),
               *profile(2, (east, south), range(2000, 2150))]
    in_blocks = {"tilted": tilted, "arc_seconds": seconds}
    for name, blocks in in_blocks.items():
        write(f"corpus/dem/{name}", "".join(b.ljust(1024) for b in blocks).encode())
    write("corpus/dem/lines", "".join(b + "\r\n" for b in tilted).encode())
    # Record A and the first profiles of the sample.
    write("corpus/dem/real", (DATA / "dem/st_helens_crater.dem").read_bytes()[:4 * 1024])


def write_charts():
    """Every projection, with both sorts of numbers."""
    near = [(0, 0, 0), (30, -20, 100), (-60, 170, 2000), (89, 1, 0), (-90, 0, 0), (0, 100, 0)]
    odd = [(91, 0, 0), (float("nan"), 0, 0), (0, float("inf"), 0), (-0.0, 1e300, 5e-324)]
    parameters = (40, 10, 20, 60, 6378000, 50)  # base, parallels, radius, reach
    for projection in range(15):
        data = bytes([projection, 2 | 4]) + struct.pack("<6d", *parameters)
        data += b"".join(struct.pack("<3d", *point) for point in near + odd)
        write(f"corpus/chart/doubles_{projection}", data)
        data = bytes([projection, 1 | 32]) + b"".join(
            struct.pack("<i", round(part * 2**31)) for part in (-0.3, 0.1, 0.4, 0.6, 0.3, 0.3))
        for i in range(24):
            part = (i * 0x9E3779B97F4A7C15) >> 20
            data += struct.pack("<3I", part & 0xFFFFFFFF, part * 7 & 0xFFFFFFFF, part & 0xFFFFFF)
        write(f"corpus/chart/parts_{projection}", data)
    window = struct.pack("<4d", -90, -45, 90, 45)
    for name, flags in {"reach": 8, "window": 16, "one_parallel": 2, "radius": 32}.items():
        data = bytes([3, flags]) + struct.pack("<6d", *parameters) + window
        write(f"corpus/chart/{name}", data + struct.pack("<3d", 41, 12, 0))


def write_terrain():
    """Columns, tolerance and scale, then a byte for each elevation (fuzz/terrain_fuzz.cpp)."""
    void = 0xFF

    def terrain(name, columns, tolerance, scale, elevation, rows=20):
        cells = bytes(elevation(row, column) for row in range(rows) for column in range(columns))
        write(f"corpus/terrain/{name}", bytes([columns - 1, tolerance, scale]) + cells)

    terrain("bowl", 20, 4, 0, lambda row, column: ((row - 9) ** 2 + (column - 11) ** 2) // 2)
    terrain("plane", 15, 1, 0, lambda row, column: 100 + 3 * row - column)
    terrain("noise", 30, 0, 1, lambda row, column: (row * 7919 + column * 104729) % 251)
    terrain("sizes", 12, 9, 2, lambda row, column: (row * 7919 + column * 104729) % 251)
    terrain("spikes", 40, 2, 3, lambda row, column: 255 if row * column % 17 == 1 else row * column % 5 * 50)
    terrain("holes", 12, 3, 0, lambda row, column: void if row == column and row % 2 else 10 * (row % 3))
    terrain("ribbon", 2, 1, 0, lambda row, column: (row + column) % 2 * row, rows=120)


def main():
    write_charts()
    write_banks()
    write_elevations()
    write_terrain()
    for name, (shp, shx) in {"polygons": POLYGONS, "lines": LINES, "points": POINTS,
                             "multi": MULTI, "measured": MEASURED, "empty": shapefile(5, [])}.items():
        write(f"corpus/shapefile/{name}", struct.pack("<H", len(shp)) + shp + shx)
    for name in ("ne_110m_lakes", "ne_110m_places"):
        shp, shx = ((DATA / f"ne/{name}{suffix}").read_bytes() for suffix in (".shp", ".shx"))
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
        # Thousands of vertices: as they stand, in many rings, in one.
        "dense": b"\0" + bytes(17 * i % 255 for i in range(1000)),
        "rings": bytes([0xF0]) + grid, "chain": bytes([0xF2]) + bow_tie,
        "real": b"\1" + real_rings(),
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
    write("corpus/project/classic", b"\x10\1city,lat,lon\nRome,41.9,-12.5\n")
    write("corpus/project/no_place", b"\1\1lat,lon,x,y,z\n90,0,,,\n0,0,1e99,0,0\n")
    write("corpus/project/quotes", b"\4\0" + b'"a\nb",1,2\r\n"c,d",3,"4"\r\r\n\n"open')

    write("files/layer.shp", POLYGONS[0])
    write("files/layer.shx", POLYGONS[1])
    write("files/riv.shp", LINES[0])
    write("files/riv.shx", LINES[1])
    write("files/small.dem", (HERE / "corpus/dem/tilted").read_bytes())
    write("files/points.csv", b"name,lat,lon\nRome,41.9,12.5\n\"a, b\",45d30m,-7\n")
    write("files/cil.cbd", bank([real_segment()]))
    write("files/riv.dbf", table([("CONT", 8), ("RANK", 4)], [("europe", "1")]))
    commands = {
        "help": ["--help"], "version": ["--version"],
        "info": ["info", "--list", "layer.shp"],
        "json": ["info", "--json", "--list", "layer.shp"],
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
        "grid": ["dem", "small.dem", "-o", "a.asc"],
        "relief": ["dem", "small.dem", "--shade", "--sun", "300,30", "-o", "a.png"],
        "heights": ["dem", "small.dem", "--tint", "-o", "-", "--format", "csv"],
        "elevations": ["info", "--list", "small.dem", "bank", "layer.shp"],
        "csv": ["project", "--to", "mercator", "--columns", "2,3", "points.csv", "-o", "b.csv"],
        "globe": ["triangulate", "layer.shp", "--check", "--to", "globe", "--radius", "1"],
    }
    for name, arguments in commands.items():
        write(f"corpus/command/{name}", "\n".join(arguments).encode())


if __name__ == "__main__":
    main()
