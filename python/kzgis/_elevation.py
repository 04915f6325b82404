"""Elevation grids."""

from __future__ import annotations

from typing import Any, Optional, Tuple

import numpy as np
import numpy.typing as npt

from . import _kzgis
from ._errors import no_such_name
from ._geometry import MOST_VALUES, Doubles, masked
from ._mesh import Triangles, format_of, write_file
from ._shapefile import PathLike, encoded

_PLANS = ("geographic", "utm", "state plane", "other")
_GROUND_UNITS = ("unknown", "degrees", "feet", "metres")
_ELEVATION_UNITS = ("unknown", "feet", "metres")


def _number_of(name: str, what: str, known: Tuple[str, ...]) -> int:
    if name not in known:
        raise no_such_name(name, what, known)
    return known.index(name)


class Terrain:
    """Triangles over an elevation grid.

    Attributes
    ----------
    vertices : ndarray, shape (n, 3), float64
        x, y of the grid and the elevation.
    triangles : ndarray, shape (m, 3), uint32
        Vertex numbers, counter-clockwise seen from above.
    """

    __slots__ = ("vertices", "triangles", "_metres")

    def __init__(
        self,
        vertices: Doubles,
        triangles: Triangles,
        _metres: Tuple[float, float, float] = (1.0, 1.0, 1.0),
    ):
        self.vertices = vertices
        self.triangles = triangles
        self._metres = _metres

    def save(self, path: PathLike, format: Optional[str] = None) -> None:
        """Write a mesh file, as `Mesh.save`, in metres."""
        part = (0, self.vertices * np.array(self._metres), self.triangles, "{}")
        write_file(path, _kzgis.mesh_file(format_of(path, format), [part], True))

    def __len__(self) -> int:
        return len(self.triangles)

    def __reduce__(self) -> Tuple[Any, ...]:
        return Terrain, (self.vertices, self.triangles, self._metres)

    def __repr__(self) -> str:
        return f"<Terrain: {len(self.triangles)} triangles, {len(self.vertices)} vertices>"


class ElevationGrid:
    """Elevations at points, the first one in the north-west.

    `read_dem` makes one of a file; this one of an array.

    Parameters
    ----------
    elevations : array_like, shape (rows, columns)
        Row after row from the north; NaN or masked where there is none.
    west, north : float
        x of the first column, y of the first row.
    step_x, step_y : float
        From a column to the next eastwards, from a row to the next southwards; above 0.
    name : str, optional
    plan : {'other', 'geographic', 'utm', 'state plane'}
        What x and y are.
    zone : int, optional
        Of UTM or State Plane; below 0 in the south.
    ground_unit : {'unknown', 'degrees', 'feet', 'metres'}
        Of x and y.
    elevation_unit : {'unknown', 'feet', 'metres'}

    Attributes
    ----------
    elevations : MaskedArray, shape (rows, columns), float32
        Read-only.

    Examples
    --------
    >>> import kzgis
    >>> grid = kzgis.ElevationGrid([[1, 2], [3, float("nan")]], 10.0, 50.0, 0.5, 0.5)
    >>> grid
    <ElevationGrid: 2 rows, 2 columns, 1.0 to 3.0, 1 empty>
    >>> grid.bounds
    (9.75, 49.25, 10.75, 50.25)
    >>> grid.transform
    (0.5, 0.0, 9.75, 0.0, -0.5, 50.25)
    """

    __slots__ = ("_grid", "_values", "elevations")

    def __init__(
        self,
        elevations: npt.ArrayLike,
        west: float,
        north: float,
        step_x: float,
        step_y: float,
        name: str = "",
        plan: str = "other",
        zone: int = 0,
        ground_unit: str = "unknown",
        elevation_unit: str = "unknown",
    ):
        given: Any = elevations
        if isinstance(given, np.ma.MaskedArray):
            given = masked.filled(masked.asarray(given, np.float32), np.nan)
        array = np.asarray(given)
        if array.dtype.kind not in "biuf":
            raise TypeError(f"elevations must hold real numbers, not {array.dtype}")
        if array.size > MOST_VALUES:
            raise ValueError(f"{array.size} elevations are more than 2^28")
        self._hold(
            _kzgis.ElevationGrid(
                np.ascontiguousarray(array, dtype=np.float32),
                float(west),
                float(north),
                float(step_x),
                float(step_y),
                name.encode("utf-8", "surrogateescape"),
                _number_of(plan, "ground plan", _PLANS),
                int(zone),
                _number_of(ground_unit, "unit of the ground", _GROUND_UNITS),
                _number_of(elevation_unit, "unit of elevations", _ELEVATION_UNITS),
            )
        )

    def _hold(self, grid: _kzgis.ElevationGrid) -> None:
        self._grid = grid
        self._values = grid.elevations()
        shown = masked.masked_invalid(self._values, copy=False)
        shown.set_fill_value(np.nan)
        self.elevations: np.ma.MaskedArray[Any, np.dtype[np.float32]] = shown

    @property
    def name(self) -> str:
        """Of the quadrangle."""
        return self._grid.name

    @property
    def plan(self) -> str:
        """What x and y are."""
        return _PLANS[self._grid.plan]

    @property
    def zone(self) -> int:
        """Of UTM or State Plane."""
        return self._grid.zone

    @property
    def ground_unit(self) -> str:
        """Of x and y."""
        return _GROUND_UNITS[self._grid.ground_unit]

    @property
    def elevation_unit(self) -> str:
        """Of the elevations."""
        return _ELEVATION_UNITS[self._grid.elevation_unit]

    @property
    def shape(self) -> Tuple[int, int]:
        """(rows, columns)"""
        rows, columns = self.elevations.shape
        return int(rows), int(columns)

    @property
    def x(self) -> Doubles:
        """Of the columns: shape (columns,)."""
        return self._grid.west + np.arange(self.shape[1]) * self._grid.step_x

    @property
    def y(self) -> Doubles:
        """Of the rows, from the north: shape (rows,)."""
        return self._grid.north - np.arange(self.shape[0]) * self._grid.step_y

    @property
    def transform(self) -> Tuple[float, float, float, float, float, float]:
        """From column and row of cell corners to x and y, in the order of ``affine.Affine``."""
        g = self._grid
        return (g.step_x, 0.0, g.west - g.step_x / 2, 0.0, -g.step_y, g.north + g.step_y / 2)

    @property
    def bounds(self) -> Tuple[float, float, float, float]:
        """(left, bottom, right, top) of the cells, which reach half a step beyond the points."""
        dx, _, left, _, dy, top = self.transform
        rows, columns = self.shape
        return (left, top + rows * dy, left + columns * dx, top)

    @property
    def aspect(self) -> float:
        """How much longer a unit of y is on the ground than one of x, at the middle."""
        x_m, y_m, _ = self._grid.unit_metres()
        return float(y_m / x_m)

    def hillshade(self, azimuth: float = 315.0, altitude: float = 45.0) -> npt.NDArray[np.float32]:
        """How bright each point lies in the light (B. K. P. Horn, 1981).

        Parameters
        ----------
        azimuth : float, optional
            Where the light comes from, in degrees clockwise from north.
        altitude : float, optional
            Above the horizon, in degrees.

        Returns
        -------
        ndarray, shape (rows, columns), float32
            From 0 in shadow to 1 straight to the sun; NaN where there is no elevation.

        Examples
        --------
        >>> import kzgis
        >>> grid = kzgis.ElevationGrid([[0, 0], [0, 0]], 0, 0, 1, 1)
        >>> grid.hillshade(altitude=90)
        array([[1., 1.],
               [1., 1.]], dtype=float32)
        """
        return self._grid.hillshade(float(azimuth), float(altitude))

    def triangulate(self, tolerance: float = 0.0) -> Terrain:
        """Cover the grid with triangles, nowhere farther than a tolerance above or below it.

        Parameters
        ----------
        tolerance : float, optional
            In the unit of the elevations, >= 0; with 0 every point is a vertex.

        Returns
        -------
        Terrain

        Raises
        ------
        ValueError
            The tolerance is negative or not finite.

        Examples
        --------
        >>> import kzgis, numpy
        >>> kzgis.ElevationGrid(numpy.zeros((9, 9)), 0, 0, 1, 1).triangulate(1)
        <Terrain: 2 triangles, 4 vertices>
        """
        vertices, triangles = self._grid.triangulate(float(tolerance))
        return Terrain(vertices, triangles, self._grid.unit_metres())

    def __reduce__(self) -> Tuple[Any, ...]:
        g = self._grid
        return ElevationGrid, (
            np.array(g.elevations()),
            g.west,
            g.north,
            g.step_x,
            g.step_y,
            g.name,
            self.plan,
            g.zone,
            self.ground_unit,
            self.elevation_unit,
        )

    def __repr__(self) -> str:
        rows, columns = self.shape
        name = f" {self.name!r}" if self.name else ""
        values = self._values[~np.isnan(self._values)]
        span = f"{values.min()} to {values.max()}, " if len(values) else ""
        return (
            f"<ElevationGrid{name}: {rows} rows, {columns} columns, {span}"
            f"{self.elevations.size - len(values)} empty>"
        )


def read_dem(path: PathLike) -> ElevationGrid:
    """Read a USGS DEM, also one that gzip compressed (.gz).

    Parameters
    ----------
    path : path-like

    Returns
    -------
    ElevationGrid

    Raises
    ------
    OSError
        The file is not there or cannot be read.
    DataError
        It is no regular grid, ends early, or is otherwise damaged.

    Examples
    --------
    >>> import kzgis
    >>> grid = kzgis.read_dem(f"{data}/dem/st_helens_crater.dem")
    >>> grid.shape, grid.plan, grid.zone
    ((40, 40), 'utm', 10)
    """
    grid = object.__new__(ElevationGrid)
    grid._hold(_kzgis.read_dem(encoded(path)))
    return grid
