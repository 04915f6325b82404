"""Many workers, one of which dies: what comes is what one process alone gets."""
import doctest
import os
import pathlib
import shutil
import signal
import time

import numpy as np
import pytest

pytest.importorskip("distributed")
import dask  # noqa: E402
import distributed  # noqa: E402

import kzgis  # noqa: E402
import kzgis.distributed as kd  # noqa: E402


@pytest.fixture(scope="module")
def cluster(tmp_path_factory):
    dask.config.set({"distributed.comm.timeouts.connect": "60s"})
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                  dashboard_address=":0", silence_logs=50,
                                  local_directory=str(tmp_path_factory.mktemp("dask"))) as cluster:
        with distributed.Client(cluster) as client:
            yield client


def same(mine, theirs):
    assert len(mine) == len(theirs)
    for (i, a), (j, b) in zip(mine, theirs):
        assert i == j and type(a) is type(b)
        if isinstance(a, Exception):
            assert (a.reason, a.ring, a.vertex) == (b.reason, b.ring, b.vertex)
        else:
            assert a == b


def _behind(part, gate):
    """The same part, when there is a gate."""
    end = time.monotonic() + 60
    while not os.path.exists(gate) and time.monotonic() < end:
        time.sleep(0.01)
    return part


def test_ranges_follow_each_other_by_bytes(data):
    for name in ("ne_110m_countries", "ne_50m_land", "ne_110m_rivers"):
        path = data / "ne" / f"{name}.shp"
        with kzgis.Shapefile(path) as file:
            sizes = [8 + 44 + 4 * len(r.parts) + r.points.nbytes for r in file]
        for task_bytes in (1, 10_000, 100_000, 10**12):
            ranges = kd.cut(path, task_bytes)
            assert [r.first for r in ranges] == [0] + [r.end for r in ranges[:-1]]
            assert ranges[-1].end == len(sizes) and all(r.first < r.end for r in ranges)
            for r in ranges:
                assert sum(sizes[r.first : r.end]) <= 1.1 * task_bytes + 2 * max(sizes)
        assert len(ranges) == 1
    with pytest.raises(ValueError):
        kd.cut(path, 0)


def test_a_file_without_index_is_cut_by_number(data, tmp_path):
    shutil.copy(data / "ne" / "ne_110m_countries.shp", tmp_path / "c.shp")
    ranges = kd.cut(tmp_path / "c.shp", 20_000)
    assert len(ranges) > 5 and ranges[-1].end == 177
    assert kd.triangulate(tmp_path / "c.shp", task_bytes=20_000).count().compute(
        scheduler="synchronous") == 177


def test_nothing_is_read_before_it_is_computed(data, tmp_path):
    for ending in ("shp", "shx"):
        shutil.copy(data / "ne" / f"ne_110m_land.{ending}", tmp_path / f"land.{ending}")
    bag = kd.triangulate(tmp_path / "land.shp", task_bytes=5000)
    assert bag.npartitions > 5
    (tmp_path / "land.shp").unlink()
    with pytest.raises(FileNotFoundError) as told:
        bag.compute(scheduler="synchronous")
    assert told.value.filename == str(tmp_path / "land.shp")


def test_a_worker_that_dies_changes_nothing(cluster, data, tmp_path):
    path = data / "ne" / "ne_110m_countries.shp"
    bag = kd.triangulate(path, task_bytes=8000, longest_side=4.0)
    alone = bag.compute(scheduler="synchronous")
    with kzgis.Shapefile(path) as file:
        for (index, result), record in zip(alone, file):
            if index != 139:
                assert result == kzgis.triangulate(record, longest_side=4.0)
        assert isinstance(alone[139][1], kzgis.PolygonError)
    # The second half waits, under way, for the gate, which opens when a worker is dead, and what
    # it had of the first half with it.
    parts = bag.to_delayed()
    gate, half = str(tmp_path / "gate"), len(parts) // 2
    assert half > 5
    futures = cluster.compute(parts[:half])
    distributed.wait(futures, timeout=60)
    futures += cluster.compute([dask.delayed(_behind)(part, gate) for part in parts[half:]])
    workers = cluster.run(os.getpid)
    assert len(workers) == 2
    victim = next(iter(workers.values()))
    os.kill(victim, signal.SIGKILL)
    pathlib.Path(gate).touch()
    same([result for part in cluster.gather(futures) for result in part], alone)
    assert victim not in cluster.run(os.getpid).values()


def test_areas_are_those_of_one_process(cluster, data):
    chart = kzgis.Chart("albers", base=(48, 15))
    bag = kd.project_area(data / "ne" / "ne_50m_land.shp", chart, 1000.0, task_bytes=300_000)
    results = bag.compute()
    with kzgis.Shapefile(data / "ne" / "ne_50m_land.shp") as file:
        assert [i for i, _ in results] == list(range(len(file)))
        for (_, outline), record in zip(results[::50], file[::50]):
            assert outline == chart.project_area(record, 1000.0)


def test_a_file_that_a_worker_has_not_is_named(cluster, tmp_path, data):
    for ending in ("shp", "shx"):
        shutil.copy(data / "ne" / f"ne_110m_land.{ending}", tmp_path / f"land.{ending}")
    bag = kd.triangulate(tmp_path / "land.shp", task_bytes=20_000)
    (tmp_path / "land.shp").unlink()
    with pytest.raises(FileNotFoundError, match="land.shp") as told:
        bag.compute()
    assert told.value.filename.endswith("land.shp") and " on " in told.value.strerror
    with pytest.raises(FileNotFoundError, match="none.dem"):
        kd.relief([tmp_path / "none.dem"]).compute()


def test_reliefs_and_data_banks(data, tmp_path):
    crater = data / "dem" / "st_helens_crater.dem"
    lights = kd.relief([crater, crater], azimuth=300).compute(scheduler="threads")
    expected = kzgis.read_dem(crater).hillshade(300)
    assert len(lights) == 2 and all(np.array_equal(x, expected, equal_nan=True) for x in lights)
    bank = tmp_path / "bank"
    import subprocess

    subprocess.run([os.environ["KZGIS_COMMAND"], "pack", str(data / "wdb" / "bdy.shp"), str(bank)],
                   check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    segments = kd.databank(bank, levels=(1, 2)).compute(scheduler="synchronous")
    whole = kzgis.read_databank(bank, levels=(1, 2))
    assert len(segments) == len(whole) > 50
    for a, b in zip(segments, whole):
        assert a[:3] == b[:3] and np.array_equal(a.arcsec, b.arcsec)


def test_what_is_wrong_is_told_before_work_begins(data):
    path = data / "ne" / "ne_110m_land.shp"
    with pytest.raises(ValueError):
        kd.triangulate(path, least_angle=90)
    with pytest.raises(TypeError):
        kd.triangulate(path, delaunai=True)
    with pytest.raises(ValueError):
        kd.project_area(path, kzgis.Chart("globe"))
    with pytest.raises(FileNotFoundError):
        kd.triangulate(path.with_name("none.shp"))
    with pytest.raises(ValueError):
        kd.databank(data, theme="costal")
    assert kd.relief([]).compute(scheduler="synchronous") == []


def test_examples_are_right(data):
    assert doctest.testmod(kd, extraglobs={"data": data}).failed == 0
