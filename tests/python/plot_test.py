"""Pictures: what is drawn, not how it looks."""
import doctest

import numpy as np
import pytest

import kzgis

plt = pytest.importorskip("matplotlib.pyplot")
import kzgis.plot  # noqa: E402

SQUARE = [(0.0, 0.0), (40.0, 0.0), (40.0, 40.0), (0.0, 40.0)]
HOLE = [(10.0, 10.0), (20.0, 10.0), (20.0, 20.0)]


@pytest.fixture(autouse=True)
def close():
    yield
    plt.close("all")


def test_axes_go_in_and_come_out(data):
    grid = kzgis.read_dem(data / "dem" / "st_helens_crater.dem")
    calls = (
        lambda ax: kzgis.plot.map([SQUARE], kzgis.Chart("mercator"), ax),
        lambda ax: kzgis.plot.mesh(kzgis.triangulate(SQUARE), ax),
        lambda ax: kzgis.plot.nesting([SQUARE, HOLE], ax),
        lambda ax: kzgis.plot.relief(grid, ax),
    )
    for call in calls:
        ax = plt.figure().add_subplot()
        assert call(ax) is ax
        assert call(None) is not ax
        ax.figure.canvas.draw()


def test_a_polygon_lies_where_the_chart_puts_it():
    chart = kzgis.Chart("mercator", radius=1.0)
    ax = kzgis.plot.map([([SQUARE, HOLE], {"facecolor": "red"})], chart, graticule=0, frame=False)
    (collection,) = ax.collections
    (path,) = collection.get_paths()
    x, y = chart.project([5, 12, 30], [5, 16, 30])
    inside = [path.contains_point(p, radius=0.0) for p in zip(x, y)]
    assert inside[0] and inside[2]
    assert path.get_extents().bounds == pytest.approx((0, 0, *chart.project(40, 40)), abs=1e-9)
    assert np.sum(path.codes == path.CLOSEPOLY) == 2
    assert tuple(collection.get_facecolor()[0]) == (1.0, 0.0, 0.0, 1.0)


def test_layers_of_all_kinds(data):
    ne = data / "ne"
    chart = kzgis.Chart("orthographic", base=(45, 10))
    way = {"type": "LineString", "coordinates": [(0, 40), (20, 50)]}
    with kzgis.Shapefile(ne / "ne_110m_countries") as land, kzgis.Shapefile(
        ne / "ne_110m_rivers"
    ) as rivers, kzgis.Shapefile(ne / "ne_110m_places") as places:
        layers = [(land, "countries"), (rivers, "river"), places, land[0], land[4:6],
                  land[0].feature(), (way, {"color": "k"}), kzgis.make_valid(SQUARE)]
        ax = kzgis.plot.map(layers, chart)
    assert len(ax.collections) == 8  # one a layer but the places, and the graticule
    faces = {tuple(face) for face in ax.collections[0].get_facecolor()}
    assert len(faces) == len(kzgis.plot.TINTS)
    (dots,) = ax.lines
    x, y = dots.get_data()
    assert 0 < len(x) < 243 and np.hypot(x, y).max() <= chart.radius * 1.001
    ax.figure.canvas.draw()
    with pytest.raises(ValueError, match="is 'river' meant"):
        kzgis.plot.map([(SQUARE, "rivers")], chart)


def test_meshes_have_a_histogram_of_all_their_triangles():
    mesh = kzgis.triangulate([SQUARE, HOLE], least_angle=20)
    ax = kzgis.plot.mesh(mesh)
    assert len(ax.collections[0].get_paths()) == len(mesh)
    (inset,) = ax.child_axes
    assert sum(bar.get_height() for bar in inset.patches) == len(mesh)
    assert not kzgis.plot.mesh(mesh, histogram=False).child_axes
    kzgis.plot.mesh(kzgis.triangulate([])).figure.canvas.draw()


def test_rings_are_coloured_by_depth():
    island = [(14.0, 11.0), (18.0, 11.0), (18.0, 14.0)]
    ax = kzgis.plot.nesting([island, HOLE, SQUARE])
    from matplotlib.colors import to_hex

    colours = [to_hex(face) for face in ax.collections[0].get_facecolor()]
    assert colours == list(kzgis.plot.DEPTHS[:3])
    assert len(ax.get_legend().get_texts()) == 3
    with pytest.raises(kzgis.PolygonError):
        kzgis.plot.nesting([(0, 0), (1, 1), (1, 0), (0, 1)])
    kzgis.plot.nesting([])


def test_reliefs_lie_in_the_grids_coordinates(data):
    grid = kzgis.read_dem(data / "dem" / "st_helens_crater.dem")
    ax = kzgis.plot.relief(grid)
    left, bottom, right, top = grid.bounds
    (image,) = ax.images
    assert tuple(image.get_extent()) == (left, right, bottom, top)
    shown = image.get_array()
    assert shown.shape == (*grid.shape, 4) and 0 <= shown.min() and shown.max() <= 1
    kzgis.plot.relief(kzgis.ElevationGrid([[np.nan, 1], [1, 1]], 0, 0, 1, 1)).figure.canvas.draw()


def test_examples_are_right(data):
    assert doctest.testmod(kzgis.plot, extraglobs={"data": data}).failed == 0
