"""Data banks, packed by the command from shapefiles; and the coordinate value."""
import os
import pickle
import subprocess

import numpy as np
import pytest
from hypothesis import given
from hypothesis import strategies as st

import kzgis


@pytest.fixture(scope="module")
def bank(data, tmp_path_factory):
    directory = tmp_path_factory.mktemp("data") / "bank"
    shapes = sorted(str(path) for path in (data / "wdb").glob("*.shp"))
    subprocess.run([os.environ["KZGIS_COMMAND"], "pack", *shapes, str(directory)], check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return directory


def test_segments_are_those_of_the_shapefiles(bank, data):
    coasts = kzgis.read_databank(bank, theme="coastal")
    assert len(coasts) > 10 and set(coasts.themes) == {2}
    with kzgis.Shapefile(data / "wdb" / "cil.shp") as file:
        drawn = np.concatenate([record.points for record in file]) * 3600
    assert len(coasts.arcsec) == len(drawn)
    # Whole arc-seconds next to those that were packed; the meridian of 180 degrees is one.
    points = set()
    for x in (np.floor, np.ceil):
        for y in (np.floor, np.ceil):
            lon = (x(drawn[:, 0]) + 648000) % 1296000 - 648000
            points.update(zip(lon.astype(int).tolist(), y(drawn[:, 1]).astype(int).tolist()))
    for segment in coasts:
        assert segment.theme == "coastal"
        assert set(map(tuple, np.round(segment.points * 3600).astype(int).tolist())) <= points
    assert segment.points.dtype == np.float64 and segment.arcsec.dtype == np.int32
    assert segment.__geo_interface__["type"] == "LineString"


def test_queries(bank):
    everything = kzgis.read_databank(bank)
    assert everything.offsets[-1] == len(everything.arcsec) and not everything.damaged
    some = kzgis.read_databank(bank, ["coastal", "river"], levels=(1, 3))
    assert set(some.levels) <= {1, 3} and set(some.themes) <= {2, 3} and len(some)
    assert len(kzgis.read_databank(bank, "coastal", range(16))) == (everything.themes == 2).sum()
    assert set(kzgis.read_databank(bank, "coastal", 2).levels) <= {2}
    south = kzgis.read_databank(bank, continent="south america")
    assert len(south) == (everything.continents == 4).sum() > 0 and set(south.continents) == {4}
    with pytest.raises(ValueError, match="is 'europe' meant"):
        kzgis.read_databank(bank, continent=["asia", "europa"])
    box = kzgis.read_databank(bank, box=(40, -10, 60, 20))
    assert 0 < len(box) < len(everything)
    for segment in box:
        lon, lat = segment.points.T
        assert ((lon >= -10) & (lon <= 20) & (lat >= 40) & (lat <= 60)).any()
    assert everything[-1].arcsec.tolist() == everything[len(everything) - 1].arcsec.tolist()
    twin = pickle.loads(pickle.dumps(box))
    assert np.array_equal(twin.arcsec, box.arcsec) and repr(twin) == repr(box)
    assert "points>" in repr(box[0])


def test_what_is_no_query(bank, tmp_path):
    with pytest.raises(ValueError, match="is 'coastal' meant"):
        kzgis.read_databank(bank, "costal")
    with pytest.raises(ValueError):
        kzgis.read_databank(bank, levels=16)
    with pytest.raises(ValueError):
        kzgis.read_databank(bank, box=(1, 2, 3))
    with pytest.raises(OSError) as told:
        kzgis.read_databank(tmp_path / "none")
    assert told.value.filename.endswith("none")
    with pytest.raises((TypeError, OverflowError, ValueError)):
        kzgis.read_databank(bank, levels=10**12)


def test_damaged_files_are_named(bank, tmp_path):
    import shutil

    broken = tmp_path / "bank"
    shutil.copytree(bank, broken)
    path = max(broken.rglob("cil.cbd"), key=lambda p: p.stat().st_size)
    path.write_bytes(path.read_bytes()[:-40])
    damaged = kzgis.read_databank(broken).damaged
    assert list(damaged) == [str(path)] and damaged[str(path)]


def test_latlon_is_the_class():
    point = kzgis.LatLon(48.25, -16.5, 170.0)
    assert (point.lat, point.lon, point.altitude) == (48.25, 343.5, 170.0)
    assert point.dms == ((48.0, 15.0, 0.0), (343.0, 30.0, 0.0))
    assert point.arcsec == (173700, 1236600)
    assert kzgis.LatLon.from_dms((-45, -30, 0), (10, 15, 0)).lat == -45.5
    assert kzgis.LatLon.from_arcsec(324000, -36000) == kzgis.LatLon(90, 350)
    assert kzgis.LatLon(100, 0).lat == 90
    east = kzgis.LatLon(48.25, 344.5)
    assert point.direction(east) == "east" and east.direction(point) == "west"
    assert point.direction(kzgis.LatLon(50, 350)) == "north-east"
    assert point.direction(point) == "same place"
    assert point.distance_squared(east) == 3600.0**2
    assert (point + kzgis.LatLon(1, 1)).lat == 49.25 and (point - point).lat == 0
    assert str(kzgis.LatLon(45.5, 10)) == "Lat: 45d 30m 0s, Lon: 10d 0m 0s Altitude: 0"
    assert point == kzgis.LatLon(48.25, 343.5) and point != east and point != 3
    assert hash(point) == hash(kzgis.LatLon(48.25, 343.5))
    for bad in ((), ("a", 1), (1,), (None, None)):
        with pytest.raises(TypeError):
            kzgis.LatLon(*bad)


@given(st.floats(allow_nan=False, allow_infinity=False, width=32), st.floats(-1e5, 1e5))
def test_latlon_is_normalised_pickled_and_shown(lat, lon):
    point = kzgis.LatLon(lat, lon)
    assert -90 <= point.lat <= 90 and 0 <= point.lon < 360
    assert pickle.loads(pickle.dumps(point)) == point
    assert eval(repr(point), {"LatLon": kzgis.LatLon}) == point
