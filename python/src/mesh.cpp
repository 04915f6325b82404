// Polygons: triangles, nesting, flaws; one, or many in threads of their own.

#include <kzgis/mesh.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "python/src/arrays.h"
#include "python/src/failures.h"
#include "python/src/module.h"

namespace kzgis::python {

namespace {

using Points = InputArray<double>;
using Starts = InputArray<std::int32_t>;
using NoGil = py::gil_scoped_release;

MeshOptions make_options(bool delaunay, bool split_crossings, double longest_side,
                         double least_angle_deg, std::size_t most_triangles) {
  MeshOptions options;
  options.delaunay = delaunay;
  options.split_crossings = split_crossings;
  options.longest_side = longest_side;
  options.least_angle_deg = least_angle_deg;
  options.most_triangles = most_triangles;
  return options;
}

/// The caller's vertices and behind them the new ones, in pairs.
void append_vertices(std::vector<double>& pairs, const Rings& rings, const Mesh& mesh) {
  for (std::size_t i = 0; i < rings.x.size(); ++i) {
    pairs.push_back(rings.x[i]);
    pairs.push_back(rings.y[i]);
  }
  for (std::size_t i = 0; i < mesh.new_x.size(); ++i) {
    pairs.push_back(mesh.new_x[i]);
    pairs.push_back(mesh.new_y[i]);
  }
}

/// (vertices, triangles, crossings, small corners)
py::tuple triangulate_one(const Points& points, const Starts& starts, const MeshOptions& options) {
  expect_rows(points, 2, "points");
  Mesh mesh;
  std::vector<double> vertices;
  {
    const NoGil unlocked;
    const Outline rings = copy_rings(values_of(points), values_of(starts));
    mesh = value_of(triangulate(rings.rings(), options));
    vertices.reserve(2 * (rings.x.size() + mesh.new_x.size()));
    append_vertices(vertices, rings.rings(), mesh);
  }
  return py::make_tuple(to_rows(std::move(vertices), 2), to_rows(std::move(mesh.triangles), 3),
                        mesh.crossings, mesh.small_corners);
}

py::tuple nest_rings(const Points& points, const Starts& starts) {
  expect_rows(points, 2, "points");
  Nesting nesting;
  {
    const NoGil unlocked;
    const Outline rings = copy_rings(values_of(points), values_of(starts));
    nesting = value_of(nest(rings.rings()));
  }
  return py::make_tuple(to_array(std::move(nesting.parent)), to_array(std::move(nesting.depth)));
}

py::tuple valid_rings(const Points& points, const Starts& starts) {
  expect_rows(points, 2, "points");
  Outline outline;
  {
    const NoGil unlocked;
    const Outline rings = copy_rings(values_of(points), values_of(starts));
    outline = value_of(make_valid(rings.rings()));
  }
  return to_tuple(outline);
}

/// (reason, ring, vertex) each.
py::list flaws_of(const Points& points, const Starts& starts, std::size_t most) {
  expect_rows(points, 2, "points");
  std::vector<Flaw> flaws;
  {
    const NoGil unlocked;
    const Outline rings = copy_rings(values_of(points), values_of(starts));
    flaws = find_flaws(rings.rings(), most);
  }
  py::list list;
  for (const Flaw& flaw : flaws) list.append(py::make_tuple(flaw.message, flaw.ring, flaw.vertex));
  return list;
}

/// Many polygons, the rings of one behind those of the other.
struct Records {
  std::vector<double> pairs;
  std::vector<std::int64_t> starts;  ///< of rings, in the points of all
  std::vector<std::int64_t> points;  ///< where each record's begin; one more, the end
  std::vector<std::int64_t> rings;   ///< the same of its rings

  std::size_t size() const { return points.size() - 1; }
};

/// Offsets run from 0 to `end` and never back.
bool are_offsets(std::span<const std::int64_t> offsets, std::size_t end) {
  return !offsets.empty() && offsets.front() == 0 && std::cmp_equal(offsets.back(), end) &&
         std::is_sorted(offsets.begin(), offsets.end());
}

Outline rings_of(const Records& records, std::size_t record) {
  const auto first = static_cast<std::size_t>(records.points[record]);
  const auto end = static_cast<std::size_t>(records.points[record + 1]);
  // What has more points than an int32 counts is refused before its starts are looked at.
  std::vector<std::int32_t> starts;
  for (std::int64_t ring = records.rings[record]; ring < records.rings[record + 1]; ++ring) {
    const std::int64_t start =
        records.starts[static_cast<std::size_t>(ring)] - records.points[record];
    starts.push_back(static_cast<std::int32_t>(
        std::clamp<std::int64_t>(start, -1, std::numeric_limits<std::int32_t>::max())));
  }
  return copy_rings(std::span(records.pairs).subspan(2 * first, 2 * (end - first)), starts);
}

/// The mesh of each record or what is wrong with it.
struct RecordResult {
  Mesh mesh;
  Flaw flaw;
};

/// Threads take one record after the other until none is left, or memory is short.
std::vector<RecordResult> triangulate_all(const Records& records, const MeshOptions& options,
                                          std::size_t jobs) {
  std::vector<RecordResult> results(records.size());
  std::atomic<std::size_t> next = 0;
  std::vector<std::exception_ptr> failures(jobs);
  const auto work = [&](std::size_t job) {
    try {
      for (std::size_t i = next++; i < results.size(); i = next++) {
        auto mesh = triangulate(rings_of(records, i).rings(), options);
        if (mesh) {
          results[i].mesh = *std::move(mesh);
        } else {
          results[i].flaw = std::move(mesh.error());
        }
      }
    } catch (...) {
      failures[job] = std::current_exception();
      next = results.size();
    }
  };
  {
    std::vector<std::jthread> threads;
    // Where the host has no more threads to give, those that there are do the work.
    try {
      for (std::size_t job = 1; job < jobs; ++job) threads.emplace_back(work, job);
    } catch (const std::system_error&) {
    }
    work(0);
  }
  for (const std::exception_ptr& failure : failures) {
    if (failure) std::rethrow_exception(failure);
  }
  return results;
}

/// (vertices, vertex offsets, triangles, triangle offsets, flaws): the triangles of all records
/// number the vertices of all; flaws are (record, kind, reason, ring, vertex).
py::tuple triangulate_many(const Points& points, const InputArray<std::int64_t>& starts,
                           const InputArray<std::int64_t>& point_offsets,
                           const InputArray<std::int64_t>& ring_offsets, const MeshOptions& options,
                           std::size_t jobs) {
  expect_rows(points, 2, "points");
  if (!are_offsets(values_of(point_offsets), static_cast<std::size_t>(points.shape(0))) ||
      !are_offsets(values_of(ring_offsets), static_cast<std::size_t>(starts.size())) ||
      point_offsets.size() != ring_offsets.size()) {
    throw std::invalid_argument("offsets that do not fit the points and rings");
  }
  std::vector<double> vertices;
  std::vector<std::uint32_t> triangles;
  std::vector<std::int64_t> vertex_offsets{0};
  std::vector<std::int64_t> triangle_offsets{0};
  std::vector<RecordResult> results;
  {
    const NoGil unlocked;
    const auto copy = [](const auto& array) {
      const auto values = values_of(array);
      return std::vector(values.begin(), values.end());
    };
    const Records records{copy(points), copy(starts), copy(point_offsets), copy(ring_offsets)};
    results =
        triangulate_all(records, options,
                        std::clamp<std::size_t>(jobs, 1, std::max<std::size_t>(records.size(), 1)));
    for (std::size_t i = 0; i < results.size(); ++i) {
      RecordResult& result = results[i];
      if (result.flaw.kind == ErrorKind::out_of_memory) throw std::bad_alloc();
      if (!result.flaw) {
        const std::size_t base = vertices.size() / 2;
        append_vertices(vertices, rings_of(records, i).rings(), result.mesh);
        if (vertices.size() / 2 > std::size_t{std::numeric_limits<std::uint32_t>::max()}) {
          throw std::invalid_argument("more vertices than 32 bits number: take fewer records");
        }
        for (const std::uint32_t vertex : result.mesh.triangles) {
          triangles.push_back(static_cast<std::uint32_t>(base) + vertex);
        }
        result.mesh = {};
      }
      vertex_offsets.push_back(static_cast<std::int64_t>(vertices.size() / 2));
      triangle_offsets.push_back(static_cast<std::int64_t>(triangles.size() / 3));
    }
  }
  py::list flaws;
  for (std::size_t i = 0; i < results.size(); ++i) {
    const Flaw& flaw = results[i].flaw;
    if (!flaw) continue;
    flaws.append(
        py::make_tuple(i, static_cast<int>(flaw.kind), flaw.message, flaw.ring, flaw.vertex));
  }
  return py::make_tuple(to_rows(std::move(vertices), 2), to_array(std::move(vertex_offsets)),
                        to_rows(std::move(triangles), 3), to_array(std::move(triangle_offsets)),
                        flaws);
}

}  // namespace

void add_mesh(py::module_& module) {
  py::class_<MeshOptions>(module, "MeshOptions")
      .def(py::init(&make_options), py::arg("delaunay"), py::arg("split_crossings"),
           py::arg("longest_side"), py::arg("least_angle"), py::arg("most_triangles"));
  module.def("triangulate", &triangulate_one, py::arg("points"), py::arg("starts"),
             py::arg("options"));
  module.def("triangulate_many", &triangulate_many, py::arg("points"), py::arg("starts"),
             py::arg("point_offsets"), py::arg("ring_offsets"), py::arg("options"),
             py::arg("jobs"));
  module.def("nest", &nest_rings, py::arg("points"), py::arg("starts"));
  module.def("make_valid", &valid_rings, py::arg("points"), py::arg("starts"));
  module.def("find_flaws", &flaws_of, py::arg("points"), py::arg("starts"), py::arg("most"));
}

}  // namespace kzgis::python
