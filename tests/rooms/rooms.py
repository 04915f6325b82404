#!/usr/bin/env python3
"""rooms.py [SOURCE]: every #include line keeps to the house: a room stands on the rooms below.

A room is a folder at the top.  Of a room that it may stand on, a file includes the public
headers; headers that are no public ones it includes of its own room alone, and of the ground
floor, `platform/` and `exact/`, where it stands on it.
"""
import pathlib
import re
import sys

GROUND_FLOOR = {"platform", "exact"}

# What each room may stand on; what is built on the public headers alone may have them all.
BELOW = {
    "platform": set(),
    "exact": set(),
    "coords": set(),
    "projection": {"coords", "platform"},
    "mesh": {"dem", "exact"},
    "chart": {"projection", "mesh", "exact"},
    "shape": {"platform"},
    "worldmap": {"coords", "platform"},
    "dem": {"platform"},
    "triangulate": {"exact"},
    "polytree": {"triangulate", "mesh", "exact"},
}
ON_TOP = {"tools", "python", "web", "bench", "fuzz", "examples", "tests"}

# A unit test may reach inside its own room, tests/ROOM, and where that room may; so may the command's fuzzers, since the
# command has no public headers, and the Python module, whose mesh files and reliefs are the command's.
REACHED = {"fuzz": {"tools"}, "python": {"tools"}}

# The room that each public header belongs to.  `None`: everybody's.
PUBLIC = {
    "export.h": None,
    "types.h": None,
    "result.h": None,
    "box.h": None,
    "filetools.h": "platform",
    "status.h": "platform",
    "utdate.h": "platform",
    "utstring.h": "platform",
    "latlon.h": "coords",
    "projection.h": "projection",
    "mesh.h": "mesh",
    "terrain.h": "mesh",
    "chart.h": "chart",
    "outline.h": "chart",
    "byteutil.h": "shape",
    "shape.h": "shape",
    "shapefile.h": "shape",
    "utvector.h": "worldmap",
    "worldmap.h": "worldmap",
    "databank.h": "worldmap",
    "dem.h": "dem",
    "elevation.h": "dem",
    "triangulate.h": "triangulate",
    "polytree.h": "polytree",
}


def complaint(path, included, exists):
    """Why the file `path` may not include `included`, or nothing."""
    room, test_of = path.parts[0], path.parts[1] if path.parts[0] == "tests" else None
    header = pathlib.PurePosixPath(included)
    if header.parts[0] == "kzgis":
        if room == "include" or room in ON_TOP:
            return None
        if header.name not in PUBLIC:
            return f"{included} is in no room"
        below = PUBLIC[header.name]
        if below in (None, room) or below in BELOW[room]:
            return None
        return f"{room}/ does not stand on {below}/"
    if room == "include":
        return "a public header includes public headers alone"
    if room in ("tests", "bench") and exists(pathlib.PurePosixPath("tests", header)) and not exists(header):
        return None  # helpers of the tests, whose polygons the benchmarks take too
    other = header.parts[0]
    if len(header.parts) == 1 or (other not in BELOW and other not in ON_TOP):
        return None  # beside the file, or another library's
    if other in (room, test_of) or other in REACHED.get(room, ()):
        return None
    if other in GROUND_FLOOR and other in BELOW.get(test_of or room, ()):
        return None
    return f"a private header of {other}/"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else __file__).resolve()
    if root.is_file():
        root = root.parent.parent.parent

    def exists(header):
        return (root / header).is_file()

    complaints, files = [], 0
    for folder in sorted({file.relative_to(root).parts[0] for file in root.glob("*/*.cpp")}):
        if folder not in BELOW and folder not in ON_TOP:
            complaints.append(f"{folder}/ is no room of the house")
    for room in ["include", *BELOW, *sorted(ON_TOP)]:
        for file in sorted((root / room).rglob("*")):
            if file.suffix not in (".cpp", ".h"):
                continue
            files += 1
            path = file.relative_to(root)
            for number, line in enumerate(file.read_text(encoding="utf-8").splitlines(), 1):
                if room not in ON_TOP and re.match(r"\s*#\s*include\s*<kzgis/", line):
                    complaints.append(f"{path}:{number}: the library's own headers stand in quotes")
                if found := re.match(r'\s*#\s*include\s*"([^"]+)"', line):
                    if why := complaint(path, found[1], exists):
                        complaints.append(f"{path}:{number}: {found[1]}: {why}")
    print("\n".join(complaints) or f"{files} files keep to the house")
    sys.exit(1 if complaints or files == 0 else 0)


if __name__ == "__main__":
    main()
