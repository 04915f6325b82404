#!/usr/bin/env python3
"""gdal_test.py DUMP_GRID DATA_DIRECTORY compares kzgis::read_dem with GDAL's command-line tools.

GDAL reads the real sample, what its own driver writes from other elevations, and edited copies
of those; every elevation must be the same, and every place to a millimetre.
"""
import array
import gzip
import json
import pathlib
import random
import subprocess
import sys
import tempfile

SEED = 19800518
MILLIMETRE = 0.001
MILLIMETRE_OF_ARC = 1e-8  # degrees


def run(*command):
    done = subprocess.run([str(c) for c in command], capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(map(str, command))}: {done.stderr}")
    return done.stdout


def floats(path):
    values = array.array("f")
    values.frombytes(path.read_bytes())
    return values


def compare(dump_grid, dem, original, scratch):
    """Gives what differs between our reading of `dem` and GDAL's of `original`, in sentences."""
    info = json.loads(run("gdalinfo", "-json", original))
    run("gdal_translate", "-q", "-of", "ENVI", "-ot", "Float32", original, scratch / "gdal.raw")
    ours = json.loads(run(dump_grid, dem, scratch / "ours.raw"))
    wrong = []
    if ours["size"] != info["size"]:
        return [f"size {ours['size']}, GDAL {info['size']}"]
    x, step_x, _, y, _, step_y = info["geoTransform"]
    geographic = abs(x) <= 360 and abs(y) <= 90
    near = MILLIMETRE_OF_ARC if geographic else MILLIMETRE
    for what, mine, theirs in [
        ("west", ours["west"] - ours["step"][0] / 2, x),
        ("north", ours["north"] + ours["step"][1] / 2, y),
        ("east", ours["west"] + (ours["size"][0] - 0.5) * ours["step"][0], x + ours["size"][0] * step_x),
        ("south", ours["north"] - (ours["size"][1] - 0.5) * ours["step"][1], y + ours["size"][1] * step_y),
    ]:
        if abs(mine - theirs) > near:
            wrong.append(f"{what} {mine!r}, GDAL {theirs!r}")
    if ours["feet"] != (info["bands"][0].get("unit") == "ft"):
        wrong.append(f"feet {ours['feet']}")
    mine, theirs = floats(scratch / "ours.raw"), floats(scratch / "gdal.raw")
    different = [i for i in range(len(theirs)) if i >= len(mine) or mine[i] != theirs[i]]
    if len(mine) != len(theirs) or different:
        i = different[0] if different else 0
        wrong.append(f"{len(different)} elevations differ, the first at cell {i}: {mine[i]}, GDAL {theirs[i]}")
    held = [v for v in theirs if v != -32767]
    if ours["empty"] != len(theirs) - len(held):
        wrong.append(f"{ours['empty']} empty cells, GDAL {len(theirs) - len(held)}")
    if held and (ours["lowest"] != min(held) or ours["highest"] != max(held)):
        wrong.append(f"range {ours['lowest']} to {ours['highest']}, GDAL {min(held)} to {max(held)}")
    return wrong


def written_by_gdal(scratch):
    """Has GDAL write files of many shapes; yields them."""
    generator = random.Random(SEED)
    utm, geographic = "EPSG:32610", "EPSG:4326"
    cases = [
        # name, columns, rows, west, north, step, projection, elevations, options
        ("four_cells", 2, 2, 500000, 5000000, 30, utm, (5, 9), []),
        ("two_profiles", 2, 400, 500010, 5000010, 20, utm, (0, 4000), []),
        ("two_rows", 60, 2, 500010, 5000010, 20, utm, (0, 4000), []),
        ("first_block_full", 3, 146, 600000, 4000000, 10, utm, (-100, 100), []),
        ("first_block_over", 3, 147, 600000, 4000000, 10, utm, (-100, 100), []),
        ("two_blocks_full", 3, 316, 600000, 4000000, 10, utm, (-9999, 32767), []),
        ("two_blocks_over", 3, 317, 600000, 4000000, 10, utm, (-32766, 32767), []),
        ("between_multiples", 20, 30, 500007.3, 5000003.7, 10, utm, (0, 99), []),
        ("half_a_step", 20, 30, 500005, 5000005, 10, utm, (0, 99), []),
        ("south", 12, 40, 300000, 6000000, 30, "EPSG:32733", (0, 2000), []),
        ("z_tenths", 25, 35, 500000, 5000000, 30, utm, (0, 3000), ["ZRESOLUTION=0.1"]),
        ("z_two", 25, 35, 500000, 5000000, 30, utm, (0, 3000), ["ZRESOLUTION=2"]),
        ("named", 5, 5, 500000, 5000000, 30, utm, (0, 3000),
         ["INTERNALNAME=A NAME", "PRODUCER=SOMEBODY", "OriginCode=YT", "ProcessCode=8", "DEMLevelCode=2"]),
        ("arc_seconds_3", 121, 131, -122.25, 46.25, 3 / 3600, geographic, (0, 4000), []),
        ("arc_seconds_1", 41, 351, 7.0, -33.0, 1 / 3600, geographic, (-400, 4000), []),
        ("arc_seconds_30", 61, 61, 179.0, 1.0, 30 / 3600, geographic, (0, 10), []),
    ]
    for name, columns, rows, west, north, step, projection, (low, high), options in cases:
        # The outer edge of the raster is half a step away from its points.
        left, top = west - step / 2, north + step / 2
        source = scratch / f"{name}.asc"
        with source.open("w") as asc:
            asc.write(f"ncols {columns}\nnrows {rows}\nxllcorner {left!r}\nyllcorner {top - rows * step!r}\n")
            asc.write(f"cellsize {step!r}\nNODATA_value -9999\n")
            for _ in range(rows):
                row = [-9999 if columns > 4 and generator.random() < 0.02 else generator.randint(low, high)
                       for _ in range(columns)]
                asc.write(" ".join(map(str, row)) + "\n")
        dem = scratch / f"{name}.dem"
        creation = [word for option in options for word in ("-co", option)]
        run("gdal_translate", "-q", "-of", "USGSDEM", "-a_srs", projection, *creation, source, dem)
        yield dem


def lines(data, end):
    return b"".join(data[i:i + 1024] + end for i in range(0, len(data), 1024))


def put(data, offset, text):
    return data[:offset] + text + data[offset + len(text):]


def edited(scratch, crater, mountain):
    """Copies of the samples that other programs may have written; yields them."""
    feet = put(crater, 534, b"     1")
    old = put(crater, 864, b" " * 160)
    # The first profile lifted by its own datum, in feet, so that GDAL keeps the fraction.
    datum = put(feet, 1024 + 72, b"   0.125500000000000D+02")
    copies = {
        "lf": lines(crater, b"\n"),
        "crlf": lines(crater, b"\r\n"),
        "mountain_lf": lines(mountain, b"\n"),
        "short_end": crater.rstrip(b" "),
        "feet": feet,
        "feet_tenths": put(feet, 840, b"0.100000D+00"),
        "centimetres": put(crater, 840, b"0.100000E-01"),
        "old_header": old,
        "datum": datum,
        "voids": put(crater, 1024 + 150, b"-32767-32768-32766"),
        "moved_up": put(crater, 1024 + 48, b"   5.115720000000000D+06"),
        "state_plane": put(put(crater, 156, b"     2"), 162, b"  4601"),
        "trailing": crater + b"\x1a\r\n",
    }
    for name, data in copies.items():
        path = scratch / f"copy_{name}.dem"
        path.write_bytes(data)
        yield path


def main():
    dump_grid, data = sys.argv[1], pathlib.Path(sys.argv[2])
    failed = compared = 0
    with tempfile.TemporaryDirectory(prefix="kzgis_gdal_") as directory:
        scratch = pathlib.Path(directory)
        mountain = scratch / "st_helens.dem"
        mountain.write_bytes(gzip.decompress((data / "st_helens.dem.gz").read_bytes()))
        crater = data / "st_helens_crater.dem"
        files = [mountain, crater, *written_by_gdal(scratch)]
        files += edited(scratch, crater.read_bytes(), mountain.read_bytes())
        pairs = [(dem, dem) for dem in files]
        # What GDAL cannot read: lines of two bytes more in a long file, blanks cut off.
        for name, end in [("crlf", b"\r\n"), ("cut_lf", None), ("cut_crlf", None)]:
            path = scratch / f"mountain_{name}.dem"
            text = lines(mountain.read_bytes(), end or b"\n")
            if end is None:
                end = b"\n" if name == "cut_lf" else b"\r\n"
                text = end.join(line.rstrip(b" ") for line in text.split(b"\n"))
            path.write_bytes(text)
            pairs.append((path, mountain))
        for dem, original in pairs:
            compared += 1
            try:
                wrong = compare(dump_grid, dem, original, scratch)
            except RuntimeError as error:
                wrong = [str(error)]
            if wrong:
                failed += 1
                print(f"{dem.name} (seed {SEED}): " + "; ".join(wrong))
    print(f"{compared} files compared with GDAL, {failed} differ")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
