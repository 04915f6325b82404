// What the command says of the meshes of a file when all are made.

#ifndef KZGIS_TOOLS_TRIANGULATE_SUMMARY_H
#define KZGIS_TOOLS_TRIANGULATE_SUMMARY_H

#include <kzgis/chart.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kzgis::tools {

/// The least angle of a triangle in space, in degrees.
double least_angle_deg(const WorldPoint& a, const WorldPoint& b, const WorldPoint& c);

/// Counts of records, and what their triangles are worth.
class Summary {
 public:
  /// The mesh of a record.
  ///
  /// @param area       of the triangles
  /// @param crossings  how many vertices were put where sides cross
  /// @param added      how many vertices are new, those included
  void add(std::size_t rings, double area, std::size_t crossings, std::size_t added,
           std::span<const WorldPoint> points, std::span<const std::uint32_t> triangles);

  void add_refused(std::uint64_t count) { refused_ += count; }
  /// A record that has nothing on the map.
  void add_absent() { ++absent_; }
  void add_null(std::uint64_t count) { null_ += count; }

  /// The last lines that the user reads: counts, and where there are triangles, what became of
  /// their vertices and angles.
  ///
  /// @param repaired  crossings are worth a word even where there were none
  std::string text(bool repaired);

 private:
  std::string quality(bool repaired);

  std::uint64_t records_ = 0;
  std::uint64_t rings_ = 0;
  std::uint64_t refused_ = 0;
  std::uint64_t null_ = 0;
  std::uint64_t absent_ = 0;
  std::uint64_t crossings_ = 0;
  std::uint64_t added_ = 0;
  double area_ = 0.0;
  std::vector<float> least_angles_deg_;  ///< of each triangle
};

}  // namespace kzgis::tools

#endif
