// Static k-d trees of boxes, merged as they grow.
//
// After J. L. Bentley, "Multidimensional binary search trees used for associative searching",
// Communications of the ACM 18 (1975): the entries of a node are parted at the middle one, by the
// left edges of their boxes and by the lower ones in turn.  A tree has no links: its entries are
// a power of two of leaves, so that the halves of a range are its children, and a node's number
// says where the box around it stands.  Boxes are never taken out; who asks leaves out what has
// gone (RingTree::find_overlapping).

#include "polytree/box_index.h"

#include <algorithm>
#include <limits>

namespace kzgis::polytree {

void BoxIndex::insert(const Box& box, kz_ulong number) {
  waiting_.push_back({box, number});
  if (waiting_.size() < kLeaf) return;
  // As a digit carries: a tree of the size of the new one makes room for one of twice the size.
  // An entry is built into a tree no more often than the number of entries has binary digits.
  Tree tree;
  tree.entries.swap(waiting_);
  while (!trees_.empty() && trees_.back().entries.size() == tree.entries.size()) {
    const std::vector<Entry>& other = trees_.back().entries;
    tree.entries.insert(tree.entries.end(), other.begin(), other.end());
    trees_.pop_back();
  }
  tree.build();
  trees_.push_back(std::move(tree));
}

void BoxIndex::find(const Box& box, std::vector<kz_ulong>& found) const {
  for (const Entry& entry : waiting_) {
    if (entry.box.overlaps(box)) found.push_back(entry.number);
  }
  for (const Tree& tree : trees_) tree.find(1, 0, tree.entries.size(), box, found);
}

void BoxIndex::Tree::build() {
  around.resize(2 * (entries.size() / kLeaf));
  build(1, 0, entries.size(), true);
}

/// Orders the entries of one node and finds the box around them.  The recursion halves
/// the range, so its depth is the logarithm of the number of leaves.
void BoxIndex::Tree::build(std::size_t node, std::size_t begin, std::size_t end, bool by_x) {
  constexpr double largest = std::numeric_limits<double>::max();
  if (end - begin > kLeaf) {
    const auto at = [this](std::size_t i) {
      return entries.begin() + static_cast<std::ptrdiff_t>(i);
    };
    const std::size_t middle = begin + (end - begin) / 2;
    std::nth_element(at(begin), at(middle), at(end), [by_x](const Entry& a, const Entry& b) {
      return by_x ? a.box.x_min < b.box.x_min : a.box.y_min < b.box.y_min;
    });
    build(2 * node, begin, middle, !by_x);
    build(2 * node + 1, middle, end, !by_x);
  }
  Box all{largest, largest, -largest, -largest};
  for (std::size_t i = begin; i < end; ++i) {
    const Box& box = entries[i].box;
    all.x_min = std::min(all.x_min, box.x_min);
    all.y_min = std::min(all.y_min, box.y_min);
    all.x_max = std::max(all.x_max, box.x_max);
    all.y_max = std::max(all.y_max, box.y_max);
  }
  around[node] = all;
}

/// Visits the nodes whose surrounding box overlaps the one asked for, and no other.
void BoxIndex::Tree::find(std::size_t node, std::size_t begin, std::size_t end, const Box& box,
                          std::vector<kz_ulong>& found) const {
  if (!around[node].overlaps(box)) return;
  if (end - begin == kLeaf) {
    for (std::size_t i = begin; i < end; ++i) {
      if (entries[i].box.overlaps(box)) found.push_back(entries[i].number);
    }
    return;
  }
  const std::size_t middle = begin + (end - begin) / 2;
  find(2 * node, begin, middle, box, found);
  find(2 * node + 1, middle, end, box, found);
}

}  // namespace kzgis::polytree
