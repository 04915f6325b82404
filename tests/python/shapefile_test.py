"""Shapefiles and their tables; against GDAL's readers."""
import copy
import datetime
import errno
import os
import json
import pickle
import re
import shutil
import struct
import threading
import warnings

import numpy as np
import pytest
from osgeo import ogr

import kzgis

ogr.UseExceptions()


def test_every_record_and_value_is_ogrs(data):
    for path in sorted((data / "ne").glob("*.shp")):
        layer_file = ogr.Open(str(path))
        layer = layer_file.GetLayer(0)
        with kzgis.Shapefile(path) as file:
            assert len(file) == layer.GetFeatureCount()
            names = [field.name for field in file.fields]
            definition = layer.GetLayerDefn()
            assert names == [definition.GetFieldDefn(i).GetName() for i in range(len(names))]
            for record, feature in zip(file, layer):
                geometry = feature.GetGeometryRef()
                west, east, south, north = geometry.GetEnvelope()
                assert record.points.min(axis=0) == pytest.approx((west, south), abs=1e-12)
                assert record.points.max(axis=0) == pytest.approx((east, north), abs=1e-12)
                for name, value in record.attributes.items():
                    theirs = feature.GetField(name)
                    if isinstance(value, float):
                        assert value == pytest.approx(theirs, rel=1e-12)
                    elif value is None:
                        assert theirs is None
                    else:
                        assert value == theirs or (value == "" and theirs is None), (path, name)


def test_a_file_is_a_sequence(data):
    with kzgis.Shapefile(data / "ne" / "ne_110m_countries") as file:
        assert file.type == "polygon" and file.path.endswith(".shp")
        assert len(file) == 177 == len(list(file))
        assert file[-1].number == 177 and file[np.int64(2)].number == 3
        assert [r.number for r in file[170:]] == list(range(171, 178))
        assert [r.number for r in file[::-60]] == [177, 117, 57]
        for bad in (177, -178, 10**20):
            with pytest.raises(IndexError):
                file[bad]
        with pytest.raises(TypeError):
            file["a"]
        with pytest.raises(TypeError):
            file[1.0]
        assert file.box[0] < -179 and file.crs_wkt is None
        assert repr(file) == "<Shapefile ne_110m_countries.shp: 177 records, polygon>"
        record = file[0]
    assert record.attributes["NAME"] == "Afghanistan"  # a record outlives its file
    for use in (lambda: file[0], lambda: list(file), lambda: file.column("NAME")):
        with pytest.raises(ValueError, match="closed"):
            use()
    file.close()


def test_columns(data):
    with kzgis.Shapefile(data / "ne" / "ne_110m_rivers.shp") as file:
        ranks = file.column("scalerank")
        assert ranks.dtype == np.float64 and ranks.shape == (13,)
        assert ranks.tolist() == [record.attributes["scalerank"] for record in file]
        assert file.column("name")[0] == file[0].attributes["name"] != ""
        with pytest.raises(ValueError, match="is 'scalerank' meant"):
            file.column("scalrank")


def test_files_that_cannot_be_read_are_os_errors(tmp_path):
    with pytest.raises(FileNotFoundError) as told:
        kzgis.Shapefile(tmp_path / "none.shp")
    assert told.value.errno == errno.ENOENT and told.value.filename.endswith("none.shp")
    with pytest.raises(OSError):
        kzgis.Shapefile(tmp_path)
    with pytest.raises(ValueError):
        kzgis.Shapefile("a\0b")
    with pytest.raises(TypeError):
        kzgis.Shapefile(3)
    (tmp_path / "text.shp").write_text("this is no shapefile at all" * 9)
    with pytest.raises(kzgis.DataError) as told:
        kzgis.Shapefile(tmp_path / "text.shp")
    assert "text.shp" in str(told.value)
    odd = tmp_path / os.fsdecode(b"odd\xff.shp")
    with pytest.raises(FileNotFoundError) as told:
        kzgis.Shapefile(odd)
    assert told.value.filename == str(odd)


@pytest.fixture
def copied(data, tmp_path):
    for ending in ("shp", "shx", "dbf", "cpg"):
        shutil.copy(data / "ne" / f"ne_110m_countries.{ending}", tmp_path / f"c.{ending}")
    return tmp_path


def test_a_damaged_record_costs_no_other(copied):
    content = bytearray((copied / "c.shp").read_bytes())
    index = (copied / "c.shx").read_bytes()
    offset = 2 * int.from_bytes(index[100 + 8 * 5 : 104 + 8 * 5], "big")
    content[offset + 8 + 36 : offset + 8 + 40] = struct.pack("<i", 2**30)  # how many parts
    (copied / "c.shp").write_bytes(content)
    with kzgis.Shapefile(copied / "c.shp") as file:
        with pytest.raises(kzgis.DataError, match="record 6"):
            file[5]
        damaged = []
        sound = list(file.sound(lambda index, error: damaged.append(index)))
        assert len(sound) == 176 and damaged == [5]
        steps = iter(file)
        assert next(steps).number == 1


def test_codes_of_texts(copied):
    table = bytearray((copied / "c.dbf").read_bytes())
    begin, width = struct.unpack_from("<HH", table, 8)
    at = begin + 1
    with kzgis.Shapefile(copied / "c.shp") as file:
        for field in file.fields:
            if field.name == "NAME":
                break
            at += field.width
    table[at : at + field.width] = "Čeština".encode("cp1250").ljust(field.width)
    (copied / "c.dbf").write_bytes(table)
    for text in ("1250", "CP1250", "ANSI 1250", "windows-1250", " 1250\r\n"):
        (copied / "c.cpg").write_text(text)
        with kzgis.Shapefile(copied / "c.shp") as file:
            assert file[0].attributes["NAME"] == "Čeština", text
    (copied / "c.cpg").unlink()
    table[29] = 0xC8
    (copied / "c.dbf").write_bytes(table)
    with kzgis.Shapefile(copied / "c.shp") as file:
        assert file[0].attributes["NAME"] == "Čeština"
    with kzgis.Shapefile(copied / "c.shp", encoding="latin-1") as file:
        assert file[0].attributes["NAME"] == "Čeština".encode("cp1250").decode("latin-1")
    table[29] = 0
    (copied / "c.dbf").write_bytes(table)
    with kzgis.Shapefile(copied / "c.shp") as file:  # neither said nor UTF-8
        assert file[0].attributes["NAME"] == "Čeština".encode("cp1250").decode("latin-1")


def test_the_mark_of_deleted_rows_is_told(copied):
    table = bytearray((copied / "c.dbf").read_bytes())
    begin, width = struct.unpack_from("<HH", table, 8)
    table[begin + 2 * width] = ord("*")
    (copied / "c.dbf").write_bytes(table)
    with kzgis.Shapefile(copied / "c.shp") as file:
        assert [record.deleted for record in file[:4]] == [False, False, True, False]
        assert file[2].attributes["NAME"] == "Albania"


def _table(fields, rows):
    """A dBASE table, byte by byte."""
    width = 1 + sum(f[2] for f in fields)
    head = struct.pack("<4BIHH20x", 3, 120, 1, 1, len(rows), 33 + 32 * len(fields), width)
    for name, kind, size, decimals in fields:
        head += name.ljust(11, b"\0") + kind + bytes(4) + bytes([size, decimals]) + bytes(14)
    return head + b"\r" + b"".join(b" " + row for row in rows)


def test_values_of_every_kind(copied):
    fields = [(b"N", b"N", 5, 0), (b"F", b"F", 9, 3), (b"L", b"L", 1, 0), (b"D", b"D", 8, 0),
              (b"C", b"C", 4, 0)]
    rows = [b"   42    1.500T20230704ab  ", b"*****         ?00000000    ",
            b" 4 2 1.000e+02n2023 704\0\0ab", b"12345      nanFxxxxxxxx abc"]
    rows += [rows[0]] * 173
    (copied / "c.dbf").write_bytes(_table(fields, rows))
    with kzgis.Shapefile(copied / "c.shp") as file:
        assert [tuple(f) for f in file.fields] == [
            ("N", "int", 5, 0), ("F", "float", 9, 3), ("L", "bool", 1, 0), ("D", "date", 8, 0),
            ("C", "str", 4, 0)]
        day = datetime.date(2023, 7, 4)
        first, second, third, fourth = (list(r.attributes.values()) for r in file[:4])
        assert first == [42, 1.5, True, day, "ab"]
        assert second == [None, None, None, None, ""]
        assert third[:3] == ["4 2", 100.0, False] and third[4] == "ab"
        assert fourth[0] == 12345 and np.isnan(fourth[1]) and fourth[3:] == ["xxxxxxxx", " abc"]
        assert np.array_equal(file.column("N")[:4], [42, np.nan, np.nan, 12345], equal_nan=True)
        assert file[0].feature()["properties"]["D"] == "2023-07-04"


def test_a_damaged_table_is_left_out_with_one_warning(copied):
    table = (copied / "c.dbf").read_bytes()
    begin, width = struct.unpack_from("<HH", table, 8)
    short_count = table[:4] + struct.pack("<I", 5) + table[8:]
    wide = bytearray(table)
    wide[32 + 16] = 255
    wide[32 + 17] = 255
    for damaged in (b"", table[:31], table[: begin + 7], table[:-width], short_count, bytes(wide),
                    b"\xff" * 4000, bytes(4000), table[:8] + bytes(4) + table[12:]):
        (copied / "c.dbf").write_bytes(damaged)
        with pytest.warns(UserWarning, match="attributes are left out") as told:
            file = kzgis.Shapefile(copied / "c.shp")
        assert len(told) == 1 and "c.dbf" in str(told[0].message)
        assert file.fields == () and file[0].attributes == {}
    generator = np.random.default_rng(7)
    for _ in range(300):  # whatever is in it, an answer
        broken = bytearray(table[:40000])
        for at in generator.integers(0, 2000, 8):
            broken[at] = generator.integers(256)
        (copied / "c.dbf").write_bytes(broken + table[40000:])
        with warnings.catch_warnings():
            warnings.simplefilter("ignore")
            with kzgis.Shapefile(copied / "c.shp") as file:
                [record.attributes for record in file[:3]]


def test_geometries_of_every_type(tmp_path):
    driver = ogr.GetDriverByName("ESRI Shapefile")
    texts = {
        "point": (ogr.wkbPoint, "POINT (1 2)"),
        "multipoint": (ogr.wkbMultiPoint, "MULTIPOINT (1 2,3 4)"),
        "polyline": (ogr.wkbLineString, "LINESTRING (0 0,1 1,2 0)"),
        "point with z": (ogr.wkbPoint25D, "POINT Z (1 2 3)"),
        "polyline with z": (ogr.wkbLineString25D, "LINESTRING Z (0 0 5,1 1 6)"),
        "polyline with m": (ogr.wkbLineStringM, "LINESTRING M (0 0 5,1 1 6)"),
        "polygon": (ogr.wkbPolygon, "POLYGON ((0 0,4 0,4 4,0 4,0 0),(1 1,2 2,2 1,1 1))"),
    }
    for kind, (number, text) in texts.items():
        path = tmp_path / (kind.replace(" ", "_") + ".shp")
        source = driver.CreateDataSource(str(path))
        layer = source.CreateLayer("a", None, number)
        feature = ogr.Feature(layer.GetLayerDefn())
        feature.SetGeometry(ogr.CreateGeometryFromWkt(text))
        layer.CreateFeature(feature)
        layer.CreateFeature(ogr.Feature(layer.GetLayerDefn()))
        source = None
        with kzgis.Shapefile(path) as file:
            assert file.type == kind
            record, null = file
        geometry = record.__geo_interface__
        theirs = ogr.CreateGeometryFromJson(json.dumps(geometry))
        assert theirs.ExportToWkt() == re.sub(r" [ZM]|(?<=\d \d) \d", "", text), kind
        assert (record.z is not None) == ("with z" in kind)
        assert (record.m is not None) == ("with m" in kind)
        assert null.type == "null shape" and null.feature()["geometry"] is None
        if "poly" not in kind:
            with pytest.raises(ValueError):
                kzgis.triangulate(record)


def test_records_and_files_are_pickled(data):
    with kzgis.Shapefile(data / "ne" / "ne_110m_countries.shp") as file:
        record = file[4]
        for twin in (pickle.loads(pickle.dumps(record)), copy.deepcopy(record)):
            assert np.array_equal(twin.points, record.points) and twin.type == record.type
            assert twin.attributes == record.attributes and twin.box == record.box
        with pickle.loads(pickle.dumps(file)) as again:
            assert again[4].attributes == record.attributes


def test_arrays_belong_to_their_record(data):
    with kzgis.Shapefile(data / "ne" / "ne_110m_countries.shp") as file:
        first = file[0]
        points = first.points.copy()
        file[1]
        assert np.array_equal(first.points, points)
        first.points[0] = 0  # its own
        assert np.array_equal(file[0].points, points)


def test_threads_share_a_file(data):
    with kzgis.Shapefile(data / "ne" / "ne_50m_countries.shp") as file:
        expected = [record.points.sum() for record in file]
        wrong = []

        def read():
            for index in range(len(file)):
                if file[index].points.sum() != expected[index]:
                    wrong.append(index)

        threads = [threading.Thread(target=read) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        assert not wrong


def test_closing_under_a_reader_is_an_error_and_no_crash(data):
    for _ in range(20):
        file = kzgis.Shapefile(data / "ne" / "ne_110m_countries.shp")
        ends = []

        def read():
            try:
                while True:
                    file[3]
            except ValueError as error:
                ends.append(str(error))

        thread = threading.Thread(target=read)
        thread.start()
        file.close()
        thread.join(30)
        assert len(ends) == 1 and "closed" in ends[0]
