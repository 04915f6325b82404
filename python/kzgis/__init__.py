"""Geographic utilities: arrays in, arrays out.

Fifteen map projections of the sphere, there and back; readers of shapefiles, USGS elevation models
and World DataBank II outlines that are safe on files from strangers; a triangulator that proves
its result.  Long calls run beside other threads.

Coordinates are ``lat, lon`` where arguments are called that, and ``x, y`` (longitude, latitude)
in the rows of arrays.  `kzgis.plot` draws with matplotlib, `kzgis.distributed` works on many
machines with Dask; both are imported by name.
"""

from ._chart import Chart, projections
from ._databank import Databank, Segment, read_databank
from ._dbf import Field
from ._elevation import ElevationGrid, Terrain, read_dem
from ._errors import DataError, PolygonError
from ._kzgis import LatLon
from ._mesh import Mesh, Meshes, find_flaws, make_valid, nest, triangulate, triangulate_many
from ._outline import Lines, Outline
from ._shapefile import ShapeRecord, Shapefile

__version__ = "0.1.0"

__all__ = [
    "Chart",
    "DataError",
    "Databank",
    "ElevationGrid",
    "Field",
    "LatLon",
    "Lines",
    "Mesh",
    "Meshes",
    "Outline",
    "PolygonError",
    "Segment",
    "ShapeRecord",
    "Shapefile",
    "Terrain",
    "find_flaws",
    "make_valid",
    "nest",
    "projections",
    "read_databank",
    "read_dem",
    "triangulate",
    "triangulate_many",
]
