"""The examples and what the documents show, run as they stand."""
import os
import re
import subprocess
import sys

import pytest
from conftest import DATA, SOURCE

EXAMPLES = SOURCE / "examples" / "python"
COUNTRIES = str(DATA / "ne" / "ne_110m_countries.shp")

CASES = {
    "1_points.py": ([], "Vienna lies 708312 m east .*8 without a place.*degrees: True"),
    "2_records.py": ([COUNTRIES], "177 records.*Russia +16\\.9.*Antarctica.*Canada +9\\.9"),
    "3_polygons.py": ([], "depths \\[3 1 2\\].*refused: .*5 crossings.*area 0\\.7757"),
    "4_meshes.py": ([COUNTRIES], "record 140 \\(Sudan\\).*9713 triangles, 1 refused"),
    "5_relief.py": (
        [str(DATA / "dem" / "st_helens.dem.gz"), "a.png", "a.stl"],
        "468 rows, 327 columns.*7193 triangles are nowhere more than 20",
    ),
    "6_chain.py": ([COUNTRIES, "a.glb"], "record 140 is repaired.*0 refused.*11\\.6\\d million"),
}


def test_there_are_no_others():
    names = {path.name for path in EXAMPLES.glob("*.py")}
    assert names == set(CASES)
    for path in EXAMPLES.glob("*.py"):
        assert len(path.read_text().splitlines()) <= 40


@pytest.mark.parametrize("name", sorted(CASES))
def test_an_example_runs(name, tmp_path):
    arguments, expected = CASES[name]
    if name == "5_relief.py":
        pytest.importorskip("matplotlib")
    run = subprocess.run([sys.executable, str(EXAMPLES / name), *arguments], cwd=tmp_path,
                         stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
    assert run.returncode == 0, run.stderr
    assert re.search(expected, run.stdout, re.DOTALL), run.stdout
    for argument in arguments:
        if argument.startswith("a."):
            assert (tmp_path / argument).stat().st_size > 10_000
    if "a.glb" in arguments:
        content = (tmp_path / "a.glb").read_bytes()
        assert content[:4] == b"glTF" and b'"NAME":"Iceland"' in content.replace(b'": "', b'":"')


def test_the_readmes_lines_run(tmp_path, monkeypatch):
    (block,) = re.findall(r"^```python\n(.*?)^```", (SOURCE / "README.md").read_text(),
                          re.DOTALL | re.MULTILINE)
    for ending in ("shp", "shx"):
        os.symlink(DATA / "ne" / f"ne_110m_countries.{ending}", tmp_path / f"countries.{ending}")
    monkeypatch.chdir(tmp_path)
    exec(compile(block, "README.md", "exec"), {})
    assert (tmp_path / "countries.glb").read_bytes()[:4] == b"glTF"


@pytest.mark.parametrize("name", ["python.md", "distributed.md"])
def test_what_a_document_shows_runs(name, tmp_path, monkeypatch):
    pytest.importorskip("matplotlib" if name == "python.md" else "dask")
    blocks = re.findall(r"^```python\n(.*?)^```", (SOURCE / "docs" / name).read_text(),
                        re.DOTALL | re.MULTILINE)
    assert blocks
    os.symlink(DATA, tmp_path / "data")
    monkeypatch.chdir(tmp_path)
    names = {}
    for block in blocks:
        exec(compile(block, name, "exec"), names)
    # What a comment says that an expression is.
    said = re.findall(r"^(record\S+)\s+# ('.*')$", "".join(blocks), re.MULTILINE)
    assert len(said) == (2 if name == "python.md" else 0)
    for expression, value in said:
        assert repr(eval(expression, names)) == value
