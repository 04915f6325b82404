"""Shapefiles."""

from __future__ import annotations

import operator
import os
import warnings
from typing import (
    Any,
    Callable,
    Dict,
    Iterator,
    List,
    Optional,
    Sequence,
    Tuple,
    Union,
    overload,
)

import numpy as np

from . import _dbf, _kzgis
from ._dbf import Field, Value
from ._errors import DataError, no_such_name
from ._geometry import (
    Doubles,
    Flat,
    GeoInterface,
    Ints,
    line_geometry,
    pairs,
    polygon_geometry,
    split,
)

Box = Tuple[float, float, float, float]
PathLike = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


def encoded(path: PathLike) -> bytes:
    """A path as the host's bytes."""
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("a path holds no null byte")
    return name


class ShapeRecord:
    """A record of a shapefile, on its own: the file may be closed.

    Numbers come as they stand in the file, NaN and infinity included.

    Attributes
    ----------
    number : int
        That the record gives itself: in sound files its index plus 1.
    type : str
        'point', 'polyline', 'polygon', 'multipoint', also 'with z' or 'with m', or 'null shape'.
    box : (min_x, min_y, max_x, max_y)
        As the record claims.
    parts : ndarray, shape (r,), int32
        Where each ring or line begins; empty for points.
    points : ndarray, shape (n, 2), float64
        Copied from the file once.
    z, m : ndarray, shape (n,), float64, or None
        A measure below -1e38 is none.
    deleted : bool
        Whether the table has the record struck out.

    Examples
    --------
    >>> import kzgis
    >>> with kzgis.Shapefile(f"{data}/ne/ne_110m_countries.shp") as file:
    ...     first = file[0]
    >>> first
    <ShapeRecord 1: polygon, 1 parts, 69 points>
    >>> first.attributes["NAME"]
    'Afghanistan'
    >>> first.__geo_interface__["type"]
    'Polygon'
    """

    __slots__ = ("number", "type", "box", "parts", "points", "z", "m", "_row", "_layout")

    def __init__(
        self,
        number: int,
        type: str,
        box: Box,
        parts: Ints,
        points: Doubles,
        z: Optional[Doubles] = None,
        m: Optional[Doubles] = None,
        _row: Optional[bytes] = None,
        _layout: Optional[_dbf.Layout] = None,
    ):
        self.number = number
        self.type = type
        self.box = box
        self.parts = parts
        self.points = points
        self.z = z
        self.m = m
        self._row = _row
        self._layout = _layout

    @property
    def _flat(self) -> Flat:
        if len(self.points) and not self.type.startswith(("poly",)):
            raise ValueError(f"a {self.type} has neither rings nor lines")
        return Flat(self.points, self.parts)

    @property
    def rings(self) -> List[Doubles]:
        """Each part as a view of shape (k, 2)."""
        return split(self.points, self.parts)

    @property
    def attributes(self) -> Dict[str, Value]:
        """What the table says, by field; empty without a table."""
        if self._row is None or self._layout is None:
            return {}
        return self._layout.attributes(self._row)

    @property
    def deleted(self) -> bool:
        return self._row is not None and self._row[:1] == b"*"

    @property
    def __geo_interface__(self) -> GeoInterface:
        kind = self.type.split(" ")[0]
        if kind == "polygon":
            return polygon_geometry(self.points, self.parts)
        if kind == "polyline":
            return line_geometry(self.points, self.parts)
        if kind == "point":
            return {"type": "Point", "coordinates": pairs(self.points)[0]}
        if kind == "multipoint":
            return {"type": "MultiPoint", "coordinates": pairs(self.points)}
        return {"type": "GeometryCollection", "geometries": []}

    def feature(self) -> GeoInterface:
        """A Feature of GeoJSON: the geometry with its attributes as properties."""
        return {
            "type": "Feature",
            "id": self.number,
            "geometry": None if self.type == "null shape" else self.__geo_interface__,
            "properties": _dbf.json_of(self.attributes),
        }

    def __reduce__(self) -> Tuple[Any, ...]:
        return ShapeRecord, (
            self.number,
            self.type,
            self.box,
            self.parts,
            self.points,
            self.z,
            self.m,
            self._row,
            self._layout,
        )

    def __repr__(self) -> str:
        parts = f"{len(self.parts)} parts, " if len(self.parts) else ""
        return f"<ShapeRecord {self.number}: {self.type}, {parts}{len(self.points)} points>"


class Shapefile(Sequence[ShapeRecord]):
    """A shapefile that is open for reading: a sequence of records.

    Nothing in the file is believed; a damaged record is an error when it is read, and costs no
    other.  Any number of threads may read.

    Parameters
    ----------
    path : path-like
        With the extension .shp, .shx or .dbf, or without one.
    encoding : str, optional
        Of the texts in the table; what its .cpg file or its header names, else UTF-8.

    Attributes
    ----------
    path : str
        The name of the file, with its extension.
    type : str
        What the header claims of all records.
    box : (min_x, min_y, max_x, max_y)
        What the header claims to hold all records.
    fields : tuple of Field
        The columns of the table: name, kind, width, decimals.  Empty without a table, and, with a
        warning, for a damaged one.

    Raises
    ------
    OSError
        The file is not there or cannot be read: with errno and name.
    DataError
        It is no shapefile.

    Examples
    --------
    >>> import kzgis
    >>> with kzgis.Shapefile(f"{data}/ne/ne_110m_countries.shp") as file:
    ...     print(file)
    ...     print(file[-1].attributes["NAME"], [record.number for record in file[3:5]])
    <Shapefile ne_110m_countries.shp: 177 records, polygon>
    Zimbabwe [4, 5]
    """

    def __init__(self, path: PathLike, encoding: Optional[str] = None):
        self._file = _kzgis.Shapefile(encoded(path))
        self.path: str = self._file.path()
        self.type: str = _type_name(self._file.type())
        self.box: Box = self._file.box()
        self._size: int = self._file.size()
        self._encoding = encoding
        self._table = self._open_table(encoding)

    def _beside(self, ending: str) -> Optional[str]:
        stem = os.path.splitext(self.path)[0]
        names = (stem + ending, stem + ending.upper())
        return next((name for name in names if os.path.exists(name)), None)

    def _open_table(self, encoding: Optional[str]) -> Optional[_dbf.Table]:
        path = self._beside(".dbf")
        if path is None:
            return None
        try:
            table = _dbf.Table(path, encoding)
            if table.rows == self._size:
                return table
            table.close()
            why = f"{path}: holds {table.rows} rows for {self._size} records"
        except (OSError, DataError) as error:
            why = str(error)
        warnings.warn(why + "; attributes are left out", stacklevel=3)
        return None

    @property
    def fields(self) -> Tuple[Field, ...]:
        return self._table.layout.fields if self._table else ()

    @property
    def crs_wkt(self) -> Optional[str]:
        """The coordinate system, as the .prj file has it, or None without one."""
        path = self._beside(".prj")
        if path is None:
            return None
        with open(path, encoding="utf-8", errors="replace") as file:
            return file.read().strip()

    def column(self, name: str) -> "np.ndarray[Any, np.dtype[Any]]":
        """A field of all records.

        Parameters
        ----------
        name : str
            Of the field.

        Returns
        -------
        ndarray, shape (len(self),)
            float64 for numbers, NaN where there is none; objects for all else.

        Raises
        ------
        ValueError
            No field has the name.

        Examples
        --------
        >>> import kzgis
        >>> with kzgis.Shapefile(f"{data}/ne/ne_110m_countries.shp") as file:
        ...     file.column("NAME")[:2]
        array(['Afghanistan', 'Angola'], dtype=object)
        """
        names = [field.name for field in self.fields]
        if self._table is None or name not in names:
            raise no_such_name(name, "field", names)
        number = names.index(name)
        values = self._table.column(number)
        if self.fields[number].kind in ("int", "float"):
            plain = [v if isinstance(v, (int, float)) else np.nan for v in values]
            return np.array(plain, dtype=np.float64)
        column = np.empty(len(values), dtype=object)
        column[:] = values
        return column

    def _read(self, index: int) -> ShapeRecord:
        number, kind, box, parts, points, z, m = self._file.read(index)
        row = self._table.row(index) if self._table else None
        return ShapeRecord(
            number,
            _type_name(kind),
            box,
            parts,
            points,
            z if len(z) else None,
            m if len(m) else None,
            row,
            self._table.layout if self._table else None,
        )

    def __len__(self) -> int:
        return self._size

    @overload
    def __getitem__(self, index: int) -> ShapeRecord: ...

    @overload
    def __getitem__(self, index: slice) -> List[ShapeRecord]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[ShapeRecord, List[ShapeRecord]]:
        if isinstance(index, slice):
            return [self._read(i) for i in range(*index.indices(self._size))]
        number = operator.index(index)
        if number < 0:
            number += self._size
        if not 0 <= number < self._size:
            raise IndexError(f"record {index} of {self._size}")
        return self._read(number)

    def __iter__(self) -> Iterator[ShapeRecord]:
        return (self._read(index) for index in range(self._size))

    def sound(
        self, on_damage: Optional[Callable[[int, DataError], object]] = None
    ) -> Iterator[ShapeRecord]:
        """The records that can be read.

        Parameters
        ----------
        on_damage : callable, optional
            Told the index of each that cannot, and the error.

        Yields
        ------
        ShapeRecord
        """
        for index in range(self._size):
            try:
                record = self._read(index)
            except DataError as error:
                if on_damage is not None:
                    on_damage(index, error)
                continue
            yield record

    def close(self) -> None:
        """Close the file; records that were read stay."""
        self._file.close()
        if self._table:
            self._table.close()

    def __enter__(self) -> "Shapefile":
        return self

    def __exit__(self, *exception: object) -> None:
        self.close()

    def __reduce__(self) -> Tuple[Any, ...]:
        return Shapefile, (self.path, self._encoding)

    def __repr__(self) -> str:
        return f"<Shapefile {os.path.basename(self.path)}: {self._size} records, {self.type}>"


def _type_name(number: int) -> str:
    return _kzgis.shape_type_name(number) or f"type {number}"
