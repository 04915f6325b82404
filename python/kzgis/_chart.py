"""Projections of the sphere."""

from __future__ import annotations

from typing import Any, Dict, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _kzgis
from ._errors import no_such_name
from ._geometry import Polygon, flatten, floats
from ._outline import Lines, Outline

Coordinates = npt.ArrayLike
Box = Tuple[float, float, float, float]

# Results of a call stay below 8 GB each: 2^31 values out of a broadcast number are a mistake more
# often than a wish, and the host ends a process that takes more than there is.
MOST_POINTS = 2**30


def projections() -> Tuple[str, ...]:
    """The names of the fifteen projections.

    Examples
    --------
    >>> import kzgis
    >>> kzgis.projections()[:3]
    ('cartesian', 'mercator', 'lambert cylindrical')
    """
    return tuple(_kzgis.projection_names())


def _pair(values: Any, name: str) -> Tuple[float, float]:
    array = floats(values, name)
    if array.shape != (2,):
        raise ValueError(f"{name} must be two numbers, not {values!r}")
    return float(array[0]), float(array[1])


class Chart:
    """A projection of the sphere with its parameters.

    World coordinates: x runs to the east and y to the north of the base point, in the unit of the
    radius; y of Mercator counts from the equator, and the globe's x, y, z from its centre.  Any
    number of threads may use a chart at once.

    Parameters
    ----------
    projection : str
        One of `projections()`; case, blanks, hyphens and underscores do not count.
    base : (lat, lon), optional
        The middle of the map in degrees; (0, 0), and (45, 0) for Bonne's.
    parallels : float or (float, float), optional
        Standard parallels in degrees.  The two conics have 20 and 60 by themselves (-20 and -60
        with a base in the south), Mercator the equator.
    radius : float, optional
        Of the globe, above 0, in any unit.
    reach : float, optional
        How far from the base outlines and frame of an azimuthal map or the globe reach, in
        degrees.
    window : (south, west, north, east), optional
        What outlines and frame of the other maps show, in degrees; longitudes count from the base.

    Raises
    ------
    ValueError
        A parameter is out of range, or no projection has the name.

    Examples
    --------
    >>> import kzgis
    >>> chart = kzgis.Chart("mercator", base=(0, 10))
    >>> chart
    Chart('mercator', base=(0.0, 10.0), radius=6378000.0)
    >>> x, y = chart.project(48.2, [10, 16.37])
    >>> x.round(3)
    array([     0.   , 709089.925])
    >>> lat, lon = chart.unproject(x, y)
    >>> lon.round(9)
    array([10.  , 16.37])
    """

    __slots__ = ("_chart", "_given")

    def __init__(
        self,
        projection: str,
        base: Optional[Sequence[float]] = None,
        parallels: Union[float, Sequence[float], None] = None,
        radius: float = 6378000.0,
        reach: Optional[float] = None,
        window: Optional[Sequence[float]] = None,
    ):
        name = _kzgis.canonical_name(str(projection))
        if name is None:
            raise no_such_name(projection, "projection", projections())
        middle = (45.0 if name == "bonne" else 0.0, 0.0) if base is None else _pair(base, "base")
        first = second = None
        if parallels is not None:
            if np.ndim(parallels) == 0:
                first = float(parallels)  # type: ignore[arg-type]
            else:
                first, second = _pair(parallels, "parallels")
        shown = None
        if window is not None:
            array = floats(window, "window")
            if array.shape != (4,):
                raise ValueError(f"window must be south, west, north, east, not {window!r}")
            shown = (float(array[0]), float(array[1]), float(array[2]), float(array[3]))
        far = None if reach is None else float(reach)
        self._chart = _kzgis.Chart(name, *middle, first, second, float(radius), far, shown)
        self._given: Tuple[Any, ...] = (
            name,
            middle,
            None if first is None else first if second is None else (first, second),
            float(radius),
            far,
            shown,
        )

    @property
    def projection(self) -> str:
        """The projection's name."""
        name: str = self._given[0]
        return name

    @property
    def base(self) -> Tuple[float, float]:
        """(lat, lon) of the middle of the map, in degrees."""
        base: Tuple[float, float] = self._given[1]
        return base

    @property
    def parallels(self) -> Tuple[Optional[float], Optional[float]]:
        """Standard parallels in degrees, as the map uses them."""
        first, second, _, _ = self._chart.settings()
        return first, second

    @property
    def radius(self) -> float:
        """Of the globe."""
        radius: float = self._given[3]
        return radius

    @property
    def reach(self) -> Optional[float]:
        """How far outlines reach, in degrees; None for maps with a window."""
        return self._chart.settings()[2]

    @property
    def window(self) -> Optional[Box]:
        """(south, west, north, east) of what outlines show; None for maps with a reach."""
        return self._chart.settings()[3]

    @property
    def tolerance(self) -> float:
        """The usual one of outlines: a 2,000th of the radius, 3 km on the Earth."""
        return self.radius / 2000.0

    def project(
        self,
        lat: Coordinates,
        lon: Coordinates,
        alt: Optional[Coordinates] = None,
        *,
        fast: bool = False,
    ) -> Any:
        """Project points to world coordinates.

        Parameters
        ----------
        lat, lon : array_like
            Degrees, broadcast against each other; masked values count as NaN.
        alt : array_like, optional
            Altitudes in the unit of the radius; 0 on the globe by themselves.
        fast : bool, optional
            Let the processor round a product and a sum together: a fifth to a third less time, and
            less than a micrometre from the exact coordinates on the Earth, away from where the
            projection stretches without end.

        Returns
        -------
        x, y : float or ndarray of float64
            In the unit of the radius, of the broadcast shape; floats when all were scalars.  NaN
            where there is no place on the map.
        z : float or ndarray of float64
            With `alt`, and on the globe: the altitude; on the globe the distance north of the
            equator's plane.

        Raises
        ------
        ValueError
            Shapes do not broadcast, or there are more than 2^30 points.
        TypeError
            What are no real numbers.

        Examples
        --------
        >>> import kzgis
        >>> kzgis.Chart("orthographic", base=(0, 0), radius=1).project(0, [90, 180])
        (array([ 1., nan]), array([ 0., nan]))
        """
        if alt is None and self.projection == "globe":
            alt = 0.0
        if alt is None:
            return self._convert(self._chart.project, fast, lat=lat, lon=lon)
        return self._convert(self._chart.project_with_altitude, fast, lat=lat, lon=lon, alt=alt)

    def unproject(
        self,
        x: Coordinates,
        y: Coordinates,
        z: Optional[Coordinates] = None,
        *,
        fast: bool = False,
    ) -> Any:
        """Find the points of the globe that world coordinates belong to.

        Parameters
        ----------
        x, y : array_like
            In the unit of the radius, broadcast against each other.
        z : array_like, optional
            Altitudes; the globe needs its own z.
        fast : bool, optional
            As for `project`.

        Returns
        -------
        lat, lon : float or ndarray of float64
            Degrees, -90 to 90 and [-180, 180); NaN outside of the map.
        alt : float or ndarray of float64
            With `z`.

        Raises
        ------
        ValueError
            Shapes do not broadcast, there are more than 2^30 points, or the globe has no z.
        TypeError
            What are no real numbers.

        Examples
        --------
        >>> import kzgis
        >>> lat, lon = kzgis.Chart("postel", base=(90, 0)).unproject(0, -1113171)
        >>> round(lat, 3), round(lon, 3)
        (80.0, 0.0)
        """
        if z is None:
            if self.projection == "globe":
                raise ValueError("the globe is not flat: unproject needs z")
            return self._convert(self._chart.unproject, fast, x=x, y=y)
        return self._convert(self._chart.unproject_with_altitude, fast, x=x, y=y, z=z)

    @staticmethod
    def _convert(convert: Any, fast: bool, **coordinates: Any) -> Any:
        arrays = [floats(values, name) for name, values in coordinates.items()]
        shape = np.broadcast_shapes(*(array.shape for array in arrays))
        points = 1
        for length in shape:
            points *= length
        if points > MOST_POINTS:
            raise ValueError(f"{points} points are more than 2^30, the most that a call takes")
        wide = [np.broadcast_to(array, shape) for array in arrays]
        rows = [np.ascontiguousarray(array, dtype=np.float64) for array in wide]
        results = convert(*rows, bool(fast))
        # NumPy makes a row of a scalar that it is asked to make contiguous.
        if not shape:
            return tuple(float(result.item()) for result in results)
        return results

    def project_area(self, polygon: Polygon, tolerance: Optional[float] = None) -> Outline:
        """Draw a polygon on the map: cut where the map ends, bent as the projection bends it.

        Parameters
        ----------
        polygon : polygon
            In degrees, x the longitude and y the latitude; see `triangulate` for what it may be.
            Inside is what an odd number of rings lies around, whatever the rings do.
        tolerance : float, optional
            How far a curve may be from its chords, in the unit of the radius; a 2,000th of it.

        Returns
        -------
        Outline
            Valid, and empty where nothing of it is on the map.

        Raises
        ------
        PolygonError
            A coordinate is not finite.
        ValueError
            The globe, which is no plane; a tolerance that is none.

        Examples
        --------
        >>> import kzgis
        >>> chart = kzgis.Chart("orthographic", radius=1)
        >>> chart.project_area([(60, -30), (120, -30), (120, 30), (60, 30)], 0.001)
        <Outline: 1 rings, 110 vertices>
        """
        flat = flatten(polygon)
        return Outline(*self._chart.project_area(flat.points, flat.starts, self._far(tolerance)))

    def project_lines(self, lines: Polygon, tolerance: Optional[float] = None) -> Lines:
        """Draw lines on the map; what `project_area` says of polygons holds for them.

        Parameters
        ----------
        lines : lines
            A sequence of (n, 2) arrays, one array, or anything with ``__geo_interface__``.
        tolerance : float, optional
            As for `project_area`.

        Returns
        -------
        Lines
            The pieces on the map, in their order and direction.

        Raises
        ------
        PolygonError, ValueError
            As `project_area`.

        Examples
        --------
        >>> import kzgis
        >>> kzgis.Chart("mercator").project_lines([(170, 0), (190, 10)])
        <Lines: 2 lines, 4 vertices>
        """
        flat = flatten(lines, lines=True)
        return Lines(*self._chart.project_lines(flat.points, flat.starts, self._far(tolerance)))

    def frame(self, tolerance: Optional[float] = None) -> Outline:
        """The edge of the map.

        Examples
        --------
        >>> import kzgis
        >>> round(kzgis.Chart("orthographic", radius=1).frame(1e-6).area, 4)
        3.1416
        """
        return Outline(*self._chart.frame(self._far(tolerance)))

    def graticule(self, step: float = 15.0, tolerance: Optional[float] = None) -> Lines:
        """Meridians and parallels, at multiples of a step in degrees, from 1/60 to 90.

        Examples
        --------
        >>> import kzgis
        >>> len(kzgis.Chart("mercator").graticule(45))
        11
        """
        return Lines(*self._chart.graticule(float(step), self._far(tolerance)))

    def _far(self, tolerance: Optional[float]) -> float:
        return self.tolerance if tolerance is None else float(tolerance)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Chart):
            return NotImplemented
        return self._given == other._given

    def __hash__(self) -> int:
        return hash(self._given)

    def __reduce__(self) -> Tuple[Any, ...]:
        return Chart, self._given

    def __repr__(self) -> str:
        name, base, parallels, radius, reach, window = self._given
        settings: Dict[str, Any] = {"base": base, "parallels": parallels, "radius": radius}
        settings.update(reach=reach, window=window)
        text = ", ".join(f"{key}={value!r}" for key, value in settings.items() if value is not None)
        return f"Chart({name!r}, {text})"
