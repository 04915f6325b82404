"""Polygons and lines that the library made."""

from __future__ import annotations

from typing import Any, List, Optional, Tuple

import numpy as np

from ._geometry import (
    Doubles,
    Flat,
    GeoInterface,
    Ints,
    bounds_of,
    line_geometry,
    polygon_geometry,
    polygons_of,
    split,
)


class _Pieces:
    """Rings or lines end to end; what both can do."""

    __slots__ = ("points", "starts")

    def __init__(self, points: Doubles, starts: Ints):
        self.points = points
        self.starts = starts

    @property
    def _flat(self) -> Flat:
        return Flat(self.points, self.starts)

    @property
    def bounds(self) -> Optional[Tuple[float, float, float, float]]:
        """(min_x, min_y, max_x, max_y), or None without points."""
        return bounds_of(self.points)

    def __len__(self) -> int:
        return len(self.starts)

    def __eq__(self, other: object) -> bool:
        if type(other) is not type(self):
            return NotImplemented
        assert isinstance(other, _Pieces)
        return np.array_equal(self.points, other.points) and np.array_equal(
            self.starts, other.starts
        )

    __hash__ = None  # type: ignore[assignment]

    def __reduce__(self) -> Tuple[Any, ...]:
        return type(self), (self.points, self.starts)


class Outline(_Pieces):
    """A polygon: rings that are simple and meet in vertices only.

    Boundaries run counter-clockwise, holes clockwise; no ring repeats its first vertex at its
    end.  The length is the number of rings.

    Attributes
    ----------
    points : ndarray, shape (n, 2), float64
        The vertices of all rings.
    starts : ndarray, shape (r,), int32
        Where each ring begins.

    Examples
    --------
    >>> import kzgis
    >>> bow = kzgis.make_valid([(0, 0), (2, 2), (2, 0), (0, 2)])
    >>> bow
    <Outline: 2 rings, 6 vertices>
    >>> bow.area
    2.0
    >>> bow.__geo_interface__["type"]
    'MultiPolygon'
    """

    __slots__ = ()

    @property
    def rings(self) -> List[Doubles]:
        """Each ring as a view of shape (k, 2)."""
        return split(self.points, self.starts)

    @property
    def area(self) -> float:
        """In the square of the unit of the points."""
        if not len(self.points):
            return 0.0
        # From each vertex to the one behind it, the last of a ring to its first.
        end = np.arange(1, len(self.points) + 1)
        lasts = np.append(self.starts[1:], len(self.points)) - 1
        filled = lasts >= self.starts
        end[lasts[filled]] = self.starts[filled]
        x, y = (self.points - self.points[0]).T
        return float(0.5 * np.sum(x * y[end] - x[end] * y))

    @property
    def __geo_interface__(self) -> GeoInterface:
        return polygon_geometry(self.points, self.starts)

    def to_shapely(self) -> Any:
        """The same as a polygon or multi-polygon of shapely."""
        from shapely.geometry import MultiPolygon, Polygon  # type: ignore[import]

        polygons = [Polygon(p[0], p[1:]) for p in polygons_of(self.points, self.starts)]
        return polygons[0] if len(polygons) == 1 else MultiPolygon(polygons)

    def __repr__(self) -> str:
        return f"<Outline: {len(self)} rings, {len(self.points)} vertices>"


class Lines(_Pieces):
    """Lines; the length is their number.

    Attributes
    ----------
    points : ndarray, shape (n, 2), float64
        The vertices of all lines.
    starts : ndarray, shape (r,), int32
        Where each line begins.
    """

    __slots__ = ()

    @property
    def lines(self) -> List[Doubles]:
        """Each line as a view of shape (k, 2)."""
        return split(self.points, self.starts)

    @property
    def __geo_interface__(self) -> GeoInterface:
        return line_geometry(self.points, self.starts)

    def to_shapely(self) -> Any:
        """The same as a multi-line-string of shapely."""
        from shapely.geometry import MultiLineString

        return MultiLineString(self.lines)

    def __repr__(self) -> str:
        return f"<Lines: {len(self)} lines, {len(self.points)} vertices>"
