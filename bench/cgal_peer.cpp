#include "cgal_peer.h"

#include <CGAL/Constrained_Delaunay_triangulation_2.h>
#include <CGAL/Delaunay_mesh_criteria_2.h>
#include <CGAL/Delaunay_mesh_face_base_2.h>
#include <CGAL/Delaunay_mesh_vertex_base_2.h>
#include <CGAL/Delaunay_mesher_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_face_base_with_info_2.h>

#include <cmath>
#include <numbers>
#include <utility>

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
/// A face's info is whether the walk below has seen it.
using FaceBase = CGAL::Delaunay_mesh_face_base_2<
    Kernel, CGAL::Constrained_triangulation_face_base_2<
                Kernel, CGAL::Triangulation_face_base_with_info_2<bool, Kernel>>>;
using Structure =
    CGAL::Triangulation_data_structure_2<CGAL::Delaunay_mesh_vertex_base_2<Kernel>, FaceBase>;
using Triangulation =
    CGAL::Constrained_Delaunay_triangulation_2<Kernel, Structure,
                                               CGAL::No_constraint_intersection_tag>;

/// From the infinite face inwards: every side that is crossed changes the side.
void mark_inside(Triangulation& triangulation) {
  for (const Triangulation::Face_handle face : triangulation.all_face_handles()) {
    face->info() = false;
  }
  std::vector<std::pair<Triangulation::Face_handle, bool>> open{
      {triangulation.infinite_face(), false}};
  while (!open.empty()) {
    const auto [face, inside] = open.back();
    open.pop_back();
    if (face->info()) continue;
    face->info() = true;
    face->set_in_domain(inside);
    for (int i = 0; i < 3; ++i) {
      const bool crossed = face->is_constrained(i);
      if (!face->neighbor(i)->info()) open.emplace_back(face->neighbor(i), inside != crossed);
    }
  }
}

}  // namespace

std::vector<CgalTriangle> cgal_triangles(std::span<const double> x, std::span<const double> y,
                                         std::span<const std::int32_t> counts,
                                         double least_angle_deg) {
  std::vector<Kernel::Point_2> points;
  std::vector<std::pair<std::size_t, std::size_t>> sides;
  for (std::size_t i = 0; i < x.size(); ++i) points.emplace_back(x[i], y[i]);
  std::size_t begin = 0;
  for (const std::int32_t count : counts) {
    const auto size = static_cast<std::size_t>(count);
    for (std::size_t i = 0; i < size; ++i) sides.emplace_back(begin + i, begin + (i + 1) % size);
    begin += size;
  }
  Triangulation triangulation;
  triangulation.insert_constraints(points.begin(), points.end(), sides.begin(), sides.end());
  mark_inside(triangulation);
  if (least_angle_deg > 0.0) {
    const double sine = std::sin(least_angle_deg * std::numbers::pi / 180.0);
    CGAL::refine_Delaunay_mesh_2(triangulation,
                                 CGAL::Delaunay_mesh_criteria_2<Triangulation>(sine * sine), true);
  }
  std::vector<CgalTriangle> result;
  for (const Triangulation::Face_handle face : triangulation.finite_face_handles()) {
    if (!face->is_in_domain()) continue;
    CgalTriangle& triangle = result.emplace_back();
    for (int i = 0; i < 3; ++i) {
      triangle[static_cast<std::size_t>(2 * i)] = face->vertex(i)->point().x();
      triangle[static_cast<std::size_t>(2 * i + 1)] = face->vertex(i)->point().y();
    }
  }
  return result;
}
