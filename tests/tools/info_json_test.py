#!/usr/bin/env python3
"""info_json_test.py KZGIS DATA_DIR: `kzgis info --json` on sample files of every kind.

What it must say is what data/README.md says of them, from ogrinfo and gdalinfo; the banks are
counted in the text that other tests hold against the layers they were packed from.
"""
import json
import pathlib
import subprocess
import sys
import tempfile

KZGIS = sys.argv[1]
DATA = pathlib.Path(sys.argv[2])
problems = []


def info(file, *options):
    done = subprocess.run([KZGIS, "info", "--json", *options, str(file)], capture_output=True,
                          timeout=60, check=False)
    if done.stderr:
        problems.append(f"{file}: says {done.stderr!r}")
    return done.returncode, json.loads(done.stdout)


def expect(what, found, expected):
    if found != expected:
        problems.append(f"{what}: {found!r}, not {expected!r}")


def pick(document, *names):
    return [document.get(name) for name in names]


def layers():
    for name, *counts in (("ne_110m_land", "polygon", 5, 127, 128, 5143),
                          ("ne_110m_rivers", "polyline", 3, 13, 13, 1147),
                          ("ne_110m_places", "point", 1, 243, 243, 243),
                          ("ne_50m_places_by_country", "multipoint", 8, 217, 217, 1249)):
        file = DATA / "ne" / f"{name}.shp"
        code, document = info(file)
        expect(name, code, 0)
        expect(name, pick(document, "kind", "file", "index", "null_records", "errors"),
               ["shapefile", str(file), True, 0, []])
        expect(name, pick(document, "type", "type_number", "records", "parts", "points"), counts)
        expect(name, "list" in document, False)
    _, document = info(DATA / "ne/ne_110m_rivers.shp", "--list")
    expect("the list", (len(document["list"]), document["list"][11]["record"],
                        sum(record["points"] for record in document["list"])), (13, 12, 1147))


def elevation_models(tmp):
    for name, columns, rows, elevations, lowest, highest in (
            ("st_helens.dem.gz", 327, 468, 148885, 682, 2543),
            ("st_helens_crater.dem", 40, 40, 1600, 1839, 2539)):
        code, document = info(DATA / "dem" / name)
        expect(name, code, 0)
        expect(name, pick(document, "kind", "ground_plan", "zone", "ground_unit", "elevation_unit",
                          "columns", "rows", "step_x", "step_y", "elevations", "lowest", "highest",
                          "left_out", "errors"),
               ["elevation model", "utm", 10, "metres", "metres", columns, rows, 30, 30, elevations,
                lowest, highest, 0, []])
    expect("st_helens", info(DATA / "dem/st_helens.dem.gz")[1]["box"],
           {"min_x": 557820, "min_y": 5107980, "max_x": 567600, "max_y": 5121990})
    sound = (DATA / "dem/st_helens_crater.dem").read_bytes()
    cut, zipped = tmp / "cut.dem", tmp / "cut.dem.gz"
    cut.write_bytes(sound[:20000])
    zipped.write_bytes((DATA / "dem/st_helens.dem.gz").read_bytes()[:20000])
    for file in (cut, zipped):
        code, document = info(file)
        expect(file.name, (code, list(document), len(document["errors"])),
               (1, ["kind", "file", "errors"], 1))
        expect(file.name, document["errors"][0].startswith(f"{file}: "), True)


def banks(tmp):
    bank = tmp / "bank"
    subprocess.run([KZGIS, "pack", DATA / "wdb/pby.shp", DATA / "wdb/cil.shp", bank],
                   stdout=subprocess.DEVNULL, check=True)
    file = bank / "africa.Map/cil.cbd"
    code, document = info(file, "--list")
    expect("cil.cbd", code, 0)
    expect("cil.cbd", pick(document, "kind", "bytes", "claimed_segments", "segments", "points",
                           "errors"), ["outline file", 37632, 85, 85, 4674, []])
    expect("cil.cbd", document["levels"][0], {"level": 1, "segments": 3, "points": 2007})
    expect("cil.cbd", [round(degrees, 4) for degrees in document["box"].values()],
           [0.0017, -58.4922, 359.9975, 37.3403])
    expect("cil.cbd", (len(document["list"]), document["list"][84]["segment"],
                       sum(segment["points"] for segment in document["list"])), (85, 85, 4674))
    code, document = info(bank)
    expect("the bank", (code, document["kind"], document["errors"]), (0, "data bank", []))
    expect("the bank", document["themes"][1],
           {"theme": "political", "files": 5,
            "levels": [{"level": 1, "segments": 202, "points": 6564}]})
    expect("the bank", [theme["theme"] for theme in document["themes"]],
           ["geographic", "political", "coastal", "river"])

    whole = file.read_bytes()
    file.write_bytes(whole[:-4])
    code, document = info(file)
    expect("a cut file", (code, bool(document["errors"])), (1, True))
    file.write_bytes(b"x" + whole[1:])
    line = f"{file}: not an outline file: it does not begin with 0x20770002"
    expect("no outline file", info(file),
           (1, {"kind": "outline file", "file": str(file), "errors": [line]}))
    code, document = info(bank)
    expect("a damaged bank", (code, document["errors"]), (1, [line]))
    expect("a damaged bank", document["themes"][1]["levels"][0]["segments"], 202)


def odd_names(tmp):
    """Names are text to JSON, whatever they are to the host."""
    for name in ('a "quoted"\nname.shp', b"no UTF-8 \xff.shp"):
        directory = tmp if isinstance(name, str) else str(tmp).encode()
        file = directory / name if isinstance(name, str) else directory + b"/" + name
        pathlib.Path(file if isinstance(name, str) else file.decode("utf-8", "surrogateescape")
                     ).write_bytes((DATA / "ne/ne_110m_lakes.shp").read_bytes())
        done = subprocess.run([KZGIS, "info", "--json", file], capture_output=True, timeout=60,
                              check=False)
        document = json.loads(done.stdout.decode("utf-8"))
        expect(f"{name}", (done.returncode, document["records"], document["index"]), (0, 25, False))


def main():
    layers()
    with tempfile.TemporaryDirectory() as name:
        for group in (elevation_models, banks, odd_names):
            group(pathlib.Path(name))
    if problems:
        sys.exit("\n".join(problems))


main()
