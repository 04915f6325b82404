#!/usr/bin/env python3
"""shapefiles_test.py KZGIS: every type of shapefile, damaged records and odd indexes.

The files are made here from "ESRI Shapefile Technical Description" (1998).  What one subcommand
says of a layer whose middle record is damaged must be what it says of the layer without it, and
one line on that record.
"""
import json
import math
import pathlib
import struct
import subprocess
import sys
import tempfile

KZGIS = sys.argv[1]
NAN, INF = math.nan, math.inf
problems = []


def box(points):
    xs, ys = zip(*points)
    return struct.pack("<4d", min(xs), min(ys), max(xs), max(ys))


def measures(kind, count, z=7.0):
    """Z and M behind the points, where the type has them."""
    of_z = struct.pack(f"<{2 + count}d", *[z] * (2 + count)) if 10 < kind < 20 else b""
    of_m = struct.pack(f"<{2 + count}d", *[5.0] * (2 + count)) if kind > 10 else b""
    return of_z + of_m


def parts_content(kind, points, starts=(0,), z=7.0):
    return (struct.pack("<i", kind) + box(points) +
            struct.pack(f"<2i{len(starts)}i", len(starts), len(points), *starts) +
            b"".join(struct.pack("<2d", *p) for p in points) + measures(kind, len(points), z))


def multipoint_content(kind, points):
    return (struct.pack("<i", kind) + box(points) + struct.pack("<i", len(points)) +
            b"".join(struct.pack("<2d", *p) for p in points) + measures(kind, len(points)))


def point_content(kind, x, y):
    extra = {1: b"", 11: struct.pack("<2d", 7, 5), 21: struct.pack("<d", 5)}[kind]
    return struct.pack("<i2d", kind, x, y) + extra


def header(kind, size):
    return (struct.pack(">i20xi", 9994, size // 2) + struct.pack("<2i4d", 1000, kind, 0, 0, 60, 60) +
            bytes(32))


def write(path, kind, contents, index=True, lengths=None, index_lengths=None, sizes=(0, 0)):
    """A layer; lengths of single records by number, in bytes; sizes are added to what headers say."""
    shp, shx = b"", b""
    for number, content in enumerate(contents, 1):
        length = (lengths or {}).get(number, len(content))
        shx += struct.pack(">2i", (100 + len(shp)) // 2,
                           (index_lengths or {}).get(number, length) // 2)
        shp += struct.pack(">2i", number, length // 2) + content
    path.with_suffix(".shp").write_bytes(header(kind, 100 + len(shp) + sizes[0]) + shp)
    path.with_suffix(".shx").unlink(missing_ok=True)
    if index:
        path.with_suffix(".shx").write_bytes(header(kind, 100 + len(shx) + sizes[1]) + shx)
    return str(path.with_suffix(".shp"))


def square(x, y, side=2.0):
    return [(x, y), (x, y + side), (x + side, y + side), (x + side, y), (x, y)]


def run(*arguments):
    done = subprocess.run([KZGIS, *arguments], capture_output=True, timeout=60, check=False)
    return done.returncode, done.stdout, done.stderr.decode()


def expect(what, found, expected):
    if found != expected:
        problems.append(f"{what}: {found!r}, not {expected!r}")


def info(file, *options):
    """Exit code and the object on standard output; standard error must be silent."""
    code, out, err = run("info", "--json", *options, file)
    expect(f"info --json {file}: standard error", err, "")
    try:
        document = json.loads(out)
    except ValueError as error:
        problems.append(f"info --json {file}: {error}: {out[:200]}")
        return code, {"errors": []}
    return code, document


def draw(file):
    return run("map", file, "-o", "-", "--format", "svg", "--box=-5,-5,60,60")


def pack(file, directory):
    """Exit code, standard error, bytes of the one outline file."""
    code, _, err = run("pack", file, str(directory), "--theme", "river", "--continent", "asia",
                       "--level", "1")
    bank = directory / "asia.Map/riv.cbd"
    return code, bank.read_bytes() if bank.exists() else b"", err


NAMES = {1: "point", 3: "polyline", 5: "polygon", 8: "multipoint"}


def every_type(tmp):
    pictures, packed = {}, {}
    for kind in (1, 3, 5, 8, 11, 13, 15, 18, 21, 23, 25, 28):
        for index in (True, False):
            what = f"type {kind}, {'an' if index else 'no'} index"
            flat = kind % 10
            if flat == 1:
                contents = [point_content(kind, 10, 20), point_content(kind, 30, 40)]
            elif flat == 8:
                contents = [multipoint_content(kind, [(10, 20)]),
                            multipoint_content(kind, [(30, 40), (31, 41)])]
            else:
                contents = [parts_content(kind, square(10, 20)), parts_content(kind, square(30, 40))]
            file = write(tmp / f"type_{kind}", kind, contents, index)
            picture = draw(file)
            expect(what + ": map", (picture[0], picture[2]), (0, ""))
            expect(what + ": map", picture[1].count(b"<path") > 3, True)
            expect(what + ": the same picture without Z and M", picture,
                   pictures.setdefault(flat, picture))
            if flat == 5:
                expect(what + ": triangulate", run("triangulate", file, "--check"),
                       (0, b"2 records, 2 rings, 4 triangles, area 8; 0 refused, 0 null\n"
                           b"least angle 45 degrees, median 45\n", ""))
            if flat in (3, 5):
                bank = pack(file, tmp / f"bank_{kind}_{index}")
                expect(what + ": pack", (bank[0], bank[2]), (0, ""))
                expect(what + ": the same bank", bank, packed.setdefault("", bank))
            code, document = info(file, "--list")
            name = NAMES[flat] + {0: "", 1: " with z", 2: " with m"}[kind // 10]
            expect(what + ": info", code, 0)
            counts = {1: 2, 8: 3}.get(flat, 10)
            expect(what + ": info", document, {
                "kind": "shapefile", "file": file, "type": name, "type_number": kind,
                "box": {"min_x": 0, "min_y": 0, "max_x": 60, "max_y": 60}, "index": index,
                "records": 2, "null_records": 0, "parts": 2, "points": counts,
                "list": document.get("list"), "errors": []})
            expect(what + ": the list", [(r["record"], r["type"], r["box"]["min_x"], r["parts"])
                                         for r in document["list"]],
                   [(1, name, 10, 1), (2, name, 30, 1)])
            code, out, err = run("info", file)
            expect(what + ": text", (code, err), (0, ""))
            end = f"Records: 2\nParts:   2\nPoints:  {counts}\n"
            expect(what + ": text", out.decode().endswith(end), True)


GOOD = parts_content(5, square(40, 40))

# What is wrong with the middle record, how long it says to be (None: as long as it is), and the
# sentence.
DAMAGED = {
    "a part before the first point": (
        parts_content(5, GOOD_POINTS := square(10, 10), (-1,)), None,
        "part 1 begins at point -1, in front of the first"),
    "a part behind the last point": (
        parts_content(5, GOOD_POINTS, (0, 6)), None, "part 2 begins at point 6, but there are 5"),
    "parts that decrease": (
        parts_content(5, GOOD_POINTS, (0, 3, 2)), None,
        "part 3 begins at point 2, in front of the part before it"),
    "points in front of the parts": (
        parts_content(5, GOOD_POINTS, (2,)), None, "its first part begins at point 2, behind others"),
    "no parts": (parts_content(5, GOOD_POINTS, ()), None, "5 points, but no parts"),
    "NaN": (parts_content(5, [*GOOD_POINTS[:2], (NAN, 3), *GOOD_POINTS[2:]]), None,
            "point 3 is nowhere: nan, 3"),
    "infinity": (parts_content(5, [*GOOD_POINTS[:4], (3, -INF), GOOD_POINTS[4]]), None,
                 "point 5 is nowhere: 3, -inf"),
    "a length that is too long": (
        GOOD, len(GOOD) + 8,
        f"its length is {len(GOOD) + 8} bytes, but a polygon of 5 points in 1 parts needs {len(GOOD)}"),
    "a point": (point_content(1, 3, 4), None, "its type is point, the file's polygon"),
    "a line": (parts_content(3, GOOD_POINTS), None, "its type is polyline, the file's polygon"),
    "a multipatch": (struct.pack("<i", 31) + bytes(40), None, "a multipatch, which is not read"),
    "a type that there is not": (struct.pack("<i", 99) + bytes(40), None,
                                 "there is no shape type 99"),
}


def damaged_records(tmp):
    before, behind = parts_content(5, square(0, 0)), parts_content(5, square(20, 20))
    sound = write(tmp / "sound", 5, [before, behind])
    picture, bank = draw(sound), pack(sound, tmp / "sound_bank")
    expect("the sound layer", (picture[0], picture[2], bank[0], bank[2]), (0, "", 0, ""))
    for number, (damage, (content, length, why)) in enumerate(DAMAGED.items()):
        file = write(tmp / "damaged", 5, [before, content, behind],
                     lengths={2: length} if length else None)
        line = f"{file}: record 2: {why}"
        said = f"kzgis: {line}\n"
        expect(f"{damage}: map", draw(file), (1, picture[1], said))
        expect(f"{damage}: triangulate", run("triangulate", file, "--check"),
               (1, b"2 records, 2 rings, 4 triangles, area 8; 1 refused, 0 null\n"
                   b"least angle 45 degrees, median 45\n", said))
        expect(f"{damage}: pack", pack(file, tmp / f"bank_{number}"), (1, bank[1], said))
        code, document = info(file)
        expect(f"{damage}: info", (code, document["errors"]), (1, [line]))
        expect(f"{damage}: info", document["records"], 3)
        code, _, err = run("info", file)
        expect(f"{damage}: info as text", (code, err), (1, said))
    null = write(tmp / "null", 5, [before, struct.pack("<i", 0), behind])
    expect("a null record: map", draw(null), picture)
    code, document = info(null, "--list")
    expect("a null record: info", (code, document["null_records"], document["list"][1]),
           (0, 1, {"record": 2, "type": "null shape"}))
    for kind in (15, 25):
        mixed = write(tmp / "mixed", 5, [before, parts_content(kind, square(20, 20))])
        expect(f"type {kind} among polygons: map", draw(mixed), picture)
    code, document = info(mixed)
    expect("a polygon with m among polygons: info", (code, document["errors"]),
           (1, [f"{mixed}: record 2: its type is polygon with m, the file's polygon"]))
    height = write(tmp / "height", 15, [parts_content(15, square(0, 0), z=INF)])
    expect("infinite z: info", info(height)[1]["errors"],
           [f"{height}: record 1: point 1 has no finite z"])
    expect("infinite z: map", draw(height)[0], 0)


def damaged_all_through(tmp):
    for count, last in ((50, "30 more records are damaged"),
                        (2000, "980 more records are damaged; the rest is left out")):
        file = write(tmp / "all", 5, [parts_content(5, square(0, 0), (-1,))] * count)
        for arguments in (["info", file], ["triangulate", file, "--check"]):
            code, _, err = run(*arguments)
            lines = err.splitlines()
            expect(f"{count} damaged: {arguments[0]}", (code, len(lines), lines[-1]),
                   (1, 21, f"kzgis: {file}: {last}"))
        errors = info(file)[1]["errors"]
        expect(f"{count} damaged: JSON", (len(errors), errors[-1]), (21, f"{file}: {last}"))


def lengths(tmp):
    """What headers and the index say of lengths: info minds, the others where records may miss."""
    contents = [parts_content(5, square(0, 0)), GOOD]
    sound = draw(write(tmp / "lengths", 5, contents))
    cases = {
        "the index of a record": (
            {"index_lengths": {2: 64}}, False,
            f"record 2: its length is {len(GOOD)} bytes, but the index says 64"),
        "a file longer than it says": ({"sizes": (-8, 0)}, False, "the file is longer than its header says"),
        "a file shorter than it says": ({"sizes": (8, 0)}, True, "the file is shorter than its header says"),
        "an index longer than it says": ({"sizes": (0, -8)}, False,
                                         "the index is longer than its header says"),
        "an index shorter than it says": ({"sizes": (0, 8)}, True,
                                          "the index is shorter than its header says"),
    }
    for what, (how, all_mind, why) in cases.items():
        file = write(tmp / "lengths", 5, contents, **how)
        code, document = info(file)
        expect(f"{what}: info", (code, document["errors"]), (1, [f"{file}: {why}"]))
        said = f"kzgis: {file}: {why}\n" if all_mind else ""
        expect(f"{what}: map", draw(file), (int(all_mind), sound[1], said))
    cut = pathlib.Path(write(tmp / "cut", 5, contents))
    cut.write_bytes(cut.read_bytes()[:-4])
    expect("a cut file: map", draw(str(cut))[2],
           f"kzgis: {cut}: the file is shorter than its header says\n"
           f"kzgis: {cut}: record 2: its length is {len(GOOD)} bytes, but the file ends after "
           f"{len(GOOD) - 4}\n")
    expect("a cut file: info", (info(str(cut))[0], len(info(str(cut))[1]["errors"])), (1, 2))


def no_shapefile(tmp):
    """Damaged all through: one error in the object; not there: a line, and no object."""
    file = write(tmp / "none", 5, [GOOD])
    pathlib.Path(file).write_bytes(b"x" * 200)
    code, document = info(file)
    expect("no shapefile", (code, document), (1, {
        "kind": "shapefile", "file": file,
        "errors": [f"{file}: not a shapefile: it does not begin with the code 9994"]}))
    for kind in (31, 99):
        file = write(tmp / "odd", kind, [GOOD])
        for arguments in (["map", file, "-o", str(tmp / "out.svg")], ["triangulate", file, "--check"],
                          ["pack", file, str(tmp / "bank"), "--theme", "river"]):
            code, _, err = run(*arguments)
            name = "multipatch" if kind == 31 else "99, which there is not"
            expect(f"type {kind}: {arguments[0]}", (code, err.split(";")[0]),
                   (1, f"kzgis: {file}: its shape type is {name}"))
    expect("type 99: info", (info(file)[1]["type"], info(file)[1]["errors"][0]),
           (None, f"{file}: the header of the shape file is not valid: there is no such shape type"))


def main():
    with tempfile.TemporaryDirectory() as name:
        for group in (every_type, damaged_records, damaged_all_through, lengths, no_shapefile):
            group(pathlib.Path(name))
    if problems:
        sys.exit("\n".join(problems))


main()
