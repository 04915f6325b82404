"""The module as `cmake --install` gives it, in a tree that was moved."""
import os
import pathlib
import subprocess
import sys

import kzgis


def test_an_installed_module_works_wherever_it_is_moved(tmp_path):
    build = pathlib.Path(kzgis.__file__).parents[2]
    subprocess.run(["cmake", "--install", str(build), "--prefix", str(tmp_path / "first")],
                   check=True, stdout=subprocess.DEVNULL)
    (tmp_path / "first").rename(tmp_path / "moved")
    (package,) = (tmp_path / "moved").rglob("kzgis/__init__.py")
    assert package.relative_to(tmp_path / "moved").parts[0] == "lib"
    # As for a package of Debian: where the host's Python looks below its own prefix.
    folders = [pathlib.Path(folder).name for folder in sys.path]
    assert package.parents[1].name in folders
    for name in ("py.typed", "_kzgis.pyi", "plot.py"):
        assert package.with_name(name).exists()
    # Of the build tree nothing is needed any more.
    environment = {k: v for k, v in os.environ.items() if k != "LD_LIBRARY_PATH"}
    environment["PYTHONPATH"] = str(package.parents[1])
    code = "import kzgis; print(kzgis.__file__); print(kzgis.triangulate([(0,0),(1,0),(0,1)]).area)"
    run = subprocess.run([sys.executable, "-c", code], env=environment, check=True, cwd=tmp_path,
                         stdout=subprocess.PIPE, text=True)
    assert run.stdout.splitlines() == [str(package), "0.5"]
    (extension,) = package.parent.glob("_kzgis*.so")
    needed = subprocess.run(["ldd", str(extension)], env=environment, check=True,
                            stdout=subprocess.PIPE, text=True).stdout
    if "libkzgis" in needed:
        assert str(tmp_path / "moved" / "lib") in needed
