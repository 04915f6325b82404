"""Outlines of the world in World DataBank II files (.cbd)."""

from __future__ import annotations

from typing import Any, Dict, Iterable, List, NamedTuple, Optional, Sequence, Tuple, Union

import numpy as np

from . import _kzgis
from ._errors import no_such_name
from ._geometry import Doubles, GeoInterface, Ints, line_geometry
from ._shapefile import PathLike, encoded

# As the command has them, by the library's numbers.
THEMES = ("geographic", "political", "coastal", "river")
CONTINENTS = ("africa", "asia", "europe", "north america", "south america")


class Segment(NamedTuple):
    """A piece of outline.

    Attributes
    ----------
    continent, theme : str
    level : int
        Its rank, 0 to 15.
    arcsec : ndarray, shape (n, 2), int32
        Latitude, longitude in whole arc-seconds, the longitude from 0 to 1295999: a view.
    """

    continent: str
    theme: str
    level: int
    arcsec: Ints

    @property
    def points(self) -> Doubles:
        """Longitude in [-180, 180), latitude in degrees: shape (n, 2), float64."""
        lat, lon = self.arcsec[:, 0], self.arcsec[:, 1].astype(np.int64)
        return np.column_stack([((lon + 648000) % 1296000 - 648000) / 3600.0, lat / 3600.0])

    @property
    def __geo_interface__(self) -> GeoInterface:
        return line_geometry(self.points, np.zeros(1, dtype=np.int32))

    def __repr__(self) -> str:
        return (
            f"<Segment: {self.theme}, {self.continent}, level {self.level}, "
            f"{len(self.arcsec)} points>"
        )


class Databank(Sequence[Segment]):
    """The segments that a query found, in flat arrays; a sequence of `Segment`.

    Attributes
    ----------
    arcsec : ndarray, shape (n, 2), int32
        Latitude, longitude of all segments, in whole arc-seconds.
    offsets : ndarray, shape (s + 1,), int64
        Points of segment i are ``arcsec[offsets[i]:offsets[i + 1]]``.
    continents, themes, levels : ndarray, shape (s,), int32
        Numbers of `CONTINENTS` and `THEMES`; ranks.
    damaged : dict of str to str
        Files that are not sound, and the first thing that is wrong; sound segments come all the
        same.
    """

    __slots__ = ("arcsec", "offsets", "continents", "themes", "levels", "damaged")

    def __init__(
        self,
        arcsec: Ints,
        offsets: Any,
        continents: Ints,
        themes: Ints,
        levels: Ints,
        damaged: Optional[Dict[str, str]] = None,
    ):
        self.arcsec = arcsec
        self.offsets = offsets
        self.continents = continents
        self.themes = themes
        self.levels = levels
        self.damaged = damaged or {}

    def __len__(self) -> int:
        return len(self.levels)

    def __getitem__(self, index: Any) -> Any:
        if isinstance(index, slice):
            return [self[i] for i in range(*index.indices(len(self)))]
        if index < 0:
            index += len(self)
        if not 0 <= index < len(self):
            raise IndexError(f"segment {index} of {len(self)}")
        return Segment(
            CONTINENTS[self.continents[index]],
            THEMES[self.themes[index]],
            int(self.levels[index]),
            self.arcsec[self.offsets[index] : self.offsets[index + 1]],
        )

    def __reduce__(self) -> Tuple[Any, ...]:
        return Databank, tuple(getattr(self, name) for name in self.__slots__)

    def __repr__(self) -> str:
        return f"<Databank: {len(self)} segments, {len(self.arcsec)} points>"


def _numbers_of(
    wanted: Union[str, Iterable[str], None], what: str, known: Tuple[str, ...]
) -> List[int]:
    numbers = []
    for name in () if wanted is None else (wanted,) if isinstance(wanted, str) else wanted:
        if name not in known:
            raise no_such_name(name, what, known)
        numbers.append(known.index(name))
    return numbers


def read_databank(
    directory: PathLike,
    theme: Union[str, Iterable[str], None] = None,
    levels: Union[int, Iterable[int], None] = None,
    box: Optional[Sequence[float]] = None,
    continent: Union[str, Iterable[str], None] = None,
) -> Databank:
    """Read outlines from the data bank in a directory.

    Parameters
    ----------
    directory : path-like
    theme : str or iterable of str, optional
        Of 'geographic', 'political', 'coastal', 'river'; all of them.
    levels : int or iterable of int, optional
        0 to 15: (1, 3) are these two, range(1, 4) the three from 1 to 3; all of them.
    box : (south, west, north, east), optional
        In degrees; segments with a point inside come whole.  With west > east it crosses the
        meridian where longitudes begin anew.
    continent : str or iterable of str, optional
        Of 'africa', 'asia', 'europe', 'north america', 'south america'; all of them.

    Returns
    -------
    Databank

    Raises
    ------
    OSError
        There is no data bank.
    ValueError
        A theme, a continent, a level or a box that cannot be.
    """
    themes_wanted = _numbers_of(theme, "theme", THEMES)
    continents_wanted = _numbers_of(continent, "continent", CONTINENTS)
    if levels is None:
        ranks: Tuple[int, ...] = ()
    elif isinstance(levels, (int, np.integer)):
        ranks = (int(levels),)
    else:
        ranks = tuple(int(level) for level in levels)
    edges = None
    if box is not None:
        if np.shape(box) != (4,):
            raise ValueError(f"box must be south, west, north, east, not {box!r}")
        edges = (float(box[0]), float(box[1]), float(box[2]), float(box[3]))
    lat, lon, offsets, continents, themes, found, damaged = _kzgis.read_databank(
        encoded(directory), themes_wanted, continents_wanted, list(ranks), edges
    )
    return Databank(
        np.column_stack([lat, lon]), offsets, continents, themes, found, dict(damaged)
    )
