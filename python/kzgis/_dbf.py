"""The table of attributes beside a shapefile: dBASE III, as ESRI uses it.

Header, little-endian (ESRI's shapefiles have dBASE III tables; "dBASE III PLUS Advanced
Programmer's Guide", 1987):
    0   version
    4   uint32  rows
    8   uint16  bytes of the header
    10  uint16  bytes of a row, with the mark of deleted ones at its beginning
    29  language driver: the code page
    32  fields of 32 bytes, up to a carriage return: name (11 bytes), type (1), 4 unused,
        width (1), decimals (1)
Nothing in it is believed: rows and fields are held against the size of the file.
"""

from __future__ import annotations

import codecs
import datetime
import os
import struct
import threading
from typing import Any, Dict, List, NamedTuple, Optional, Tuple, Union

from ._errors import DataError

Value = Union[str, int, float, bool, datetime.date, None]

_HEADER = 32
_FIELD = 32

# What the language driver's number means, of those that ESRI writes.
_DRIVERS = {
    0x01: "cp437", 0x02: "cp850", 0x03: "cp1252", 0x08: "cp865", 0x09: "cp437", 0x0A: "cp850",
    0x0D: "cp437", 0x0E: "cp850", 0x0F: "cp437", 0x10: "cp850", 0x13: "cp932", 0x1D: "cp850",
    0x1F: "cp852", 0x26: "cp866", 0x4D: "cp936", 0x4E: "cp949", 0x4F: "cp950", 0x50: "cp874",
    0x57: "cp1252", 0x58: "cp1252", 0x59: "cp1252", 0x64: "cp852", 0x65: "cp866", 0x66: "cp865",
    0x67: "cp861", 0x6A: "cp737", 0x6B: "cp857", 0x78: "cp950", 0x79: "cp949", 0x7A: "cp936",
    0x7B: "cp932", 0x7C: "cp874", 0xC8: "cp1250", 0xC9: "cp1251", 0xCA: "cp1254", 0xCB: "cp1253",
}  # fmt: skip


class Field(NamedTuple):
    """A column of the table: its name; 'str', 'int', 'float', 'bool' or 'date'; its width."""

    name: str
    kind: str
    width: int
    decimals: int


def _codec_of(name: str) -> Optional[str]:
    """The codec of a .cpg file's text: "UTF-8", "1252", "ISO 88591", "ANSI 1252"."""
    text = name.strip().lower().removeprefix("ansi").strip()
    iso = text.replace("iso", "").strip(" -_").replace("-", "").replace("8859", "iso8859-", 1)
    for guess in (text, "cp" + text, iso):
        try:
            return codecs.lookup(guess).name
        except (LookupError, ValueError):
            continue
    return None


class Layout:
    """What the bytes of a row mean; goes where its rows go."""

    __slots__ = ("fields", "encoding")

    def __init__(self, fields: Tuple[Field, ...], encoding: Optional[str]):
        self.fields = fields
        self.encoding = encoding

    def text(self, raw: bytes) -> str:
        """In the table's code page; UTF-8 where it names none, and Latin-1 what is neither."""
        try:
            return raw.decode(self.encoding or "utf-8")
        except UnicodeDecodeError:
            return raw.decode("latin-1")

    def value(self, field: Field, raw: bytes) -> Value:
        """What stands in a field; None where nothing does."""
        if field.kind == "str":
            return self.text(raw.rstrip(b" \0").lstrip(b"\0"))
        said = raw.strip(b" \0")
        if not said or said.strip(b"*") == b"" or said == b"?":
            return None
        if field.kind == "bool":
            return said in b"TtYy"
        try:
            if field.kind == "date":
                if said.strip(b"0") == b"":
                    return None
                return datetime.datetime.strptime(said.decode("ascii"), "%Y%m%d").date()
            if field.kind == "int":
                return int(said)
        except ValueError:
            pass
        try:
            return float(said)
        except ValueError:
            return self.text(said)

    def attributes(self, row: bytes) -> Dict[str, Value]:
        values: Dict[str, Value] = {}
        at = 1
        for field in self.fields:
            values[field.name] = self.value(field, row[at : at + field.width])
            at += field.width
        return values


class Table:
    """A table that is open; its rows are read one by one, by any thread."""

    def __init__(self, path: str, encoding: Optional[str] = None):
        self.path = path
        self._file = open(path, "rb")
        self._lock = threading.Lock()
        try:
            self._read_header(encoding)
        except BaseException:
            self._file.close()
            raise

    def _bytes(self, at: int, count: int) -> bytes:
        with self._lock:
            self._file.seek(at)
            return self._file.read(count)

    def _read_header(self, encoding: Optional[str]) -> None:
        head = self._bytes(0, _HEADER)
        if len(head) < _HEADER:
            raise DataError("not a dBASE table", self.path)
        self.rows, self._begin, self._width = struct.unpack_from("<IHH", head, 4)
        size = os.fstat(self._file.fileno()).st_size
        if self._begin < _HEADER + 1 or self._width < 1 or self._begin > size:
            raise DataError("not a dBASE table", self.path)
        if self._begin + self.rows * self._width > size:
            raise DataError("the table ends before its last row", self.path)
        described = self._bytes(_HEADER, self._begin - _HEADER)
        layout = Layout((), encoding or self._own_encoding() or _DRIVERS.get(head[29]))
        fields: List[Field] = []
        at = 1
        for begin in range(0, len(described) - _FIELD + 1, _FIELD):
            entry = described[begin : begin + _FIELD]
            if entry[:1] in (b"\r", b"\0"):
                break
            name = layout.text(entry[:11].split(b"\0")[0].rstrip())
            kind, width, decimals = chr(entry[11]), entry[16], entry[17]
            if kind == "C":  # its width may have two bytes
                width, decimals = width + 256 * decimals, 0
            at += width
            if at > self._width:
                raise DataError(f"field {name!r} lies outside of its row", self.path)
            known = {"N": "float" if decimals else "int", "F": "float", "L": "bool", "D": "date"}
            fields.append(Field(name, known.get(kind, "str"), width, decimals))
        layout.fields = tuple(fields)
        self.layout = layout

    def _own_encoding(self) -> Optional[str]:
        for ending in (".cpg", ".CPG"):
            try:
                with open(os.path.splitext(self.path)[0] + ending, "rb") as file:
                    return _codec_of(file.read(64).decode("ascii", "replace"))
            except OSError:
                continue
        return None

    def row(self, index: int) -> bytes:
        row = self._bytes(self._begin + index * self._width, self._width)
        if len(row) < self._width:
            raise DataError(f"row {index + 1} is cut off", self.path)
        return row

    def column(self, number: int) -> List[Value]:
        """The values of all rows, read in one go."""
        field = self.layout.fields[number]
        at = 1 + sum(before.width for before in self.layout.fields[:number])
        whole = self._bytes(self._begin, self.rows * self._width)
        ends = range(at, self.rows * self._width, self._width) if self.rows else ()
        return [self.layout.value(field, whole[i : i + field.width]) for i in ends]

    def close(self) -> None:
        with self._lock:
            self._file.close()


def json_of(values: Dict[str, Any]) -> Dict[str, Any]:
    """The same in what JSON has: dates become texts."""
    return {k: v.isoformat() if isinstance(v, datetime.date) else v for k, v in values.items()}
