"""Where things are, and polygons that every test may have."""
import os
import pathlib
import subprocess

import hypothesis
import numpy as np
import pytest

SOURCE = pathlib.Path(os.environ.get("KZGIS_SOURCE", pathlib.Path(__file__).parents[2]))
DATA = SOURCE / "data"

# The machine may be busy: what takes long is no fault.  Examples are the same every time.
hypothesis.settings.register_profile(
    "kzgis", deadline=None, derandomize=True, database=None, max_examples=60
)
hypothesis.settings.load_profile("kzgis")


@pytest.fixture(scope="session")
def data():
    return DATA


@pytest.fixture(scope="session")
def countries():
    import kzgis

    with kzgis.Shapefile(DATA / "ne" / "ne_110m_countries.shp") as file:
        return file[:]


@pytest.fixture(scope="session")
def reference():
    """Arrays that a program in C++ wrote, by name; doubles bit for bit."""
    program = os.environ["KZGIS_PYTHON_REFERENCE"]
    run = subprocess.run([program, str(DATA)], check=True, stdout=subprocess.PIPE, text=True)
    arrays = {}
    for line in run.stdout.splitlines():
        name, *values = line.split(" ")
        if any("x" in value or "n" in value for value in values):
            arrays[name] = np.array([float.fromhex(value) for value in values])
        else:
            arrays[name] = np.array([int(value) for value in values])
    return arrays


@pytest.fixture(scope="session")
def wiggly_ring():
    """A star-shaped ring of many vertices that takes long to triangulate."""

    def make(vertices, seed=1):
        generator = np.random.default_rng(seed)
        angle = np.sort(generator.uniform(0, 2 * np.pi, vertices))
        radius = generator.uniform(0.5, 1.0, vertices)
        return np.column_stack([radius * np.cos(angle), radius * np.sin(angle)])

    return make
