"""Pictures with matplotlib: maps, meshes, nested rings, reliefs.

Each function draws into an Axes, a new one when it is given none, and returns it; what else is to
be drawn, saved or said is matplotlib's.
"""

from __future__ import annotations

from typing import Any, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np

from ._chart import Chart
from ._databank import Databank, Segment
from ._elevation import ElevationGrid
from ._errors import no_such_name
from ._geometry import Doubles, Polygon, bounds_of, flatten, signed_area, split
from ._mesh import Mesh, Meshes, nest
from ._outline import Lines, Outline
from ._shapefile import Shapefile, ShapeRecord

Axes = Any  # matplotlib has no types before 3.8

OCEAN = "#d0e4ef"
CHART = "#fbf9f2"  # under outlines alone
LAND = "#f1e9d5"
SHORE = "#6088a1"
FRAME = "#4a5e6d"
GRATICULE = "#4d718a"
MESH = "#80909a"
TEXT = "#38424a"
TINTS = ("#f3e0c1", "#dce5c3", "#f2d4c7", "#e2dae8", "#f6edc1", "#ccdfd2", "#e9d7cb")
RAMP = ("#8bb08a", "#c3d19b", "#ede2ae", "#debc89", "#bd987b", "#f3f1ef")
# By depth: water outside, then land, lake, island, and so on.
DEPTHS = ("#ecdfc0", "#a9cce0", "#cfdcae", "#7fb0cf", "#b9cb8d", "#5f97bd")

# The styles of layers, under the names that the command has for them.
STYLES: Dict[str, Dict[str, Any]] = {
    "land": {"facecolor": LAND, "edgecolor": SHORE, "linewidth": 0.5},
    "countries": {"facecolor": TINTS, "edgecolor": "#fefdfa", "linewidth": 0.6},
    "water": {"facecolor": OCEAN, "edgecolor": "#6fa2c2", "linewidth": 0.4},
    "coast": {"color": SHORE, "linewidth": 0.6},
    "river": {"color": "#6fa2c2", "linewidth": 0.6},
    "border": {"color": "#9e868b", "linewidth": 0.6},
    "province": {"color": "#c3b3b6", "linewidth": 0.4},
    "places": {"color": "#b04334", "markersize": 2.0},
}


def _new_axes() -> Axes:
    import matplotlib.pyplot as plt  # type: ignore[import]

    return plt.figure().add_subplot()


def _path(outline: Outline) -> Any:
    """All rings in one path, each closed."""
    from matplotlib.path import Path  # type: ignore[import]

    ends = np.append(outline.starts[1:], len(outline.points))
    points = np.insert(outline.points, ends, outline.points[outline.starts], axis=0)
    codes = np.full(len(points), Path.LINETO, dtype=Path.code_type)
    begins = outline.starts + np.arange(len(outline.starts))
    codes[begins] = Path.MOVETO
    codes[ends + np.arange(len(ends))] = Path.CLOSEPOLY
    return Path(points, codes)


def _records(layer: Any) -> Iterator[Tuple[str, Any]]:
    """'polygon', 'line' or 'point' and what is to be drawn, for everything in a layer."""
    if isinstance(layer, Shapefile):
        layer = layer.sound()
    elif isinstance(layer, (ShapeRecord, Outline, Lines, Segment)):
        layer = [layer]
    elif hasattr(layer, "__geo_interface__") or isinstance(layer, Mapping):
        layer = [layer]
    elif not isinstance(layer, Databank) and not _holds_records(layer):
        layer = [layer]
    for thing in layer:
        if isinstance(thing, ShapeRecord):
            kind = thing.type.split(" ")[0]
        elif isinstance(thing, (Lines, Segment)):
            kind = "polyline"
        else:
            geo = thing if isinstance(thing, Mapping) else getattr(thing, "__geo_interface__", {})
            kind = str((geo.get("geometry") or geo).get("type", "Polygon")).lower()
        if "line" in kind:
            yield "line", thing
        elif "point" in kind:
            yield "point", thing
        elif kind != "null":
            yield "polygon", thing


def _holds_records(layer: Any) -> bool:
    first = layer[0] if isinstance(layer, Sequence) and len(layer) else None
    return hasattr(first, "__geo_interface__") or isinstance(first, Mapping)


def _points(thing: Any) -> Doubles:
    if isinstance(thing, ShapeRecord):
        return thing.points
    geo = thing if isinstance(thing, Mapping) else thing.__geo_interface__
    geo = geo.get("geometry") or geo
    return np.array(geo["coordinates"], dtype=np.float64).reshape(-1, 2)


_USUAL = {"polygon": "land", "line": "coast", "point": "places"}


def _style_of(style: Union[str, Mapping[str, Any], None], kind: str) -> Dict[str, Any]:
    if style is None:
        return dict(STYLES[_USUAL[kind]])
    if isinstance(style, str):
        if style not in STYLES:
            raise no_such_name(style, "style", STYLES)
        return dict(STYLES[style])
    return {**STYLES[_USUAL[kind]], **style}


def _draw_layer(ax: Axes, layer: Any, style: Any, chart: Chart, near: float, edge: Any) -> bool:
    """Whether the layer covers anything."""
    from matplotlib.collections import LineCollection, PathCollection  # type: ignore[import]

    paths: List[Any] = []
    faces: List[Any] = []
    lines: List[Doubles] = []
    places: List[Doubles] = []
    tinted = _style_of(style, "polygon").get("facecolor", LAND)
    for number, (kind, thing) in enumerate(_records(layer)):
        if kind == "polygon":
            outline = chart.project_area(thing, near)
            if len(outline):
                paths.append(_path(outline))
                several = not isinstance(tinted, str) and np.ndim(tinted) > 0
                faces.append(tinted[number % len(tinted)] if several else tinted)
        elif kind == "line":
            flat = [thing.points] if isinstance(thing, Segment) else thing
            lines += chart.project_lines(flat, near).lines
        else:
            lon, lat = _points(thing).T
            places.append(np.column_stack(chart.project(lat, lon)[:2]))
    if paths:
        look = _style_of(style, "polygon")
        look["facecolor"] = faces
        ax.add_collection(PathCollection(paths, zorder=2, **look), autolim=False)
    if lines:
        look = _style_of(style, "line")
        look.pop("facecolor", None)
        if "edgecolor" in look and "color" not in look:
            look["color"] = look.pop("edgecolor")
        look.pop("edgecolor", None)
        ax.add_collection(LineCollection(lines, zorder=2, **look), autolim=False)
    if places:
        there = np.concatenate(places)
        x, y = there[edge.contains_points(there)].T  # beyond the edge, too, points have a place
        look = {"marker": "o", "linestyle": "none", "markeredgewidth": 0.0, "zorder": 4}
        look.update(_style_of(style, "point"))
        for name in ("facecolor", "edgecolor", "linewidth"):
            look.pop(name, None)
        ax.plot(x, y, scalex=False, scaley=False, **look)
    return bool(paths)


def map(
    layers: Any,
    chart: Chart,
    ax: Optional[Axes] = None,
    *,
    graticule: float = 15.0,
    frame: bool = True,
    tolerance: Optional[float] = None,
) -> Axes:
    """Draw layers on a map.

    Parameters
    ----------
    layers : layer or list of layers
        In the order they are drawn.  A layer is an open `Shapefile`, a list of records, a
        `Databank`, an outline, a polygon or whatever has ``__geo_interface__``, in degrees; or a
        pair of it and a style: a name of `STYLES`, or a dict of matplotlib's properties, of which
        ``facecolor`` may be a list to take turns.
    chart : Chart
        Any but the globe, which is no plane; orthographic looks like one.
    ax : Axes, optional
        To draw in.
    graticule : float, optional
        Degrees between meridians; 0 for none.
    frame : bool, optional
        Whether the sea and the edge of the map are drawn.
    tolerance : float, optional
        How far a curve may be from its chords; a 2,000th of the radius.

    Returns
    -------
    Axes
        In world coordinates of the chart.

    Examples
    --------
    >>> import kzgis, kzgis.plot
    >>> with kzgis.Shapefile(f"{data}/ne/ne_110m_land.shp") as land:
    ...     ax = kzgis.plot.map(land, kzgis.Chart("postel", base=(90, 0)))
    >>> ax.get_aspect()
    1.0
    """
    from matplotlib.collections import LineCollection
    from matplotlib.patches import PathPatch  # type: ignore[import]

    ax = ax if ax is not None else _new_axes()
    near = chart.tolerance if tolerance is None else float(tolerance)
    edge = chart.frame(near)
    border = _path(edge)
    covered = False
    for layer in layers if isinstance(layers, list) and not _holds_records(layers) else [layers]:
        style = None
        if isinstance(layer, tuple) and len(layer) == 2 and isinstance(layer[1], (str, Mapping)):
            layer, style = layer
        covered = _draw_layer(ax, layer, style, chart, near, border) or covered
    if graticule:
        lines = chart.graticule(graticule, near).lines
        net = LineCollection(lines, color=GRATICULE, linewidth=0.4, alpha=0.35, zorder=3)
        ax.add_collection(net, autolim=False)
    if frame:
        sea = OCEAN if covered else CHART  # around coasts alone, blue would stand for land too
        ax.add_patch(PathPatch(border, facecolor=sea, edgecolor="none", zorder=1))
        ax.add_patch(PathPatch(border, facecolor="none", edgecolor=FRAME, lw=0.9, zorder=5))
    bounds = edge.bounds
    assert bounds is not None, "no map is without an edge"
    margin = 0.01 * max(bounds[2] - bounds[0], bounds[3] - bounds[1])
    ax.set_xlim(bounds[0] - margin, bounds[2] + margin)
    ax.set_ylim(bounds[1] - margin, bounds[3] + margin)
    ax.set_aspect("equal")
    ax.set_axis_off()
    return ax


def _emptiest_corner(points: Doubles, size: Tuple[float, float]) -> Tuple[float, float]:
    """The lower left of a box in the corner with the fewest points, in fractions of their box."""
    bounds = bounds_of(points)
    if bounds is None:
        return 0.0, 0.0
    low, span = np.array(bounds[:2]), np.array(bounds[2:]) - np.array(bounds[:2])
    share = (points - low) / np.where(span > 0, span, 1.0)
    corners = [(x, y) for y in (0.0, 1.0 - size[1]) for x in (1.0 - size[0], 0.0)]

    def crowd(corner: Tuple[float, float]) -> int:
        inside = (share >= corner) & (share <= np.add(corner, size))
        return int(inside.all(axis=1).sum())

    return min(corners, key=crowd)


def mesh(
    mesh: Union[Mesh, Meshes],
    ax: Optional[Axes] = None,
    *,
    histogram: bool = True,
    facecolor: str = LAND,
    edgecolor: str = MESH,
    linewidth: float = 0.4,
) -> Axes:
    """Draw a mesh and, in the emptiest corner, how large the least angles of its triangles are.

    Parameters
    ----------
    mesh : Mesh or Meshes
    ax : Axes, optional
        To draw in.
    histogram : bool, optional
        Whether the angles are shown: the least one of each triangle, in degrees.
    facecolor, edgecolor, linewidth : optional
        Of the triangles.

    Returns
    -------
    Axes

    Examples
    --------
    >>> import kzgis, kzgis.plot
    >>> ax = kzgis.plot.mesh(kzgis.triangulate([(0, 0), (4, 0), (4, 3), (0, 3)], longest_side=1))
    >>> len(ax.child_axes)
    1
    """
    from matplotlib.collections import PolyCollection

    ax = ax if ax is not None else _new_axes()
    corners = mesh.vertices[mesh.triangles]
    look = {"facecolor": facecolor, "edgecolor": edgecolor, "linewidth": linewidth}
    ax.add_collection(PolyCollection(corners, **look))
    ax.autoscale_view()
    ax.set_aspect("equal")
    ax.set_axis_off()
    if histogram and len(mesh.triangles):
        size = (0.3, 0.2)
        x, y = _emptiest_corner(corners.mean(axis=1), size)
        inset = ax.inset_axes((x, y, *size))
        inset.hist(mesh.angles().min(axis=1), bins=np.arange(0, 61, 4), color=SHORE, alpha=0.85)
        inset.set_xlim(0, 60)
        inset.set_xticks((0, 20, 40, 60))
        inset.set_yticks(())
        inset.set_xlabel("least angle (degrees)", fontsize=7, color=TEXT, labelpad=1)
        inset.tick_params(labelsize=7, colors=TEXT, length=2, pad=1)
        inset.patch.set_alpha(0.0)
        for side in ("top", "left", "right"):
            inset.spines[side].set_visible(False)
        inset.spines["bottom"].set_color(FRAME)
    return ax


def nesting(
    rings: Polygon, ax: Optional[Axes] = None, *, legend: bool = True, linewidth: float = 0.5
) -> Axes:
    """Draw rings coloured by how deep they lie in each other.

    Parameters
    ----------
    rings : polygon
        As for `kzgis.triangulate`.
    ax : Axes, optional
        To draw in.
    legend : bool, optional
        Whether the colours are explained.
    linewidth : float, optional
        Of the rings.

    Returns
    -------
    Axes

    Examples
    --------
    >>> import kzgis, kzgis.plot
    >>> ax = kzgis.plot.nesting([[(0, 0), (4, 0), (4, 4)], [(2, 1), (3, 1), (3, 2)]])
    >>> [text.get_text() for text in ax.get_legend().get_texts()]
    ['1, outermost', '2, a hole']
    """
    from matplotlib.collections import PathCollection
    from matplotlib.patches import Patch

    ax = ax if ax is not None else _new_axes()
    flat = flatten(rings)
    _, depths = nest(flat.points, flat.starts)
    pieces = split(flat.points, flat.starts)
    # The deeper ones later, and of one depth the larger ones first.
    order = sorted(
        np.flatnonzero(depths > 0), key=lambda i: (depths[i], -abs(signed_area(pieces[i])))
    )
    paths = [_path(Outline(pieces[i], np.zeros(1, dtype=np.int32))) for i in order]
    colours = [DEPTHS[(int(depths[i]) - 1) % len(DEPTHS)] for i in order]
    ax.add_collection(
        PathCollection(paths, facecolor=colours, edgecolor=FRAME, linewidth=linewidth)
    )
    ax.autoscale_view()
    ax.set_aspect("equal")
    ax.set_axis_off()
    if legend and len(order):
        words = {1: "1, outermost", 2: "2, a hole", 3: "3, an island in it"}
        explained = ax.legend(
            handles=[
                Patch(
                    facecolor=DEPTHS[(depth - 1) % len(DEPTHS)],
                    edgecolor=FRAME,
                    linewidth=0.5,
                    label=words.get(depth, str(depth)),
                )
                for depth in range(1, int(depths.max()) + 1)
            ],
            title="depth",
            frameon=False,
            fontsize=8,
            title_fontsize=8,
            labelcolor=TEXT,
            loc="upper left",
            bbox_to_anchor=(1.0, 1.0),
        )
        explained.get_title().set_color(TEXT)
    return ax


def relief(
    grid: ElevationGrid,
    ax: Optional[Axes] = None,
    *,
    azimuth: float = 315.0,
    altitude: float = 45.0,
    colorbar: bool = True,
) -> Axes:
    """Draw an elevation grid, tinted by height and shaded by the light.

    Parameters
    ----------
    grid : ElevationGrid
    ax : Axes, optional
        To draw in.
    azimuth, altitude : float, optional
        Of the sun, in degrees, as for `ElevationGrid.hillshade`.
    colorbar : bool, optional
        Whether the tints are explained.

    Returns
    -------
    Axes
        In the coordinates of the grid.

    Examples
    --------
    >>> import kzgis, kzgis.plot
    >>> ax = kzgis.plot.relief(kzgis.read_dem(f"{data}/dem/st_helens_crater.dem"))
    >>> ax.get_xlabel()
    'easting (km), UTM zone 10'
    """
    from matplotlib.cm import ScalarMappable  # type: ignore[import]
    from matplotlib.colors import LinearSegmentedColormap, Normalize  # type: ignore[import]
    from matplotlib.ticker import FuncFormatter, MaxNLocator  # type: ignore[import]

    ax = ax if ax is not None else _new_axes()
    ramp = LinearSegmentedColormap.from_list("relief", RAMP)
    heights: Any = grid.elevations
    low, high = (float(heights.min()), float(heights.max())) if heights.count() else (0.0, 1.0)
    norm = Normalize(low, max(high, low + 1e-6))
    picture = ramp(norm(heights.data))
    # Shadows keep some light from the sky; what faces the sun pales towards white.
    light = (0.28 + 0.96 * grid.hillshade(azimuth, altitude))[..., None]
    shadow = picture[..., :3] * np.minimum(light, 1.0)
    picture[..., :3] = shadow + (1.0 - shadow) * np.clip(light - 1.0, 0.0, 1.0)
    picture[..., 3] = ~heights.mask
    left, bottom, right, top = grid.bounds
    ax.imshow(np.nan_to_num(picture), extent=(left, right, bottom, top), interpolation="bilinear")
    ax.set_aspect(grid.aspect)
    kilometres = grid.ground_unit == "metres"
    if kilometres:
        for axis in (ax.xaxis, ax.yaxis):
            axis.set_major_formatter(FuncFormatter(lambda value, _: f"{value / 1000:g}"))
            axis.set_major_locator(MaxNLocator(5, steps=(1, 2, 5, 10)))
    unit = "km" if kilometres else grid.ground_unit
    if grid.plan == "geographic":
        ax.set_xlabel("longitude (degrees)")
        ax.set_ylabel("latitude (degrees)")
    else:
        zone = f", UTM zone {abs(grid.zone)}" if grid.plan == "utm" else ""
        ax.set_xlabel(f"easting ({unit}){zone}")
        ax.set_ylabel(f"northing ({unit})")
    for axis in (ax.xaxis, ax.yaxis):
        axis.label.set_color(TEXT)
    ax.tick_params(labelsize=8, colors=TEXT, length=3)
    for spine in ax.spines.values():
        spine.set_color(FRAME)
    if colorbar:
        bar = ax.figure.colorbar(ScalarMappable(norm, ramp), ax=ax, shrink=0.7, pad=0.03)
        name = "" if grid.elevation_unit == "unknown" else f" ({grid.elevation_unit})"
        bar.set_label("elevation" + name, color=TEXT)
        bar.ax.tick_params(labelsize=8, colors=TEXT, length=3)
        bar.outline.set_edgecolor(FRAME)
    return ax
