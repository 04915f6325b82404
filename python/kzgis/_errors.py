"""The exceptions, and names that are nearly right."""

from __future__ import annotations

import difflib
import errno
import os
from typing import Iterable, Optional


class PolygonError(ValueError):
    """What was given is no polygon: sides cross, rings overlap, a coordinate is out of range.

    Attributes
    ----------
    reason : str
        One sentence.
    ring : int or None
        The ring it is about, counted from 0; None where the flaw has no place.
    vertex : int or None
        The vertex, counted from 0 through all rings, as in ``Mesh.vertices``.

    Examples
    --------
    >>> import kzgis
    >>> try:
    ...     kzgis.triangulate([(0, 0), (1, 1), (1, 0), (0, 1)])
    ... except kzgis.PolygonError as error:
    ...     print(error.ring, error.vertex, error.reason)
    0 0 ring 0 crosses itself (sides from vertices 0 and 2)
    """

    def __init__(self, reason: str, ring: Optional[int] = None, vertex: Optional[int] = None):
        super().__init__(reason, ring, vertex)
        self.reason = reason
        self.ring = ring
        self.vertex = vertex

    def __str__(self) -> str:
        return self.reason


class DataError(ValueError):
    """A file, or a record of one, is damaged or not what it should be.

    Attributes
    ----------
    reason : str
        One sentence.
    filename : str
        As it was given; empty for what is in no file.
    """

    def __init__(self, reason: str, filename: str = ""):
        super().__init__(reason, filename)
        self.reason = reason
        self.filename = filename

    def __str__(self) -> str:
        return self.reason if self.filename in self.reason else f"{self.filename}: {self.reason}"


def _os_error(reason: str, path: str) -> OSError:
    """The error of the host, by asking it again; what the library says where it has none."""
    for name in (path, path + ".shp"):
        try:
            if os.path.isdir(name):
                return IsADirectoryError(errno.EISDIR, os.strerror(errno.EISDIR), path)
            with open(name, "rb"):
                return OSError(errno.EIO, reason, path)
        except OSError as error:
            failure = error
            if error.errno != errno.ENOENT:
                break
    return type(failure)(failure.errno, failure.strerror, path)


# The numbers of the library's ErrorKind.
_CANNOT_READ, _CANNOT_WRITE, _BAD_DATA, _UNPROVED, _OUT_OF_MEMORY = 2, 3, 4, 5, 6


def exception_of(
    kind: int, reason: str, of_polygon: bool, ring: int, vertex: int, path: str
) -> Exception:
    """The exception that an error of the library is, not raised yet."""
    if kind in (_CANNOT_READ, _CANNOT_WRITE):
        return _os_error(reason, path)
    if kind == _OUT_OF_MEMORY:
        return MemoryError(reason)
    if kind == _UNPROVED:
        return RuntimeError(reason)
    if kind != _BAD_DATA:
        return ValueError(reason)
    if of_polygon:
        return polygon_error(reason, ring, vertex)
    return DataError(reason, path)


def polygon_error(reason: str, ring: int, vertex: int) -> PolygonError:
    """With None in the place of the library's -1."""
    return PolygonError(reason, ring if ring >= 0 else None, vertex if vertex >= 0 else None)


def no_such_name(name: object, what: str, known: Iterable[str]) -> ValueError:
    """An error that says what was meant, perhaps."""
    names = {n.lower(): n for n in known}
    said = str(name).lower()
    # What was begun rightly is nearer than what differs in the fewest letters.
    near = [n for n in names if len(said) > 2 and n.startswith(said)]
    near = near or difflib.get_close_matches(said, list(names), 1, 0.5)
    if near:
        return ValueError(f"{name!r} is no {what}; is {names[near[0]]!r} meant?")
    return ValueError(f"{name!r} is no {what}; there are {', '.join(names.values())}")
