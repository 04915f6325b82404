"""Polygons as triangles, what lies in what, and what is wrong with them."""

from __future__ import annotations

import json
import os
import tempfile
from typing import Any, Dict, Iterable, List, Mapping, Optional, Sequence, Tuple

import numpy as np
import numpy.typing as npt

from . import _dbf, _kzgis
from ._errors import PolygonError, exception_of, no_such_name, polygon_error
from ._geometry import Doubles, Flat, Ints, Polygon, flatten
from ._outline import Outline
from ._shapefile import PathLike

Triangles = npt.NDArray[np.uint32]
Offsets = npt.NDArray[np.int64]


def angles_of(vertices: Doubles, triangles: Triangles) -> Doubles:
    """The three angles of each triangle in degrees, at its corners in their order."""
    corners = vertices[triangles]
    ahead = np.roll(corners, -1, axis=1) - corners
    back = np.roll(corners, 1, axis=1) - corners
    cross = ahead[..., 0] * back[..., 1] - ahead[..., 1] * back[..., 0]
    dot = np.sum(ahead * back, axis=2)
    angles: Doubles = np.degrees(np.arctan2(np.abs(cross), dot))
    return angles


def area_of(vertices: Doubles, triangles: Triangles) -> float:
    a, b, c = (vertices[triangles[:, i]] for i in range(3))
    u, v = b - a, c - a
    return float(0.5 * np.sum(u[:, 0] * v[:, 1] - u[:, 1] * v[:, 0]))


def write_file(path: PathLike, content: bytes) -> None:
    """Writes a file whole or not at all."""
    name = os.fsdecode(path)
    folder = os.path.dirname(name) or "."
    try:
        handle, part = tempfile.mkstemp(prefix=".kzgis.part", dir=folder)
    except OSError as error:
        raise type(error)(error.errno, error.strerror, name) from None
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(content)
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(part, 0o666 & ~mask)
        os.replace(part, name)
    except BaseException:
        os.unlink(part)
        raise


def format_of(path: PathLike, format: Optional[str]) -> str:
    """The name of a mesh format, by default what stands behind the file's last dot."""
    name = format or os.path.splitext(os.fsdecode(path))[1][1:]
    known: List[str] = _kzgis.mesh_formats()
    if name.lower() not in known:
        raise no_such_name(name, "format of mesh files", known)
    return name.lower()


def _attributes_text(values: Optional[Mapping[str, Any]]) -> str:
    plain = {k: v.item() if isinstance(v, np.generic) else v for k, v in (values or {}).items()}
    # JSON has no NaN and no infinity.
    for key, value in plain.items():
        if isinstance(value, float) and not np.isfinite(value):
            plain[key] = None
    return json.dumps(_dbf.json_of(plain), allow_nan=False)


class Mesh:
    """Triangles that tile a polygon.

    Attributes
    ----------
    vertices : ndarray, shape (n, 2), float64
        The polygon's own in their order, then the new ones.
    triangles : ndarray, shape (m, 3), uint32
        Vertex numbers, counter-clockwise.
    crossings : int
        How many new vertices, the first ones, were put where sides cross.
    small_corners : int
        How many triangles have an angle below the least one asked for.
    """

    __slots__ = ("vertices", "triangles", "crossings", "small_corners", "_own")

    def __init__(
        self,
        vertices: Doubles,
        triangles: Triangles,
        own: Optional[int] = None,
        crossings: int = 0,
        small_corners: int = 0,
    ):
        self.vertices = vertices
        self.triangles = triangles
        self.crossings = crossings
        self.small_corners = small_corners
        self._own = len(vertices) if own is None else own

    @property
    def new_vertices(self) -> Doubles:
        """Those that are not the polygon's own: a view of shape (k, 2)."""
        return self.vertices[self._own :]

    @property
    def area(self) -> float:
        """In the square of the unit of the vertices."""
        return area_of(self.vertices, self.triangles)

    def angles(self) -> Doubles:
        """The angles of each triangle at its corners, in degrees: shape (m, 3).

        Examples
        --------
        >>> import kzgis
        >>> kzgis.triangulate([(0, 0), (1, 0), (0, 1)]).angles()
        array([[45., 45., 90.]])
        """
        return angles_of(self.vertices, self.triangles)

    def save(
        self,
        path: PathLike,
        format: Optional[str] = None,
        attributes: Optional[Mapping[str, Any]] = None,
    ) -> None:
        """Write a mesh file: .glb, .stl, .ply, .obj, .geojson, .svg or .png.

        Parameters
        ----------
        path : path-like
            The file appears whole or not at all.
        format : str, optional
            By default what stands behind the last dot of the path.
        attributes : mapping, optional
            Kept by .glb and .geojson.

        Raises
        ------
        OSError
            The file cannot be written.
        ValueError
            No format has the name.
        """
        part = (0, self.vertices, self.triangles, _attributes_text(attributes))
        write_file(path, _kzgis.mesh_file(format_of(path, format), [part], False))

    def __len__(self) -> int:
        return len(self.triangles)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Mesh):
            return NotImplemented
        return np.array_equal(self.vertices, other.vertices) and np.array_equal(
            self.triangles, other.triangles
        )

    __hash__ = None  # type: ignore[assignment]

    def __reduce__(self) -> Tuple[Any, ...]:
        return Mesh, (
            self.vertices,
            self.triangles,
            self._own,
            self.crossings,
            self.small_corners,
        )

    def __repr__(self) -> str:
        new = len(self.new_vertices)
        return (
            f"<Mesh: {len(self.triangles)} triangles, {len(self.vertices)} vertices"
            + (f", {new} new" if new else "")
            + ">"
        )


class Meshes(Sequence[Mesh]):
    """The meshes of many polygons in flat arrays: one vertex buffer, one index buffer.

    A sequence of `Mesh`, one for each record, empty for those that were refused; each is a copy
    with triangles that number its own vertices.

    Attributes
    ----------
    vertices : ndarray, shape (n, 2), float64
    vertex_offsets : ndarray, shape (r + 1,), int64
        Vertices of record i are ``vertices[vertex_offsets[i]:vertex_offsets[i + 1]]``.
    triangles : ndarray, shape (m, 3), uint32
        They number the vertices of all records.
    triangle_offsets : ndarray, shape (r + 1,), int64
    errors : dict of int to PolygonError
        By the record's place.
    """

    __slots__ = ("vertices", "vertex_offsets", "triangles", "triangle_offsets", "errors")

    def __init__(
        self,
        vertices: Doubles,
        vertex_offsets: Offsets,
        triangles: Triangles,
        triangle_offsets: Offsets,
        errors: Optional[Dict[int, PolygonError]] = None,
    ):
        self.vertices = vertices
        self.vertex_offsets = vertex_offsets
        self.triangles = triangles
        self.triangle_offsets = triangle_offsets
        self.errors = errors or {}

    def __len__(self) -> int:
        return len(self.vertex_offsets) - 1

    def __getitem__(self, index: Any) -> Any:
        if isinstance(index, slice):
            return [self[i] for i in range(*index.indices(len(self)))]
        if index < 0:
            index += len(self)
        if not 0 <= index < len(self):
            raise IndexError(f"mesh {index} of {len(self)}")
        first, end = self.vertex_offsets[index], self.vertex_offsets[index + 1]
        rows = slice(self.triangle_offsets[index], self.triangle_offsets[index + 1])
        local = self.triangles[rows] - np.uint32(first)
        return Mesh(self.vertices[first:end].copy(), local)

    @property
    def area(self) -> float:
        """Of all of them."""
        return area_of(self.vertices, self.triangles)

    def angles(self) -> Doubles:
        """As those of a mesh: shape (m, 3), degrees."""
        return angles_of(self.vertices, self.triangles)

    def save(
        self,
        path: PathLike,
        format: Optional[str] = None,
        attributes: Optional[Iterable[Mapping[str, Any]]] = None,
    ) -> None:
        """Write one mesh file with a part for each record that has triangles; see `Mesh.save`.

        Parameters
        ----------
        attributes : iterable of mappings, optional
            One for each record.
        """
        chosen = format_of(path, format)
        texts = [_attributes_text(each) for each in attributes or ()]
        parts = []
        for i, mesh in enumerate(self):
            if len(mesh):
                text = texts[i] if i < len(texts) else "{}"
                parts.append((i + 1, mesh.vertices, mesh.triangles, text))
        write_file(path, _kzgis.mesh_file(chosen, parts, False))

    def __reduce__(self) -> Tuple[Any, ...]:
        return Meshes, (
            self.vertices,
            self.vertex_offsets,
            self.triangles,
            self.triangle_offsets,
            self.errors,
        )

    def __repr__(self) -> str:
        return (
            f"<Meshes: {len(self)} records, {len(self.triangles)} triangles, "
            f"{len(self.errors)} refused>"
        )


def _options(
    delaunay: bool,
    split_crossings: bool,
    longest_side: Optional[float],
    least_angle: float,
    most_triangles: int,
) -> _kzgis.MeshOptions:
    longest = np.inf if longest_side is None else float(longest_side)
    return _kzgis.MeshOptions(
        bool(delaunay), bool(split_crossings), longest, float(least_angle), int(most_triangles)
    )


def triangulate(
    polygon: Polygon,
    starts: Optional[npt.ArrayLike] = None,
    *,
    delaunay: bool = True,
    split_crossings: bool = False,
    longest_side: Optional[float] = None,
    least_angle: float = 0.0,
    most_triangles: int = 100_000_000,
) -> Mesh:
    """Cut a polygon into triangles that tile it exactly.

    Inside is what an odd number of rings lies around: holes and islands need no marking.  Rings
    run either way, repeat their first vertex or not, touch each other, come in any order.

    Parameters
    ----------
    polygon : polygon
        A sequence of (n, 2) arrays, one array, a record of a shapefile, or anything with
        ``__geo_interface__``: shapely's polygons, rows of geopandas, dicts of GeoJSON.
    starts : array_like of int, optional
        Where each ring begins in one (n, 2) array.
    delaunay : bool, optional
        The fattest triangles without new vertices; else those of the sweep, which take less time.
    split_crossings : bool, optional
        Put vertices where sides cross instead of refusing.
    longest_side : float, optional
        Put vertices until no side is longer.
    least_angle : float, optional
        Put vertices until no angle is smaller, in degrees from 0 to 25, but for the polygon's own
        sharp corners.
    most_triangles : int, optional
        What would need more is refused.

    Returns
    -------
    Mesh
        Proved to tile the polygon before it is handed out.

    Raises
    ------
    PolygonError
        Sides cross, rings overlap, a coordinate is out of range.
    ValueError, TypeError
        Options out of range; what is no polygon.

    Examples
    --------
    >>> import kzgis
    >>> square = [(0, 0), (4, 0), (4, 4), (0, 4)]
    >>> hole = [(1, 1), (2, 1), (2, 2)]
    >>> mesh = kzgis.triangulate([square, hole])
    >>> mesh
    <Mesh: 7 triangles, 7 vertices>
    >>> mesh.area
    15.5
    """
    options = _options(delaunay, split_crossings, longest_side, least_angle, most_triangles)
    flat = flatten(polygon, starts)
    vertices, triangles, crossings, small = _kzgis.triangulate(flat.points, flat.starts, options)
    return Mesh(vertices, triangles, len(flat.points), crossings, small)


def triangulate_many(
    records: Iterable[Polygon],
    *,
    jobs: Optional[int] = None,
    errors: str = "raise",
    delaunay: bool = True,
    split_crossings: bool = False,
    longest_side: Optional[float] = None,
    least_angle: float = 0.0,
    most_triangles: int = 100_000_000,
) -> Meshes:
    """Triangulate many polygons in threads of their own.

    Parameters
    ----------
    records : iterable of polygons
        Such as an open `Shapefile`; each as for `triangulate`.
    jobs : int, optional
        How many threads; as many as this process may use processors.
    errors : {'raise', 'collect'}
        What to do about records that are no polygon: raise the first one's error, which then has
        its place as ``.record``, or keep all in `Meshes.errors`.
    delaunay, split_crossings, longest_side, least_angle, most_triangles
        As for `triangulate`, for each record.

    Returns
    -------
    Meshes
        In the order of the records, whatever the threads do: flat arrays with offsets.

    Examples
    --------
    >>> import kzgis
    >>> with kzgis.Shapefile(f"{data}/ne/ne_110m_countries.shp") as file:
    ...     meshes = kzgis.triangulate_many(file, errors="collect")
    >>> meshes
    <Meshes: 177 records, 9713 triangles, 1 refused>
    >>> meshes.errors
    {139: PolygonError('ring 0 crosses itself (sides from vertices 48 and 46)', 0, 48)}
    """
    if errors not in ("raise", "collect"):
        raise no_such_name(errors, "way with errors", ("raise", "collect"))
    if jobs is None:
        jobs = len(os.sched_getaffinity(0)) if hasattr(os, "sched_getaffinity") else os.cpu_count()
    if jobs is None or jobs < 1:
        raise ValueError(f"jobs must be 1 or more, not {jobs}")
    options = _options(delaunay, split_crossings, longest_side, least_angle, most_triangles)
    flats = [flatten(record) for record in records]
    layer = join_records(flats)
    vertices, vertex_offsets, triangles, triangle_offsets, flaws = _kzgis.triangulate_many(
        *layer, options, int(jobs)
    )
    refused: Dict[int, PolygonError] = {}
    for record, kind, reason, ring, vertex in flaws:
        error = exception_of(kind, reason, True, ring, vertex, "")
        if errors == "raise" or not isinstance(error, PolygonError):
            error.record = record  # type: ignore[attr-defined]
            raise error
        refused[record] = error
    return Meshes(vertices, vertex_offsets, triangles, triangle_offsets, refused)


def join_records(flats: List[Flat]) -> Tuple[Doubles, Offsets, Offsets, Offsets]:
    """Points, where rings begin in them, where records begin in both."""
    points = np.zeros(len(flats) + 1, dtype=np.int64)
    rings = np.zeros(len(flats) + 1, dtype=np.int64)
    np.cumsum([len(flat.points) for flat in flats], out=points[1:])
    np.cumsum([len(flat.starts) for flat in flats], out=rings[1:])
    if not flats:
        return np.empty((0, 2)), np.zeros(0, dtype=np.int64), points, rings
    starts = np.concatenate([flat.starts + first for flat, first in zip(flats, points)])
    whole = np.concatenate([flat.points for flat in flats])
    return whole, starts.astype(np.int64), points, rings


def nest(polygon: Polygon, starts: Optional[npt.ArrayLike] = None) -> Tuple[Ints, Ints]:
    """Find which ring lies in which.

    Parameters
    ----------
    polygon, starts
        As for `triangulate`.

    Returns
    -------
    parents : ndarray, shape (r,), int32
        Of each ring the smallest one around it; -1 outermost.
    depths : ndarray, shape (r,), int32
        1 outermost, 2 a hole in one of those, 3 an island in it; 0 without an inside.

    Raises
    ------
    PolygonError
        As `triangulate`.

    Examples
    --------
    >>> import kzgis
    >>> square = [(0, 0), (4, 0), (4, 4), (0, 4)]
    >>> kzgis.nest([square, [(1, 1), (2, 1), (2, 2)]])
    (array([-1,  0], dtype=int32), array([1, 2], dtype=int32))
    """
    flat = flatten(polygon, starts)
    parents, depths = _kzgis.nest(flat.points, flat.starts)
    return parents, depths


def make_valid(polygon: Polygon, starts: Optional[npt.ArrayLike] = None) -> Outline:
    """The same region, bounded by rings that are simple and meet in vertices only.

    Parameters
    ----------
    polygon, starts
        As for `triangulate`; rings may cross, overlap, repeat each other.

    Returns
    -------
    Outline

    Raises
    ------
    PolygonError
        A coordinate is out of range.

    Examples
    --------
    >>> import kzgis
    >>> kzgis.make_valid([(0, 0), (2, 2), (2, 0), (0, 2)])
    <Outline: 2 rings, 6 vertices>
    """
    flat = flatten(polygon, starts)
    return Outline(*_kzgis.make_valid(flat.points, flat.starts))


def find_flaws(
    polygon: Polygon, starts: Optional[npt.ArrayLike] = None, most: int = 100
) -> List[PolygonError]:
    """All that `triangulate` refuses a polygon for, not the first alone.

    Parameters
    ----------
    polygon, starts
        As for `triangulate`.
    most : int, optional
        How many are looked for.

    Returns
    -------
    list of PolygonError
        Not raised.

    Examples
    --------
    >>> import kzgis
    >>> kzgis.find_flaws([(0, 0), (1, 1), (1, 0), (0, 1)])[0].vertex
    0
    """
    flat = flatten(polygon, starts)
    found = _kzgis.find_flaws(flat.points, flat.starts, int(most))
    return [polygon_error(*flaw) for flaw in found]
