#!/usr/bin/env python3
"""gdal_grid_test.py KZGIS DATA_DIR: holds `kzgis dem` against GDAL.

GDAL's driver must read the same elevations at the same places from the DEM as stand in
the grid that kzgis writes.
"""
import gzip
import pathlib
import subprocess
import sys
import tempfile


def run(*arguments):
    subprocess.run(arguments, check=True, stdout=subprocess.DEVNULL)


def read(path):
    """An ESRI ASCII grid: its header in numbers, and its rows."""
    header, rows = {}, []
    for line in path.read_text().splitlines():
        words = line.split()
        if words[0][0].isalpha():
            header[words[0].lower()] = float(words[1])
        else:
            rows.append([float(word) for word in words])
    return header, rows


def main():
    kzgis, data = sys.argv[1], pathlib.Path(sys.argv[2])
    with tempfile.TemporaryDirectory() as directory:
        tmp = pathlib.Path(directory)
        for name in ("st_helens.dem.gz", "st_helens_crater.dem"):
            source = data / name
            plain = tmp / "plain.dem"
            content = source.read_bytes()
            plain.write_bytes(gzip.decompress(content) if name.endswith(".gz") else content)
            run("gdal_translate", "-q", "-of", "AAIGrid", str(plain), str(tmp / "gdal.asc"))
            run(kzgis, "dem", str(source), "-o", str(tmp / "kzgis.asc"))
            header, rows = read(tmp / "kzgis.asc")
            expected, expected_rows = read(tmp / "gdal.asc")
            for key, value in expected.items():
                if abs(header[key] - value) > 1e-3:
                    sys.exit(f"{name}: {key} is {header[key]}, not {value}")
            if rows != expected_rows:
                sys.exit(f"{name}: the elevations differ")
            run(kzgis, "dem", str(source), "-o", str(tmp / "kzgis.csv"))
            points = (tmp / "kzgis.csv").read_text().splitlines()[1:]
            filled = sum(z != header["nodata_value"] for row in rows for z in row)
            if len(points) != filled:
                sys.exit(f"{name}: {len(points)} points, not {filled}")


main()
