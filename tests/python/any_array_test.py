"""Whatever array comes: a result or an ordinary exception, never the end of the process."""
import random

import numpy as np
import pytest

import kzgis
from kzgis import _kzgis

ROUNDS = 4000


class Arrays:
    """Arrays that nobody means to pass, the same every time."""

    def __init__(self, seed):
        self.choose = random.Random(seed).choice
        self.generator = np.random.default_rng(seed)

    def any(self):
        shape = self.choose([(), (0,), (0, 2), (2, 3), (3, 2), (4, 2), (5, 2), (7,), (2, 2, 2)])
        a = self.generator.uniform(-90, 90, shape)
        return self.choose([
            lambda: a, lambda: a.astype("i2"), lambda: a.astype("f4"), lambda: a.astype(">f8"),
            lambda: a > 0, lambda: np.asfortranarray(a), lambda: a * np.nan, lambda: a * 1e300,
            lambda: a.astype("c16"), lambda: a.astype("S3"), lambda: a.astype(object),
            lambda: np.ma.masked_less(a, 0), lambda: np.broadcast_to(1.5, (2**33, 2)),
            lambda: a[..., ::-1] if a.ndim else a, lambda: np.recarray((3,), dtype=[("x", "f8")]),
        ])()

    def starts(self):
        return self.choose([
            np.array([0]), np.array([0, 2]), np.array([5, -1]), np.array([], int), [2**40], None,
            np.array([0, 3], "u8"), np.array([[0]]), [0, 0, 0], np.array([0.5]), "0", [None],
        ])


@pytest.mark.filterwarnings("ignore")
def test_any_array_gives_a_result_or_an_ordinary_exception(tmp_path):
    arrays = Arrays(11)
    any_, starts = arrays.any, arrays.starts
    charts = [kzgis.Chart(name) for name in kzgis.projections()]
    options = _kzgis.MeshOptions(True, True, np.inf, 0.0, 1000)
    mesh = tmp_path / "mesh.ply"

    def chart():
        return arrays.choose(charts)

    calls = {
        "project": lambda: chart().project(any_(), any_()),
        "project with altitude": lambda: chart().project(any_(), any_(), any_()),
        "unproject": lambda: chart().unproject(any_(), any_(), any_()),
        "project_area": lambda: chart().project_area(any_(), arrays.choose([None, 1e5, -1.0])),
        "project_lines": lambda: chart().project_lines([any_(), any_()], 1e5),
        "triangulate": lambda: kzgis.triangulate(any_(), starts(), split_crossings=True),
        "rings": lambda: kzgis.triangulate([any_(), any_()], least_angle=20, most_triangles=999),
        "many": lambda: kzgis.triangulate_many([any_(), [any_()]], errors="collect", jobs=2),
        "nest": lambda: kzgis.nest([any_(), any_()]),
        "make_valid": lambda: kzgis.make_valid(any_(), starts()),
        "find_flaws": lambda: kzgis.find_flaws([any_()]),
        "save": lambda: kzgis.Mesh(any_(), any_()).save(mesh),
        "hillshade": lambda: kzgis.ElevationGrid(any_(), 0, 0, 1, 1).hillshade(),
        "terrain": lambda: kzgis.ElevationGrid(any_(), 0, 0, 1, 1).triangulate(),
        # The extension itself, without the package's care.
        "_triangulate": lambda: _kzgis.triangulate(any_(), starts(), options),
        "_many": lambda: _kzgis.triangulate_many(any_(), starts(), starts(), starts(), options, 2),
        "_nest": lambda: _kzgis.nest(any_(), starts()),
        "_mesh_file": lambda: _kzgis.mesh_file("stl", [(0, any_(), starts(), "{}")], False),
    }
    worked = set()
    for _ in range(ROUNDS):
        name = arrays.choose(list(calls))
        try:
            calls[name]()
            worked.add(name)
        except (TypeError, ValueError):  # of which PolygonError is one
            pass
    # What fits by chance; offsets and triangles do not.
    assert worked >= set(calls) - {"_many", "_mesh_file"}
