"""Polygons and lines as people have them, and as flat arrays."""

from __future__ import annotations

from typing import Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from . import _kzgis
from ._errors import PolygonError

Doubles = npt.NDArray[np.float64]
Ints = npt.NDArray[np.int32]
GeoInterface = Dict[str, Any]

# NumPy's masked arrays have no types yet.
masked: Any = np.ma

# The library refuses more; asked here, before anything is copied.
MOST_VALUES = 2**28


class Flat(NamedTuple):
    """Rings end to end."""

    points: Doubles
    starts: Ints


def floats(values: Any, name: str) -> Any:
    """An array of numbers, not copied when it is one; masked values become NaN."""
    if isinstance(values, np.ma.MaskedArray):
        _refuse_copy(values, name)
        return masked.filled(masked.asarray(values, np.float64), np.nan)
    array = np.asarray(values)
    if array.dtype.kind in "biuf":
        return array
    if array.dtype.kind == "O" or array.size == 0:
        _refuse_copy(array, name)
        try:
            return array.astype(np.float64)
        except (TypeError, ValueError):
            pass
    raise TypeError(f"{name} must hold real numbers, not {array.dtype}")


def _refuse_copy(array: Any, name: str) -> None:
    """A number that is broadcast has any size without memory, and its copy has not."""
    if array.size > 2**30:
        raise ValueError(f"{name}: {array.size} values are more than 2^30")


def refuse_too_many(values: int) -> None:
    if values > MOST_VALUES:
        raise ValueError(f"{values} values are more than 2^28, the most that a call takes")


def points_of(values: Any, name: str = "a ring", *, spatial: bool = False) -> Any:
    """An array of the shape (n, 2), not converted to doubles yet."""
    array = floats(values, name)
    if array.size == 0 and array.ndim <= 2:
        return np.empty((0, 2))
    if array.ndim == 2 and (array.shape[1] == 2 or (spatial and array.shape[1] > 2)):
        return array[:, :2]
    raise ValueError(f"{name} must have the shape (n, 2), not {array.shape}")


def join(rings: Sequence[Any]) -> Flat:
    """Rings of (n, 2) end to end."""
    sizes = [len(ring) for ring in rings]
    refuse_too_many(2 * sum(sizes))
    starts = np.zeros(len(rings), dtype=np.int32)
    if rings:
        starts[1:] = np.cumsum(sizes[:-1])
        points = np.concatenate([np.asarray(ring, dtype=np.float64) for ring in rings])
    else:
        points = np.empty((0, 2))
    return Flat(np.ascontiguousarray(points, dtype=np.float64), starts)


def starts_of(values: Any) -> Ints:
    array = np.asarray(values)
    if array.size == 0:
        return np.zeros(0, dtype=np.int32)
    if array.ndim != 1 or array.dtype.kind not in "iu":
        raise TypeError("starts must be a sequence of whole numbers")
    if int(array.min()) < 0 or int(array.max()) >= 2**31:
        raise ValueError("starts must lie within the points")
    return np.ascontiguousarray(array, dtype=np.int32)


_POLYGONS = ("Polygon", "MultiPolygon", "LinearRing")
_LINES = ("LineString", "MultiLineString", "LinearRing")


def _geo_rings(geo: Mapping[str, Any], kinds: Tuple[str, ...]) -> Iterator[Any]:
    kind = geo.get("type")
    if kind == "Feature":
        if geo.get("geometry") is not None:
            yield from _geo_rings(_geo_of(geo["geometry"]) or {}, kinds)
    elif kind == "FeatureCollection":
        for feature in geo.get("features", ()):
            yield from _geo_rings(_geo_of(feature) or {}, kinds)
    elif kind == "GeometryCollection":
        for geometry in geo.get("geometries", ()):
            yield from _geo_rings(_geo_of(geometry) or {}, kinds)
    elif kind not in kinds:
        raise ValueError(f"a geometry of the type {kind} is none of {', '.join(kinds)}")
    else:
        if "coordinates" not in geo:
            raise ValueError(f"a {kind} without coordinates")
        coordinates = geo["coordinates"]
        nested = {"MultiPolygon": 2, "Polygon": 1, "MultiLineString": 1}.get(str(kind), 0)
        if nested == 2:
            coordinates = [ring for polygon in coordinates for ring in polygon]
        for ring in coordinates if nested else [coordinates]:
            yield points_of(ring, "a ring", spatial=True)


def _geo_of(thing: Any) -> Optional[Mapping[str, Any]]:
    if isinstance(thing, Mapping):
        return thing if "type" in thing else None
    geo = getattr(thing, "__geo_interface__", None)
    return geo if isinstance(geo, Mapping) else None


def _rings(thing: Any, kinds: Tuple[str, ...]) -> List[Any]:
    own = getattr(thing, "_flat", None)
    if isinstance(own, Flat):
        return split(own.points, own.starts)
    geo = _geo_of(thing)
    if geo is not None:
        return list(_geo_rings(geo, kinds))
    if isinstance(thing, np.ndarray):
        return [points_of(ring) for ring in thing] if thing.ndim == 3 else [points_of(thing)]
    if isinstance(thing, (str, bytes, Mapping)) or not hasattr(thing, "__iter__"):
        raise TypeError(f"a {type(thing).__name__} is no polygon")
    items = list(thing)
    if not items:
        return []
    first = items[0]
    if _geo_of(first) is None and not hasattr(first, "_flat") and np.ndim(_peek(first)) == 0:
        return [points_of(items)]  # one ring, as a sequence of pairs
    rings: List[Any] = []
    for item in items:
        if _geo_of(item) is not None or hasattr(item, "_flat"):
            rings += _rings(item, kinds)
        else:
            rings.append(points_of(item))
    return rings


def _peek(item: Any) -> Any:
    """The first thing in an item: a number in a point, a point in a ring."""
    try:
        return item[0]
    except IndexError:
        return ()  # an empty ring
    except (TypeError, KeyError):
        return 0.0


def flatten(thing: Any, starts: Any = None, *, lines: bool = False) -> Flat:
    """Any polygon, or lines, as flat arrays.

    Raises
    ------
    TypeError, ValueError
        What is no sequence of rings; `PolygonError` names the ring.
    """
    if starts is not None:
        array = points_of(thing, "points")
        refuse_too_many(array.size)
        return Flat(np.ascontiguousarray(array, dtype=np.float64), starts_of(starts))
    own = getattr(thing, "_flat", None)
    if isinstance(own, Flat):
        return own
    return join(_rings(thing, _LINES if lines else _POLYGONS))


def split(points: Doubles, starts: Any) -> List[Doubles]:
    """Each ring as a view."""
    return np.split(points, starts[1:]) if len(starts) else []


def signed_area(ring: Doubles) -> float:
    """Counter-clockwise rings have a positive one."""
    if len(ring) < 3:
        return 0.0
    x, y = (ring - ring[0]).T
    return float(0.5 * (np.dot(x[:-1], y[1:]) - np.dot(x[1:], y[:-1])))


def _closed(ring: Doubles, clockwise: bool) -> Doubles:
    if len(ring) and not np.array_equal(ring[0], ring[-1]):
        ring = np.concatenate([ring, ring[:1]])
    return ring[::-1] if (signed_area(ring) < 0) != clockwise else ring


def polygons_of(points: Doubles, starts: Ints) -> List[List[Doubles]]:
    """Shells, each with its holes behind it, closed and turned as GeoJSON (RFC 7946) asks.

    Rings that are no polygon are taken as shapefiles mean them: clockwise ones are shells, and
    the others holes in the last of these.
    """
    rings = split(points, starts)
    polygons: List[List[Doubles]] = []
    try:
        parents, depths = _kzgis.nest(points, starts)
    except PolygonError:
        for ring in rings:
            hole = bool(polygons) and signed_area(_closed(ring, True)) != signed_area(ring) != 0.0
            if hole:
                polygons[-1].append(_closed(ring, True))
            else:
                polygons.append([_closed(ring, False)])
        return polygons
    shells: Dict[int, List[Doubles]] = {}
    for number in np.flatnonzero(depths % 2 == 1):
        shells[int(number)] = [_closed(rings[number], False)]
        polygons.append(shells[int(number)])
    for number in np.flatnonzero((depths > 0) & (depths % 2 == 0)):
        shells[int(parents[number])].append(_closed(rings[number], True))
    return polygons


def polygon_geometry(points: Doubles, starts: Ints) -> GeoInterface:
    """A Polygon or MultiPolygon of GeoJSON."""
    polygons = [tuple(pairs(ring) for ring in polygon) for polygon in polygons_of(points, starts)]
    if len(polygons) == 1:
        return {"type": "Polygon", "coordinates": polygons[0]}
    return {"type": "MultiPolygon", "coordinates": polygons}


def line_geometry(points: Doubles, starts: Ints) -> GeoInterface:
    """A LineString or MultiLineString of GeoJSON."""
    lines = [pairs(line) for line in split(points, starts)]
    if len(lines) == 1:
        return {"type": "LineString", "coordinates": lines[0]}
    return {"type": "MultiLineString", "coordinates": lines}


def pairs(points: Doubles) -> Tuple[Tuple[float, float], ...]:
    return tuple(zip(points[:, 0].tolist(), points[:, 1].tolist()))


def bounds_of(points: Doubles) -> Optional[Tuple[float, float, float, float]]:
    """(min_x, min_y, max_x, max_y)"""
    if not len(points):
        return None
    low, high = points.min(axis=0), points.max(axis=0)
    return float(low[0]), float(low[1]), float(high[0]), float(high[1])


Polygon = Union[Doubles, Sequence[Any], Mapping[str, Any], Any]
