"""Charts: scalars, sequences and arrays, against PROJ, and what is no argument."""
import pickle

import numpy as np
import pyproj
import pytest
from hypothesis import given
from hypothesis import strategies as st

import kzgis

PROJ = {
    "mercator": "merc lon_0=10",
    "lambert cylindrical": "cea lon_0=10",
    "orthographic": "ortho lat_0=40 lon_0=10",
    "stereographic": "stere lat_0=40 lon_0=10",
    "gnomonic": "gnom lat_0=40 lon_0=10",
    "postel": "aeqd lat_0=40 lon_0=10",
    "lambert azimuthal": "laea lat_0=40 lon_0=10",
    "albers": "aea lat_0=40 lon_0=10 lat_1=30 lat_2=50",
    "lambert conic conformal": "lcc lat_0=40 lon_0=10 lat_1=30 lat_2=50",
    "bonne": "bonne lat_1=40 lon_0=10",
    "cassini-soldner": "cass lat_0=40 lon_0=10",
}


@pytest.mark.parametrize("name", sorted(PROJ))
def test_agrees_with_proj_to_a_micrometre(name):
    parallels = (30, 50) if name in ("albers", "lambert conic conformal") else None
    cylinder = name == "lambert cylindrical"
    chart = kzgis.Chart(name, (0 if cylinder else 40, 10), parallels, radius=6371000.0)
    proj = pyproj.Proj(f"+proj={PROJ[name].replace(' ', ' +')} +R=6371000 +no_defs")
    lat, lon = np.meshgrid(np.linspace(5, 75, 29), np.linspace(-30, 50, 33))
    x, y = chart.project(lat, lon)
    assert x.shape == lat.shape
    expected_x, expected_y = proj(lon, lat)
    assert np.abs(x - expected_x).max() < 1e-6
    assert np.abs(y - expected_y).max() < 1e-6
    back = chart.unproject(x, y)
    assert np.abs(back[0] - lat).max() < 1e-9
    assert np.abs(back[1] - lon).max() < 1e-9


@pytest.mark.parametrize("name", kzgis.projections())
def test_fast_points_are_within_a_micrometre_of_exact_ones(name):
    chart = kzgis.Chart(name, (40, 10))
    lat, lon = np.meshgrid(np.linspace(5, 75, 29), np.linspace(-30, 50, 33))
    exact, fast = chart.project(lat, lon), chart.project(lat, lon, fast=True)
    assert np.abs(np.subtract(exact, fast)).max() < 1e-6
    back = chart.unproject(*exact, fast=True)
    assert np.abs(back[0] - lat).max() < 1e-9
    assert np.abs(back[1] - lon).max() < 1e-9
    # NaN where there is no place, in both arithmetics.
    assert np.isnan(chart.project(np.nan, 0, fast=True)).all()


def test_scalars_come_back_as_floats():
    x, y = kzgis.Chart("mercator").project(0, 90)
    assert type(x) is float and type(y) is float
    assert x == pytest.approx(6378000.0 * np.pi / 2)


def test_shapes_broadcast():
    chart = kzgis.Chart("albers", base=(40, 10))
    x, y = chart.project(np.arange(3)[:, None], [10.0, 20.0])
    assert x.shape == y.shape == (3, 2)
    assert x[2, 1] == chart.project(2, 20)[0]
    assert chart.project([], [])[0].shape == (0,)
    assert chart.project(np.zeros((0, 4)), 1)[1].shape == (0, 4)
    with pytest.raises(ValueError):
        chart.project([1, 2], [1, 2, 3])


def test_the_globe_has_three_coordinates():
    globe = kzgis.Chart("globe", radius=2.0)
    assert np.allclose(globe.project(0, 0), (2, 0, 0), atol=1e-15)
    assert np.allclose(globe.project(90, 0, 1.0), (0, 0, 3), atol=1e-15)
    with pytest.raises(ValueError, match="needs z"):
        globe.unproject(1, 1)
    assert np.allclose(globe.unproject(0, 2, 0), (0, 90, 0))


@pytest.mark.parametrize(
    "make",
    [
        lambda a: a.astype(np.float32),
        lambda a: a.astype(np.int16),
        lambda a: a[::-1][::-1],
        lambda a: np.repeat(a, 2)[::2],
        lambda a: np.asfortranarray(a),
        lambda a: a.astype(">f8"),
        lambda a: a.astype(object),
        lambda a: a.tolist(),
        lambda a: tuple(a),
        lambda a: np.lib.stride_tricks.as_strided(a, writeable=False),
    ],
)
def test_any_array_of_numbers_will_do(make):
    lat = np.array([10.0, 20.0, 30.0])
    chart = kzgis.Chart("stereographic", base=(5, 5))
    expected = chart.project(lat, 7.0)
    assert all(np.array_equal(a, b) for a, b in zip(chart.project(make(lat), 7), expected))


def test_masked_points_have_no_place():
    lat = np.ma.MaskedArray([1, 2, 3], mask=[False, True, False])
    x, _ = kzgis.Chart("mercator").project(lat, 5.0)
    assert np.isnan(x).tolist() == [False, True, False]


@pytest.mark.parametrize("bad", ["a", ["a"], [1j], [{}], np.array(["2020"], "M8[Y]"), b"1"])
def test_what_is_no_number_is_a_type_error(bad):
    with pytest.raises(TypeError):
        kzgis.Chart("mercator").project(bad, 0)


def test_two_to_the_31_points_are_refused_before_memory_is():
    huge = np.broadcast_to(0.0, 2**31)
    chart = kzgis.Chart("mercator")
    for call in (lambda: chart.project(huge, 0), lambda: chart.project(0, huge),
                 lambda: chart.project(np.zeros((2**16, 1)), np.zeros(2**15)),
                 lambda: chart.unproject(huge, huge), lambda: chart.project(0, 0, huge),
                 lambda: chart.project(np.broadcast_to(np.array(None), 2**31), 0),
                 lambda: chart.project(np.ma.MaskedArray(huge), 0)):
        with pytest.raises(ValueError, match="2\\^30"):
            call()


@pytest.mark.parametrize(
    "name, meant", [("mercater", "mercator"), ("Lambert Con", "lambert conic"), ("orto", "ortho")]
)
def test_a_typo_is_told_the_nearest_name(name, meant):
    with pytest.raises(ValueError, match=f"is '{meant}"):
        kzgis.Chart(name)


def test_names_are_taken_as_the_command_takes_them():
    assert kzgis.Chart("Lambert-Conic_CONFORMAL").projection == "lambert conic conformal"
    assert len(kzgis.projections()) == 15


def test_parameters_out_of_range_are_value_errors():
    with pytest.raises(ValueError, match="91"):
        kzgis.Chart("mercator", base=(91, 0))
    with pytest.raises(ValueError):
        kzgis.Chart("albers", parallels=(30, -30))
    with pytest.raises(ValueError, match="base must be two numbers"):
        kzgis.Chart("albers", base=3)
    with pytest.raises(ValueError, match="window"):
        kzgis.Chart("mercator", window=(1, 2, 3))
    with pytest.raises(ValueError):
        kzgis.Chart("mercator", radius=float("nan"))


def test_settings_can_be_read():
    chart = kzgis.Chart("albers", base=(48, 15), parallels=(38, 60), window=(30, -20, 70, 40))
    assert chart.base == (48.0, 15.0) and chart.parallels == (38.0, 60.0)
    assert chart.window == (30.0, -20.0, 70.0, 40.0) and chart.reach is None
    assert kzgis.Chart("gnomonic").reach == 60.0
    assert kzgis.Chart("bonne").base == (45.0, 0.0)


@given(
    st.sampled_from(kzgis.projections()),
    st.floats(-89, 89),
    st.floats(-1e6, 1e6),
    st.floats(-180, 180),
    st.floats(-80, 80),
)
def test_there_and_back_again(name, base_lat, base_lon, lon, lat):
    base = (base_lat if abs(base_lat) > 1 else 1.0, base_lon)
    try:
        chart = kzgis.Chart(name, base=base)
    except ValueError:
        return
    there = chart.project(lat, lon, 0.0)
    if np.isnan(there[0]):
        return
    back = chart.unproject(*there)
    if np.isnan(back[0]):
        return  # at the very edge
    move = np.hypot(back[0] - lat, ((back[1] - lon + 180) % 360 - 180) * np.cos(np.radians(lat)))
    assert move < 1e-4


@given(st.lists(st.floats(), min_size=1, max_size=9), st.floats())
def test_any_doubles_are_projected_or_nan(lat, lon):
    for name in ("mercator", "albers", "orthographic", "globe"):
        for values in kzgis.Chart(name).project(lat, lon):
            assert values.shape == (len(lat),) and not np.isinf(values).any()


@pytest.mark.parametrize("chart", [kzgis.Chart(name) for name in kzgis.projections()]
                         + [kzgis.Chart("albers", (40, 1), 30.0, 2.0, window=(0, -9, 60, 9))])
def test_charts_are_pickled_compared_and_shown(chart):
    twin = pickle.loads(pickle.dumps(chart))
    assert twin == chart and hash(twin) == hash(chart) and twin != kzgis.Chart("mercator", (1, 1))
    assert eval(repr(chart), {"Chart": kzgis.Chart}) == chart
    if chart.projection != "globe":
        assert twin.project(50, 8) == chart.project(50, 8)


def test_lines_are_cut_at_the_seam():
    lines = kzgis.Chart("mercator").project_lines([[(170, 0), (190, 10)], [(0, 0), (1, 1)]])
    assert len(lines) == 3 and [len(line) for line in lines.lines] == [2, 2, 2]
    assert lines.__geo_interface__["type"] == "MultiLineString"
    assert lines.to_shapely().length > 0
    assert pickle.loads(pickle.dumps(lines)) == lines


def test_frame_and_graticule():
    chart = kzgis.Chart("orthographic", base=(20, 30), radius=1.0)
    frame = chart.frame(1e-6)
    assert frame.area == pytest.approx(np.pi, rel=1e-5)
    assert frame.to_shapely().area == pytest.approx(frame.area, rel=1e-12)
    bounds = chart.graticule(30, 1e-3).bounds
    assert bounds == pytest.approx((-1, -1, 1, 1), abs=0.02)
    with pytest.raises(ValueError):
        chart.graticule(0.0)
    with pytest.raises(ValueError):
        chart.frame(-1.0)
    with pytest.raises(ValueError):
        kzgis.Chart("globe").frame()
