"""What the module says is what the library says, to the last bit."""
import numpy as np

import kzgis


def same_bits(mine, theirs):
    mine = np.ascontiguousarray(mine, dtype=np.float64)
    return np.array_equal(mine.view(np.int64), np.asarray(theirs, dtype=np.float64).view(np.int64))


def test_charts_project_there_and_back_bit_for_bit(reference):
    lat, lon = reference["lat"], reference["lon"]
    for number, name in enumerate(kzgis.projections()):
        chart = kzgis.Chart(name, base=(47.5, 13.25))
        x, y, z = chart.project(lat, lon, 1500.0)
        for key, values in zip("xyz", (x, y, z)):
            expected = reference[f"chart{number}.{key}"]
            assert np.array_equal(np.isnan(values), np.isnan(expected)), name
            there = ~np.isnan(expected)
            assert there.any() and same_bits(values[there], expected[there]), name
        back_lat, back_lon, _ = chart.unproject(x, y, z)
        assert np.array_equal(back_lat, reference[f"chart{number}.lat"], equal_nan=True), name
        assert np.array_equal(back_lon, reference[f"chart{number}.lon"], equal_nan=True), name


def test_records_meshes_and_areas_are_the_librarys(reference, data):
    chart = kzgis.Chart("orthographic", base=(45, 10))
    with kzgis.Shapefile(data / "ne" / "ne_50m_lakes_with_islands.shp") as file:
        refined = 0
        for i, record in enumerate(file):
            name = f"record{i}"
            assert same_bits(record.points[:, 0], reference[name + ".x"])
            assert same_bits(record.points[:, 1], reference[name + ".y"])
            assert record.parts.tolist() == reference[name + ".parts"].tolist()
            mesh = kzgis.triangulate(record, least_angle=15)
            assert mesh.triangles.ravel().tolist() == reference[name + ".triangles"].tolist()
            assert same_bits(mesh.new_vertices[:, 0], reference[name + ".new_x"])
            assert same_bits(mesh.new_vertices[:, 1], reference[name + ".new_y"])
            assert np.array_equal(mesh.vertices[: len(record.points)], record.points)
            refined += len(mesh.new_vertices)
            assert kzgis.nest(record)[1].tolist() == reference[name + ".depth"].tolist()
            area = chart.project_area(record, 3000.0)
            assert same_bits(area.points[:, 0], reference[name + ".area_x"])
            assert same_bits(area.points[:, 1], reference[name + ".area_y"])
            assert area.starts.tolist() == reference[name + ".area_starts"].tolist()
        assert refined > 100


def test_terrain_is_the_librarys(reference, data):
    grid = kzgis.read_dem(data / "dem" / "st_helens_crater.dem")
    expected = reference["grid"].reshape(grid.shape)
    assert np.array_equal(grid.elevations.filled(), expected, equal_nan=True)
    terrain = grid.triangulate(5.0)
    for i, key in enumerate("xyz"):
        assert same_bits(terrain.vertices[:, i], reference["terrain." + key])
    assert terrain.triangles.ravel().tolist() == reference["terrain.triangles"].tolist()


def test_the_classic_table_is_met_near_the_base(data):
    """mpmath's table for the classic projections, whose Mercator means the same points."""
    path = data.parent / "tests" / "data" / "projection_forward.csv"
    table = np.genfromtxt(path, delimiter=",", skip_header=1, names=True, dtype=None, encoding=None)
    rows = table[(table["name"] == "mercator") & (table["radius"] == 6378000.0)]
    assert len(rows) > 5
    for row in rows:
        turn = (row["lon"] - row["base_lon"] + 180) % 360 - 180
        chart = kzgis.Chart("mercator", base=(0, row["base_lon"]))
        x, y = chart.project(row["lat"], row["lon"])
        assert abs(x - np.radians(turn) * 6378000.0) < 1e-6
        if abs(row["lat"]) < 80:
            assert abs(y - 6378000.0 * np.arctanh(np.sin(np.radians(row["lat"])))) < 1e-6
