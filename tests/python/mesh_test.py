"""Polygons in every form, triangles, nesting; against shapely."""
import json
import pickle

import numpy as np
import pytest
import shapely.geometry
import shapely.ops
from hypothesis import given
from hypothesis import strategies as st

import kzgis

SQUARE = np.array([(0.0, 0.0), (4.0, 0.0), (4.0, 4.0), (0.0, 4.0)])
HOLE = np.array([(1.0, 1.0), (2.0, 1.0), (2.0, 2.0)])
BOW = [(0, 0), (2, 2), (2, 0), (0, 2)]
GEO = {
    "type": "Polygon",
    "coordinates": [SQUARE.tolist() + [[0, 0]], HOLE.tolist() + [[1, 1]]],
}


class Wrapped:
    __geo_interface__ = GEO


@pytest.mark.parametrize(
    "polygon",
    [
        [SQUARE, HOLE],
        (SQUARE, HOLE),
        [SQUARE.tolist(), HOLE.tolist()],
        [SQUARE.astype(np.int32), HOLE.astype(np.float32)],
        [np.asfortranarray(SQUARE), HOLE[::-1]],
        [np.repeat(SQUARE, 2, axis=0)[::2], HOLE],
        iter([SQUARE, HOLE]),
        GEO,
        Wrapped(),
        [Wrapped()],
        {"type": "Feature", "geometry": GEO, "properties": {}},
        {"type": "FeatureCollection", "features": [{"type": "Feature", "geometry": GEO}]},
        {"type": "MultiPolygon", "coordinates": [GEO["coordinates"]]},
        {"type": "GeometryCollection", "geometries": [GEO]},
        shapely.geometry.Polygon(SQUARE, [HOLE]),
        shapely.geometry.MultiPolygon([shapely.geometry.Polygon(SQUARE, [HOLE])]),
        [shapely.geometry.LinearRing(SQUARE), HOLE],
        kzgis.make_valid([SQUARE, HOLE]),
    ],
)
def test_polygons_come_in_many_forms(polygon):
    mesh = kzgis.triangulate(polygon)
    assert mesh.area == 15.5 and len(mesh) == 7


def test_one_array_with_starts():
    points = np.concatenate([SQUARE, HOLE])
    mesh = kzgis.triangulate(points, [0, 4])
    assert mesh.area == 15.5
    assert np.array_equal(mesh.vertices, points)
    assert mesh.vertices.dtype == np.float64 and mesh.triangles.dtype == np.uint32
    assert mesh.triangles.shape == (7, 3) and mesh.new_vertices.shape == (0, 2)
    cube = np.stack([SQUARE, SQUARE + 10])
    assert kzgis.triangulate(cube).area == 32.0
    assert kzgis.triangulate(SQUARE).area == 16.0
    assert kzgis.triangulate(SQUARE.tolist()).area == 16.0


@pytest.mark.parametrize("nothing", [[], [[]], np.empty((0, 2)), [np.empty((0, 2))], np.empty(0),
                                     {"type": "Feature", "geometry": None}, [(1.0, 2.0)]])
def test_nothing_is_a_polygon_without_triangles(nothing):
    mesh = kzgis.triangulate(nothing)
    assert mesh.triangles.shape == (0, 3) and mesh.area == 0.0 and mesh.angles().shape == (0, 3)


def test_numbers_that_are_no_polygon_are_errors():
    for bad in (3, None, "square", b"ring", [1, 2, 3], [[1, 2, 3]], np.zeros(4), np.zeros((2, 3)),
                np.zeros((2, 2, 2, 2)), [[(0, 0), (1,)]], [[("a", "b")]], [[(0j, 1)]], [None],
                np.array(1.0), [SQUARE, 3], {"type": "Point", "coordinates": (1, 2)}, {}, object(),
                {"type": "Polygon"}, {"type": "Polygon", "coordinates": 3}, [{"type": None}]):
        with pytest.raises((TypeError, ValueError)):
            kzgis.triangulate(bad)
    itself = []
    itself.append(itself)
    with pytest.raises((TypeError, ValueError)):
        kzgis.triangulate(itself)


@pytest.mark.parametrize("starts", [[0, 9], [-1], [2, 1], [0.5], [2**31], [2**63], "a", [[0]]])
def test_starts_that_do_not_fit_are_errors(starts):
    with pytest.raises((TypeError, ValueError)):
        kzgis.triangulate(SQUARE, starts)


def test_two_to_the_31_values_are_refused_before_memory_is():
    huge = np.broadcast_to(0.0, (2**31, 2))
    for call in (kzgis.triangulate, kzgis.nest, kzgis.make_valid, kzgis.find_flaws,
                 kzgis.Chart("mercator").project_area, kzgis.Chart("mercator").project_lines):
        for polygon in (huge, [SQUARE, huge], [huge[: 2**26]] * 40):
            with pytest.raises(ValueError, match="2\\^28"):
                call(polygon)
    with pytest.raises(ValueError, match="2\\^28"):
        kzgis.triangulate(huge, [0])
    with pytest.raises(ValueError, match="2\\^28"):
        kzgis.triangulate_many([huge])


def test_nan_and_infinity_are_told_with_their_place():
    ring = SQUARE.copy()
    ring[2, 1] = np.nan
    for call in (kzgis.triangulate, kzgis.nest, kzgis.make_valid,
                 kzgis.Chart("mercator").project_area):
        with pytest.raises(kzgis.PolygonError) as told:
            call([HOLE, ring])
        assert told.value.ring == 1 and told.value.vertex == 5


def test_crossing_sides_are_told_with_ring_and_vertex():
    with pytest.raises(ValueError) as told:
        kzgis.triangulate([HOLE + 10, BOW])
    error = told.value
    assert isinstance(error, kzgis.PolygonError)
    assert (error.ring, error.vertex) == (1, 3)
    assert error.reason == str(error) == "ring 1 crosses itself (sides from vertices 3 and 5)"
    assert [e.vertex for e in kzgis.find_flaws([HOLE + 10, BOW])] == [3]
    twin = pickle.loads(pickle.dumps(error))
    assert (twin.reason, twin.ring, twin.vertex) == (error.reason, 1, 3)


def test_crossing_sides_may_be_split():
    mesh = kzgis.triangulate(BOW, split_crossings=True)
    assert mesh.new_vertices.tolist() == [[1.0, 1.0]] and mesh.crossings == 1
    assert mesh.area == 2.0
    outline = kzgis.make_valid(BOW)
    assert outline.area == 2.0 and len(outline) == 2
    assert outline.to_shapely().is_valid and outline.to_shapely().area == 2.0


def test_options_refine_and_are_checked():
    mesh = kzgis.triangulate(SQUARE, longest_side=1.0)
    sides = np.diff(mesh.vertices[mesh.triangles[:, [0, 1, 2, 0]]], axis=1)
    assert np.hypot(*sides.reshape(-1, 2).T).max() <= 1.0
    assert mesh.area == pytest.approx(16.0)
    slim = [(0, 0), (10, 0), (10, 1), (0, 1), (0, 0.9)]
    assert kzgis.triangulate(slim, least_angle=20).angles().min() >= 20
    for bad in ({"longest_side": 0}, {"longest_side": float("nan")}, {"least_angle": 26},
                {"least_angle": -1}, {"most_triangles": 1}):
        with pytest.raises(ValueError):
            kzgis.triangulate(SQUARE, **bad)
    with pytest.raises((TypeError, OverflowError)):
        kzgis.triangulate(SQUARE, most_triangles=-1)
    with pytest.raises(TypeError):
        kzgis.triangulate(SQUARE, delaunai=True)


def test_angles_of_a_triangle():
    angles = kzgis.triangulate([(0, 0), (3, 0), (0, 3**0.5)]).angles()
    assert sorted(angles[0]) == pytest.approx([30, 60, 90])


def test_nesting():
    island = [(1.2, 1.1), (1.4, 1.1), (1.4, 1.2)]
    parents, depths = kzgis.nest([island, SQUARE, HOLE])
    assert parents.tolist() == [2, -1, 1] and depths.tolist() == [3, 1, 2]
    assert parents.dtype == np.int32
    with pytest.raises(kzgis.PolygonError):
        kzgis.nest(BOW)


def test_input_stays_as_it_was_and_may_be_read_only():
    ring = SQUARE.copy()
    ring.flags.writeable = False
    kzgis.triangulate(ring, longest_side=1.0)
    assert np.array_equal(ring, SQUARE)
    kzgis.triangulate(np.frombuffer(SQUARE.tobytes()).reshape(4, 2))


@given(
    st.lists(
        st.lists(
            st.tuples(st.integers(-20, 20), st.integers(-20, 20)), min_size=0, max_size=12
        ),
        min_size=0,
        max_size=3,
    )
)
def test_whatever_rings_do_the_region_is_shapelys(rings):
    """Odd-even over any rings: the symmetric difference of the parts between their lines."""
    outline = kzgis.make_valid(rings)
    kept = [ring for ring in rings if len(ring) >= 2]
    lines = [shapely.geometry.LineString(ring + ring[:1]) for ring in kept]
    lines = [line for line in lines if line.length]
    expected = 0.0
    if lines:
        for face in shapely.ops.polygonize(shapely.ops.unary_union(lines)):
            point = face.representative_point()
            if sum(_odd(ring, point.x, point.y) for ring in kept) % 2:
                expected += face.area
    assert outline.area == pytest.approx(expected, abs=1e-6)
    if len(outline):
        assert outline.to_shapely().area == pytest.approx(expected, abs=1e-6)
        mesh = kzgis.triangulate(outline)
        assert mesh.area == pytest.approx(expected, abs=1e-6)
        triangles = kzgis.triangulate(rings, split_crossings=True)
        assert triangles.area == pytest.approx(expected, abs=1e-6)


def _odd(ring, x, y):
    inside = False
    for (ax, ay), (bx, by) in zip(ring, ring[1:] + ring[:1]):
        if (ay > y) != (by > y) and x < ax + (y - ay) * (bx - ax) / (by - ay):
            inside = not inside
    return inside


@given(st.integers(3, 80), st.integers(0, 1000))
def test_triangles_tile_what_shapely_measures(vertices, seed):
    generator = np.random.default_rng(seed)
    angle = np.sort(generator.uniform(0, 2 * np.pi, vertices))
    radius = generator.uniform(0.1, 1, vertices)
    ring = np.column_stack([radius * np.cos(angle), radius * np.sin(angle)])
    if not shapely.geometry.Polygon(ring).is_valid:
        return
    mesh = kzgis.triangulate(ring)
    assert len(mesh) == vertices - 2
    assert mesh.area == pytest.approx(shapely.geometry.Polygon(ring).area, rel=1e-9)
    assert mesh.angles().sum(axis=1) == pytest.approx(180)


def test_areas_of_countries_are_shapelys(countries):
    compared = 0
    for record in countries:
        shape = shapely.geometry.shape(record)
        try:
            mesh = kzgis.triangulate(record)
        except kzgis.PolygonError:
            continue
        assert shape.is_valid and mesh.area == pytest.approx(shape.area, rel=1e-12)
        assert kzgis.triangulate(shape).area == pytest.approx(shape.area, rel=1e-12)
        compared += 1
    assert compared == 176


def test_many_are_one_by_one_in_flat_arrays(countries):
    meshes = kzgis.triangulate_many(countries, jobs=3, errors="collect")
    assert len(meshes) == 177 and list(meshes.errors) == [139]
    assert (meshes.errors[139].ring, meshes.errors[139].vertex) == (0, 48)
    alone = kzgis.triangulate_many(countries, jobs=1, errors="collect")
    assert np.array_equal(meshes.triangles, alone.triangles)
    for i, (record, mesh) in enumerate(zip(countries, meshes)):
        if i == 139:
            assert len(mesh) == 0
            continue
        assert mesh == kzgis.triangulate(record)
        first, end = meshes.triangle_offsets[i : i + 2]
        rows = meshes.triangles[first:end]
        assert rows.min() >= meshes.vertex_offsets[i] and rows.max() < meshes.vertex_offsets[i + 1]
        assert np.array_equal(meshes.vertices[rows], mesh.vertices[mesh.triangles])
    assert meshes.vertices.shape == (meshes.vertex_offsets[-1], 2)
    with pytest.raises(kzgis.PolygonError) as told:
        kzgis.triangulate_many(countries)
    assert told.value.record == 139
    twin = pickle.loads(pickle.dumps(meshes))
    assert np.array_equal(twin.vertices, meshes.vertices) and list(twin.errors) == [139]
    assert meshes[-1] == meshes[176] and len(meshes[3:5]) == 2
    with pytest.raises(IndexError):
        meshes[177]


def test_many_takes_new_vertices_along():
    meshes = kzgis.triangulate_many([SQUARE, [], SQUARE + 9], jobs=2, longest_side=2.0)
    assert meshes.area == pytest.approx(32) and len(meshes[1]) == 0
    assert meshes[2].vertices[:4].tolist() == (SQUARE + 9).tolist()
    assert len(kzgis.triangulate_many([])) == 0
    for bad in ({"jobs": 0}, {"jobs": -3}, {"errors": "rise"}, {"least_angle": 99}):
        with pytest.raises(ValueError):
            kzgis.triangulate_many([SQUARE], **bad)
    assert kzgis.triangulate_many([SQUARE], jobs=10**6).area == 16


@pytest.mark.parametrize("format", ["glb", "stl", "ply", "obj", "geojson", "svg", "png"])
def test_meshes_are_saved_whole_or_not_at_all(format, tmp_path):
    path = tmp_path / f"mesh.{format}"
    mesh = kzgis.triangulate([SQUARE, HOLE])
    mesh.save(path, attributes={"NAME": "Zürich", "N": np.int64(3), "R": float("nan")})
    content = path.read_bytes()
    begin = {"glb": b"glTF", "ply": b"ply", "png": b"\x89PNG", "svg": b"<?xml"}.get(format, b"")
    assert content.startswith(begin) and len(content) > 100
    assert [p.name for p in tmp_path.iterdir()] == [path.name]
    if format in ("glb", "geojson"):
        assert "Zürich" in content.decode("utf-8", "replace") or b"Z\\u00fcrich" in content
    if format == "geojson":
        features = json.loads(content)["features"]
        assert shapely.geometry.shape(features[0]["geometry"]).area == pytest.approx(15.5)
    if format == "stl":
        assert int.from_bytes(content[80:84], "little") == 7
    twin = tmp_path / "twin"
    if format == "svg":  # cairo numbers its pictures
        return
    mesh.save(twin, format=format, attributes={"NAME": "Zürich", "N": 3, "R": None})
    assert twin.read_bytes() == content


def test_saving_tells_what_is_wrong(tmp_path):
    mesh = kzgis.triangulate(SQUARE)
    with pytest.raises(ValueError, match="is 'glb' meant"):
        mesh.save(tmp_path / "a.glbb")
    with pytest.raises(FileNotFoundError) as told:
        mesh.save(tmp_path / "no" / "a.glb")
    assert told.value.filename.endswith("a.glb") and told.value.errno
    layer = kzgis.triangulate_many([SQUARE, HOLE + 9])
    layer.save(tmp_path / "layer.geojson", attributes=[{"A": 1}, {"A": 2}])
    features = json.loads((tmp_path / "layer.geojson").read_text())["features"]
    assert [f["properties"] for f in features] == [{"record": 1, "A": 1}, {"record": 2, "A": 2}]
    broken = kzgis.Mesh(SQUARE, np.array([[0, 1, 4]], dtype=np.uint32))
    with pytest.raises(ValueError, match="not there"):
        broken.save(tmp_path / "b.ply")


def test_meshes_and_outlines_are_pickled_and_shown():
    mesh = kzgis.triangulate(BOW, split_crossings=True)
    twin = pickle.loads(pickle.dumps(mesh))
    assert twin == mesh and np.array_equal(twin.new_vertices, mesh.new_vertices)
    assert twin.crossings == 1 and repr(mesh) == "<Mesh: 2 triangles, 5 vertices, 1 new>"
    outline = kzgis.make_valid([SQUARE, HOLE])
    assert pickle.loads(pickle.dumps(outline)) == outline
    geometry = shapely.geometry.shape(outline)
    assert geometry.area == 15.5 and len(geometry.interiors) == 1
    assert geometry.exterior.is_ccw and not geometry.interiors[0].is_ccw
