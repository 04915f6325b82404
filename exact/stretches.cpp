// Stretches counted first by both ends, then end by end on every line through a place.

#include "exact/stretches.h"

#include <algorithm>
#include <cstddef>
#include <tuple>

namespace kzgis::exact {

namespace {

bool cancels(std::int64_t sum, Cancel how) {
  return how == Cancel::to_zero ? sum == 0 : sum % 2 == 0;
}

/// Makes stretches with both ends in common one, and leaves out what cancels: of a polygon
/// whose sides were not cut, nothing remains.
void count_together(std::vector<Stretch>& stretches, Cancel how) {
  std::sort(stretches.begin(), stretches.end(), [](const Stretch& a, const Stretch& b) {
    return std::tie(a.left, a.right) < std::tie(b.left, b.right);
  });
  std::size_t kept = 0;
  for (std::size_t i = 0; i < stretches.size();) {
    Stretch sum = stretches[i++];
    for (; i < stretches.size() && stretches[i].left == sum.left && stretches[i].right == sum.right;
         ++i) {
      sum.times += stretches[i].times;
    }
    if (!cancels(sum.times, how)) stretches[kept++] = sum;
  }
  stretches.resize(kept);
}

/// The end of a stretch at a place, from where the stretch leads towards another place.
struct End {
  std::uint32_t place, towards;
  std::int64_t times;  // of a stretch that ends here, to the right; negative when it begins
};

}  // namespace

bool cancel(std::span<const Point> places, std::vector<Stretch> stretches, Cancel how) {
  count_together(stretches, how);
  std::vector<End> ends;
  ends.reserve(2 * stretches.size());
  for (const Stretch& s : stretches) {
    ends.push_back({s.left, s.right, -s.times});
    ends.push_back({s.right, s.left, s.times});
  }
  // How the line of b turns from the line of a, at the same place, both taken to the right: what
  // leads to the left lies on the same line as what leads to the right, opposite to it.
  const auto turn = [places](const End& a, const End& b) {
    const int seen = orientation(places[a.place], places[a.towards], places[b.towards]);
    return (a.towards > a.place) == (b.towards > b.place) ? seen : -seen;
  };
  std::sort(ends.begin(), ends.end(), [&turn](const End& a, const End& b) {
    return a.place != b.place ? a.place < b.place : turn(a, b) > 0;
  });
  for (std::size_t begin = 0, end = 0; begin < ends.size(); begin = end) {
    std::int64_t sum = 0;
    for (end = begin; end < ends.size() && ends[end].place == ends[begin].place &&
                      turn(ends[begin], ends[end]) == 0;
         ++end) {
      sum += ends[end].times;
    }
    if (!cancels(sum, how)) return false;
  }
  return true;
}

}  // namespace kzgis::exact
