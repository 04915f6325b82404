"""Elevation models; against GDAL."""
import gzip
import pickle

import numpy as np
import pytest
from osgeo import gdal

import kzgis

gdal.UseExceptions()


@pytest.fixture(scope="module")
def crater(data):
    return kzgis.read_dem(data / "dem" / "st_helens_crater.dem")


def test_elevations_and_place_are_gdals(crater, data):
    theirs = gdal.Open(str(data / "dem" / "st_helens_crater.dem"))
    band = theirs.GetRasterBand(1)
    values = band.ReadAsArray()
    assert crater.shape == values.shape
    there = values != band.GetNoDataValue()
    assert np.array_equal(~crater.elevations.mask, there)
    assert np.array_equal(crater.elevations.compressed(), values[there])
    c, a, b, f, d, e = theirs.GetGeoTransform()
    assert crater.transform == (a, b, c, d, e, f)
    assert crater.elevations.dtype == np.float32
    left, bottom, right, top = crater.bounds
    assert (right - left) / crater.shape[1] == a and (top - bottom) / crater.shape[0] == -e
    assert crater.x[0] == left + a / 2 and crater.y[0] == top + e / 2


def test_the_light_is_gdals(crater, tmp_path, data):
    path = str(tmp_path / "shade.tif")
    source = str(data / "dem" / "st_helens_crater.dem")
    gdal.DEMProcessing(path, source, "hillshade", azimuth=300, altitude=40)
    theirs = gdal.Open(path).ReadAsArray()[1:-1, 1:-1]
    mine = crater.hillshade(300, 40)
    assert mine.dtype == np.float32 and mine.shape == crater.shape
    inner = mine[1:-1, 1:-1]
    there = (theirs > 0) & ~np.isnan(inner)
    assert there.sum() > 1000
    assert np.abs(1 + 254 * inner[there] - theirs[there]).max() < 1.01


def test_compressed_models_are_the_same(crater, data, tmp_path):
    path = tmp_path / "crater.dem.gz"
    path.write_bytes(gzip.compress((data / "dem" / "st_helens_crater.dem").read_bytes()))
    again = kzgis.read_dem(path)
    assert np.array_equal(again.elevations.filled(), crater.elevations.filled(), equal_nan=True)
    path.write_bytes(path.read_bytes()[:3000])
    with pytest.raises(kzgis.DataError, match="gz"):
        kzgis.read_dem(path)


def test_files_that_cannot_be_read(tmp_path):
    with pytest.raises(FileNotFoundError) as told:
        kzgis.read_dem(tmp_path / "none.dem")
    assert told.value.filename.endswith("none.dem")
    with pytest.raises(FileNotFoundError):
        kzgis.read_dem(tmp_path / "none.dem.gz")
    with pytest.raises(IsADirectoryError):
        kzgis.read_dem(tmp_path)
    (tmp_path / "bad.dem").write_bytes(b"\xff" * 5000)
    with pytest.raises(kzgis.DataError):
        kzgis.read_dem(tmp_path / "bad.dem")


def test_triangles_keep_the_tolerance(crater):
    few, many, all_of_them = (crater.triangulate(t) for t in (50, 5, 0))
    assert len(few) < len(many) < len(all_of_them)
    assert all_of_them.vertices.shape[1] == 3 and few.triangles.dtype == np.uint32
    for bad in (-1, float("nan"), float("inf")):
        with pytest.raises(ValueError):
            crater.triangulate(bad)
    twin = pickle.loads(pickle.dumps(few))
    assert np.array_equal(twin.vertices, few.vertices)


def test_terrain_is_saved(crater, tmp_path):
    crater.triangulate(10).save(tmp_path / "crater.glb")
    assert (tmp_path / "crater.glb").read_bytes()[:4] == b"glTF"


def test_grids_are_made_of_arrays():
    z = np.ma.MaskedArray([[1, 2, 3], [4, 5, 6]], mask=[[0, 0, 1], [0, 0, 0]])
    grid = kzgis.ElevationGrid(z, 100.0, 50.0, 2.0, 1.0, ground_unit="metres", name="made")
    assert grid.elevations.mask.sum() == 1 and grid.elevations.min() == 1
    assert grid.transform == (2.0, 0.0, 99.0, 0.0, -1.0, 50.5)
    assert grid.bounds == (99.0, 48.5, 105.0, 50.5)
    assert repr(grid) == "<ElevationGrid 'made': 2 rows, 3 columns, 1.0 to 6.0, 1 empty>"
    with pytest.raises(ValueError):
        grid.elevations[0, 0] = 9
    slope = kzgis.ElevationGrid(np.add.outer(np.zeros(5), np.arange(5.0)), 0, 0, 1, 1)
    light = slope.hillshade(270, 45)  # straight into a slope of 45 degrees that faces west
    assert light == pytest.approx(np.ones((5, 5)), abs=1e-6)
    assert len(slope.triangulate(0)) == 32


def test_what_is_no_grid_is_an_error():
    make = kzgis.ElevationGrid
    for bad in ([1, 2], [[[1]]], np.broadcast_to(np.float32(0), (2**16, 2**15))):
        with pytest.raises(ValueError):
            make(bad, 0, 0, 1, 1)
    for bad in ([["a"]], [[1j]], None):
        with pytest.raises(TypeError):
            make(bad, 0, 0, 1, 1)
    for steps in ((0, 1), (1, -1), (float("nan"), 1), (1, float("inf"))):
        with pytest.raises(ValueError):
            make([[1]], 0, 0, *steps)
    with pytest.raises(ValueError, match="is 'metres' meant"):
        make([[1]], 0, 0, 1, 1, ground_unit="meters")
    empty = make(np.empty((0, 3)), 0, 0, 1, 1)
    assert empty.hillshade().shape == (0, 3) and len(empty.triangulate()) == 0
    odd = make([[1]], 0, 0, 1, 1, name="caf\udce9")
    assert pickle.loads(pickle.dumps(odd)).name == odd.name
    assert np.isnan(make([[np.nan]], 0, 0, 1, 1).hillshade()).all()


def test_grids_are_pickled(crater):
    twin = pickle.loads(pickle.dumps(crater))
    assert np.array_equal(twin.elevations.filled(), crater.elevations.filled(), equal_nan=True)
    assert twin.transform == crater.transform and twin.name == crater.name
    assert (twin.plan, twin.zone, twin.elevation_unit) == ("utm", 10, "metres")
    assert np.array_equal(twin.hillshade(), crater.hillshade(), equal_nan=True)


def test_elevations_outlive_their_grid(data):
    values = kzgis.read_dem(data / "dem" / "st_helens_crater.dem").elevations
    before = values.sum()
    for _ in range(20):
        kzgis.ElevationGrid(np.zeros(values.shape), 0, 0, 1, 1)
    assert values.sum() == before
