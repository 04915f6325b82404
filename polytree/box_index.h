// Finds the boxes that overlap a given one among many.

#ifndef KZGIS_POLYTREE_BOX_INDEX_H
#define KZGIS_POLYTREE_BOX_INDEX_H

#include <cstddef>
#include <vector>

#include "kzgis/types.h"

namespace kzgis::polytree {

/// A bounding box, never NaN; that of nothing is inverted.
struct Box {
  double x_min, y_min, x_max, y_max;

  /// Touching boxes overlap.
  bool overlaps(const Box& other) const {
    return !(x_min > other.x_max || other.x_min > x_max || y_min > other.y_max ||
             other.y_min > y_max);
  }
};

/// A growing set of boxes with a number each.
///
/// Boxes wait in a short list; whenever it is full it becomes a static k-d tree, and two
/// trees of one size become one of twice that size, as the digits of a counter carry
/// (J. L. Bentley and J. B. Saxe, "Decomposable searching problems I", Journal of
/// Algorithms 1 (1980)).  That is the whole reason for the powers of two here.
class BoxIndex {
 public:
  void insert(const Box& box, kz_ulong number);

  /// Appends to `found` the number of every box that overlaps `box`, in no order.
  void find(const Box& box, std::vector<kz_ulong>& found) const;

 private:
  static constexpr std::size_t kLeaf = 64;

  struct Entry {
    Box box;
    kz_ulong number;
  };
  /// Entries in k-d order, a leaf's worth times a power of two, and the box around each
  /// node of the tree: node 1 is the root, 2i and 2i + 1 are the halves of node i.
  struct Tree {
    std::vector<Entry> entries;
    std::vector<Box> around;

    void build();
    void build(std::size_t node, std::size_t begin, std::size_t end, bool by_x);
    void find(std::size_t node, std::size_t begin, std::size_t end, const Box& box,
              std::vector<kz_ulong>& found) const;
  };

  std::vector<Entry> waiting_;
  std::vector<Tree> trees_;  // each smaller than the one before it
};

}  // namespace kzgis::polytree

#endif
