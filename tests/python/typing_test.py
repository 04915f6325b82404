"""Types, stubs and the examples in the documentation."""
import doctest
import importlib
import pathlib
import pkgutil
import subprocess
import sys

import pytest

import kzgis

PACKAGE = pathlib.Path(kzgis.__file__).parent


def test_the_package_is_typed_strictly(tmp_path):
    pytest.importorskip("mypy")
    run = subprocess.run(
        [sys.executable, "-m", "mypy", "--strict", "--cache-dir", str(tmp_path), str(PACKAGE)],
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    assert run.returncode == 0, run.stdout
    # The stub of the extension against the extension, all but its metaclass.
    allowed = tmp_path / "allowed"
    classes = ("Chart", "ElevationGrid", "LatLon", "MeshOptions", "Shapefile")
    allowed.write_text("".join(f"kzgis._kzgis.{name}\n" for name in classes))
    run = subprocess.run(
        [sys.executable, "-m", "mypy.stubtest", "--allowlist", str(allowed), "kzgis._kzgis"],
        stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, cwd=tmp_path)
    assert run.returncode == 0, run.stdout


def _modules():
    for module in pkgutil.iter_modules([str(PACKAGE)]):
        if module.name not in ("_kzgis", "plot", "distributed"):
            yield importlib.import_module("kzgis." + module.name)


def test_every_example_is_right(data):
    tried = 0
    for module in _modules():
        result = doctest.testmod(module, extraglobs={"data": data})
        assert result.failed == 0
        tried += result.attempted
    finder = doctest.DocTestFinder()
    runner = doctest.DocTestRunner()
    for test in finder.find(kzgis.LatLon, "LatLon", globs={}):
        assert runner.run(test).failed == 0
    assert tried > 60


@pytest.mark.parametrize("name", kzgis.__all__)
def test_everything_public_is_documented(name):
    thing = getattr(kzgis, name)
    assert thing.__doc__ and len(thing.__doc__) > 20
    for member in vars(thing) if isinstance(thing, type) else ():
        value = getattr(thing, member)
        if not member.startswith("_") and (callable(value) or isinstance(value, property)):
            assert value.__doc__ or member in thing.__doc__, f"{name}.{member}"
