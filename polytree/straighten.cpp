#include "polytree/straighten.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

#include "polytree/exact.h"

namespace kzgis::polytree {

namespace {

class Straightener {
 public:
  Straightener(const double (*vertices)[2], std::span<kz_long[3]> triangles)
      : vertices_(vertices), triangles_(triangles) {}

  void run() {
    for (std::size_t t = 0; t < triangles_.size(); ++t) {
      if (clockwise(triangles_[t])) waiting_.push_back(t);
    }
    if (waiting_.empty()) return;
    index_edges();
    // Along a row of vertices almost on one line, a clockwise triangle may have to wander
    // to the end of the row before it can go.
    std::size_t wanderings = 64 + 16 * waiting_.size();
    while (!waiting_.empty()) {
      const std::size_t t = waiting_.back();
      waiting_.pop_back();
      if (!clockwise(triangles_[t])) continue;
      if (exchange(t, 0) || exchange(t, 1) || exchange(t, 2)) continue;
      if (wanderings == 0 || !exchange(t, longest_side(t), true)) return;
      --wanderings;
    }
  }

 private:
  bool clockwise(kz_long a, kz_long b, kz_long c) const {
    const auto at = [this](kz_long v) { return vertices_[v]; };
    return exact::orientation(at(a)[0], at(a)[1], at(b)[0], at(b)[1], at(c)[0], at(c)[1]) < 0;
  }
  bool clockwise(const kz_long (&t)[3]) const { return clockwise(t[0], t[1], t[2]); }

  static std::uint64_t edge(kz_long a, kz_long b) {
    return static_cast<std::uint64_t>(a) << 32 | static_cast<std::uint64_t>(b);
  }

  void index_edges() {
    owner_.reserve(3 * triangles_.size());
    for (std::size_t t = 0; t < triangles_.size(); ++t) own(t);
  }

  void own(std::size_t t) {
    for (std::size_t i = 0; i < 3; ++i) {
      owner_[edge(triangles_[t][i], triangles_[t][(i + 1) % 3])] = t;
    }
  }

  /// Exchanges the diagonal between triangle `t` and its neighbour across the i-th side, if
  /// that leaves fewer clockwise triangles, or as many where `as_many` allows it.
  bool exchange(std::size_t t, std::size_t i, bool as_many = false) {
    const kz_long b = triangles_[t][i];
    const kz_long c = triangles_[t][(i + 1) % 3];
    const kz_long a = triangles_[t][(i + 2) % 3];
    const auto neighbour = owner_.find(edge(c, b));
    if (neighbour == owner_.end()) return false;
    const std::size_t u = neighbour->second;
    const auto& other = triangles_[u];
    const kz_long d = other[0] != b && other[0] != c   ? other[0]
                      : other[1] != b && other[1] != c ? other[1]
                                                       : other[2];
    const int before = 1 + (clockwise(other) ? 1 : 0);
    const int after = (clockwise(a, b, d) ? 1 : 0) + (clockwise(a, d, c) ? 1 : 0);
    if (d == a || after > before || (after == before && !as_many)) return false;
    owner_.erase(edge(b, c));
    owner_.erase(neighbour);
    set(t, a, b, d);
    set(u, a, d, c);
    return true;
  }

  std::size_t longest_side(std::size_t t) const {
    std::size_t longest = 0;
    double most = -1.0;
    for (std::size_t i = 0; i < 3; ++i) {
      const double* const p = vertices_[triangles_[t][i]];
      const double* const q = vertices_[triangles_[t][(i + 1) % 3]];
      const double length = std::hypot(q[0] - p[0], q[1] - p[1]);
      if (length > most) {
        most = length;
        longest = i;
      }
    }
    return longest;
  }

  void set(std::size_t t, kz_long a, kz_long b, kz_long c) {
    triangles_[t][0] = a;
    triangles_[t][1] = b;
    triangles_[t][2] = c;
    own(t);
    if (clockwise(a, b, c)) waiting_.push_back(t);
  }

  const double (*vertices_)[2];
  std::span<kz_long[3]> triangles_;
  std::vector<std::size_t> waiting_;
  std::unordered_map<std::uint64_t, std::size_t> owner_;  // of each directed edge
};

}  // namespace

void straighten(const double (*vertices)[2], std::span<kz_long[3]> triangles) {
  Straightener(vertices, triangles).run();
}

}  // namespace kzgis::polytree
