// What a sweep line crosses, in order from below.

#ifndef KZGIS_MESH_LINE_ORDER_H
#define KZGIS_MESH_LINE_ORDER_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "mesh/sites.h"

namespace kzgis::mesh {

/// Numbers in an order that only the caller knows, found by bisection.
///
/// They stand in blocks, none of them empty, of a few hundred at most: the few numbers of a small
/// polygon are one array, and of many only one block and now and then the list of blocks moves.
class LineOrder {
 public:
  /// In front of a number of a block, or at the block's end.
  struct Place {
    std::size_t block, index;
  };

  LineOrder() : blocks_(1) { blocks_[0].reserve(8); }

  /// The place behind all numbers that are below.
  ///
  /// @param below  of a number; true for the first ones in the order, false for the others
  template <class Below>
  Place find(const Below& below) const {
    // The first block is not asked: what is below all others goes there.
    auto block = std::partition_point(blocks_.begin() + 1, blocks_.end(),
                                      [&below](const Block& b) { return below(b.front()); });
    --block;
    const auto number = std::partition_point(block->begin(), block->end(), below);
    return {static_cast<std::size_t>(block - blocks_.begin()),
            static_cast<std::size_t>(number - block->begin())};
  }

  /// The numbers next to a place that was found; kNone at the ends.
  std::uint32_t before(const Place& place) const {
    return place.index > 0 ? blocks_[place.block][place.index - 1] : kNone;
  }
  std::uint32_t behind(const Place& place) const {
    if (place.index < blocks_[place.block].size()) return blocks_[place.block][place.index];
    return place.block + 1 < blocks_.size() ? blocks_[place.block + 1].front() : kNone;
  }

  void insert(const Place& place, std::uint32_t number) {
    Block& block = blocks_[place.block];
    block.insert(block.begin() + static_cast<std::ptrdiff_t>(place.index), number);
    if (block.size() < kMost) return;
    const auto middle = block.begin() + kMost / 2;
    Block upper(middle, block.end());
    block.erase(middle, block.end());
    blocks_.insert(blocks_.begin() + static_cast<std::ptrdiff_t>(place.block) + 1,
                   std::move(upper));
  }

  /// Takes out the number behind a place, which is there.
  void erase(Place place) {
    if (place.index == blocks_[place.block].size()) place = {place.block + 1, 0};
    Block& block = blocks_[place.block];
    block.erase(block.begin() + static_cast<std::ptrdiff_t>(place.index));
    if (block.empty() && blocks_.size() > 1) {
      blocks_.erase(blocks_.begin() + static_cast<std::ptrdiff_t>(place.block));
    }
  }

 private:
  using Block = std::vector<std::uint32_t>;
  static constexpr std::size_t kMost = 512;

  std::vector<Block> blocks_;  // one at least, and only that one may be empty
};

}  // namespace kzgis::mesh

#endif
