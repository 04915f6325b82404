"""The services on many machines, with Dask.

A shapefile is cut into ranges of records of about the same bytes, a data bank into its files, and
elevation models are one to a task.  What comes is an ordinary, lazily built `dask.bag.Bag` in the
order of the records: nothing is read before it is computed, by whatever scheduler.  Each worker
opens the file itself, which must stand under the same name on all of them: a shared file system.
"""

from __future__ import annotations

import importlib
import os
import socket
from typing import Any, Callable, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np

from ._chart import Chart
from ._databank import CONTINENTS, THEMES, Segment, _numbers_of, read_databank
from ._elevation import read_dem
from ._errors import DataError, PolygonError
from ._mesh import Mesh, triangulate as _triangulate
from ._outline import Outline
from ._shapefile import PathLike, Shapefile, ShapeRecord

Bag = Any  # Dask has no types before 2023

# What a worker triangulates in some tenths of a second, a thousand times what a task costs.
TASK_BYTES = 4 << 20


class Range(NamedTuple):
    """Records of a shapefile, from `first` to before `end`, counted from 0."""

    path: str
    first: int
    end: int


def cut(path: PathLike, task_bytes: int = TASK_BYTES) -> List[Range]:
    """Cut a shapefile into ranges of records.

    Parameters
    ----------
    path : path-like
    task_bytes : int, optional
        About how many bytes of the file a range has; a record is never cut.

    Returns
    -------
    list of Range
        That follow each other and together are all records.  Lengths are those of the index; by
        number alone where there is none.

    Examples
    --------
    >>> import kzgis.distributed
    >>> ranges = kzgis.distributed.cut(f"{data}/ne/ne_110m_countries.shp", 100_000)
    >>> [(r.first, r.end) for r in ranges]
    [(0, 75), (75, 177)]
    """
    if task_bytes < 1:
        raise ValueError(f"task_bytes must be 1 or more, not {task_bytes}")
    with Shapefile(path) as file:
        name, records = os.path.abspath(file.path), len(file)
    if not records:
        return []
    ends = np.cumsum(_lengths_of(name, records))
    tasks = min(records, -(-int(ends[-1]) // task_bytes))
    wanted = ends[-1] * np.arange(1, tasks) / tasks
    places = np.unique(np.concatenate([[0], np.searchsorted(ends, wanted), [records]]))
    return [Range(name, int(a), int(b)) for a, b in zip(places[:-1], places[1:])]


def _lengths_of(path: str, records: int) -> "np.ndarray[Any, np.dtype[np.int64]]":
    """The bytes of each record, as the index claims: a wrong claim makes a range larger."""
    stem = os.path.splitext(path)[0]
    for name in (stem + ".shx", stem + ".SHX"):
        try:
            entries = np.fromfile(name, dtype=">i4", offset=100)
        except (OSError, ValueError):
            continue
        if len(entries) >= 2 * records:
            words = entries[1 : 2 * records : 2].astype(np.int64)
            return np.clip(2 * words + 8, 8, 1 << 40)
    each = max(1, os.path.getsize(path) // records)
    return np.full(records, each, dtype=np.int64)


Result = Tuple[int, Any]


def _here(error: OSError) -> OSError:
    """The same error, which says on which machine."""
    return type(error)(error.errno, f"{error.strerror} on {socket.gethostname()}", error.filename)


def _of_range(part: Range, use: Callable[[ShapeRecord], Any]) -> List[Result]:
    """(index, what came or was wrong) for each record."""
    results: List[Result] = []
    try:
        file = Shapefile(part.path)
    except OSError as error:
        raise _here(error) from None
    with file:
        for index in range(part.first, part.end):
            try:
                results.append((index, use(file[index])))
            except (PolygonError, DataError) as error:
                results.append((index, error))
    return results


class _Triangulate:
    def __init__(self, options: Any):
        self.options = options

    def __call__(self, record: ShapeRecord) -> Mesh:
        return _triangulate(record, **self.options)


class _ProjectArea:
    def __init__(self, chart: Chart, tolerance: Optional[float]):
        self.chart = chart
        self.tolerance = tolerance

    def __call__(self, record: ShapeRecord) -> Outline:
        return self.chart.project_area(record, self.tolerance)


def _bag(parts: Sequence[Any], work: Callable[..., Any], *arguments: Any) -> Bag:
    bags: Any = importlib.import_module("dask.bag")
    if not parts:
        return bags.from_sequence([], npartitions=1)
    task = importlib.import_module("dask").delayed(work, pure=False)
    return bags.from_delayed([task(part, *arguments) for part in parts])


def triangulate(path: PathLike, *, task_bytes: int = TASK_BYTES, **options: Any) -> Bag:
    """Triangulate the records of a shapefile.

    Parameters
    ----------
    path : path-like
        Under the same name on all workers.
    task_bytes : int, optional
        About how many bytes of the file a task has.
    **options
        Those of `kzgis.triangulate`.

    Returns
    -------
    dask.bag.Bag of (int, Mesh or PolygonError or DataError)
        For each record its index and what came, in their order.

    Raises
    ------
    OSError, DataError
        The file cannot be opened here, to be cut; on a worker, when it is computed, with its name.

    Examples
    --------
    >>> import kzgis.distributed
    >>> bag = kzgis.distributed.triangulate(f"{data}/ne/ne_110m_countries.shp")
    >>> results = bag.compute(scheduler="synchronous")
    >>> results[0], results[139][1].ring
    ((0, <Mesh: 66 triangles, 69 vertices>), 0)
    """
    _triangulate([], **options)  # a wrong option is told here
    return _bag(cut(path, task_bytes), _of_range, _Triangulate(options))


def project_area(
    path: PathLike,
    chart: Chart,
    tolerance: Optional[float] = None,
    *,
    task_bytes: int = TASK_BYTES,
) -> Bag:
    """Draw the polygons of a shapefile on a map.

    Parameters
    ----------
    path, task_bytes
        As for `triangulate`.
    chart, tolerance
        As for `Chart.project_area`.

    Returns
    -------
    dask.bag.Bag of (int, Outline or PolygonError or DataError)
        For each record its index and what came, in their order.

    Examples
    --------
    >>> import kzgis.distributed
    >>> chart = kzgis.Chart("albers", base=(48, 15))
    >>> bag = kzgis.distributed.project_area(f"{data}/ne/ne_110m_countries.shp", chart)
    >>> bag.count().compute(scheduler="synchronous")
    177
    """
    chart.frame(tolerance)  # a chart or a tolerance that cannot be is told here
    return _bag(cut(path, task_bytes), _of_range, _ProjectArea(chart, tolerance))


def _relief(path: str, azimuth: float, altitude: float) -> List[Any]:
    try:
        return [read_dem(path).hillshade(azimuth, altitude)]
    except OSError as error:
        raise _here(error) from None


def relief(paths: Sequence[PathLike], azimuth: float = 315.0, altitude: float = 45.0) -> Bag:
    """Shade elevation models, a quadrangle to a task.

    Parameters
    ----------
    paths : sequence of path-like
    azimuth, altitude : float, optional
        As for `ElevationGrid.hillshade`.

    Returns
    -------
    dask.bag.Bag of ndarray, shape (rows, columns), float32
        In the order of the paths.

    Examples
    --------
    >>> import kzgis.distributed
    >>> bag = kzgis.distributed.relief([f"{data}/dem/st_helens_crater.dem"])
    >>> bag.compute(scheduler="synchronous")[0].shape
    (40, 40)
    """
    names = [os.path.abspath(os.fsdecode(path)) for path in paths]
    return _bag(names, _relief, float(azimuth), float(altitude))


def _segments(place: Tuple[str, str], directory: str, levels: Any, box: Any) -> List[Segment]:
    continent, theme = place
    try:
        return list(read_databank(directory, theme, levels, box, continent))
    except OSError as error:
        raise _here(error) from None


def databank(
    directory: PathLike,
    theme: Union[str, Sequence[str], None] = None,
    levels: Union[int, Sequence[int], None] = None,
    box: Optional[Sequence[float]] = None,
    continent: Union[str, Sequence[str], None] = None,
) -> Bag:
    """Read the outlines of a data bank, a file to a task.

    Parameters
    ----------
    directory, theme, levels, box, continent
        As for `kzgis.read_databank`.

    Returns
    -------
    dask.bag.Bag of Segment
        In the order in which `kzgis.read_databank` has them.
    """
    themes = _numbers_of(theme, "theme", THEMES) or range(len(THEMES))
    continents = _numbers_of(continent, "continent", CONTINENTS) or range(len(CONTINENTS))
    places = [
        (CONTINENTS[c], THEMES[t]) for c in sorted(set(continents)) for t in sorted(set(themes))
    ]
    return _bag(places, _segments, os.path.abspath(os.fsdecode(directory)), levels, box)
