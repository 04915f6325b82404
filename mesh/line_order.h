// What a sweep line crosses, in order from below.

#ifndef KZGIS_MESH_LINE_ORDER_H
#define KZGIS_MESH_LINE_ORDER_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "mesh/sites.h"

namespace kzgis::mesh {

/// Numbers in an order that only the caller knows.
///
/// They stand in blocks, none of them empty, and each number knows its block: so a place is found
/// by bisection, first among blocks and then in one, but a number that is known is found in its
/// block without asking the caller anything.
class LineOrder {
 public:
  /// The last number that is below; kNone if none is.
  ///
  /// @param below  of a number; true for the first ones in the order, false for the others
  template <class Below>
  std::uint32_t last(const Below& below) const {
    const auto behind = std::partition_point(
        order_.begin(), order_.end(),
        [this, &below](std::uint32_t block) { return below(blocks_[block].numbers[0]); });
    if (behind == order_.begin()) return kNone;
    const Block& block = blocks_[*(behind - 1)];
    // The first number of the block is below.
    return *(std::partition_point(block.numbers.begin() + 1, block.end(), below) - 1);
  }

  /// The first of all numbers; kNone without any.
  std::uint32_t first() const {
    return order_.empty() ? kNone : blocks_[order_.front()].numbers[0];
  }

  /// Puts a number behind another one, or in front of all (kNone).
  void insert_behind(std::uint32_t before, std::uint32_t number) {
    if (number >= block_of_.size()) block_of_.resize(std::size_t{number} + 1);
    if (order_.empty()) order_.push_back(new_block());
    const std::uint32_t home = before == kNone ? order_.front() : block_of_[before];
    Block& block = blocks_[home];
    auto* const place = before == kNone ? block.numbers.begin() : block.find(before) + 1;
    std::copy_backward(place, block.end(), block.end() + 1);
    *place = number;
    ++block.size;
    block_of_[number] = home;
    if (block.size == kMost) halve(home);
  }

  void erase(std::uint32_t number) {
    const std::uint32_t home = block_of_[number];
    Block& block = blocks_[home];
    auto* const place = block.find(number);
    std::copy(place + 1, block.end(), place);
    if (--block.size > 0) return;
    order_.erase(std::find(order_.begin(), order_.end(), home));
    free_.push_back(home);
  }

 private:
  static constexpr std::size_t kMost = 64;

  struct Block {
    std::array<std::uint32_t, kMost> numbers{};
    std::size_t size = 0;

    const std::uint32_t* end() const { return numbers.data() + size; }
    std::uint32_t* end() { return numbers.data() + size; }
    std::uint32_t* find(std::uint32_t number) { return std::find(numbers.data(), end(), number); }
  };

  std::uint32_t new_block() {
    if (free_.empty()) {
      blocks_.emplace_back();
      return static_cast<std::uint32_t>(blocks_.size() - 1);
    }
    const std::uint32_t block = free_.back();
    free_.pop_back();
    return block;
  }

  /// Moves the upper half of a block into one of its own behind it.
  void halve(std::uint32_t lower) {
    const std::uint32_t upper = new_block();
    Block& from = blocks_[lower];
    Block& to = blocks_[upper];
    std::copy(from.numbers.begin() + kMost / 2, from.numbers.end(), to.numbers.begin());
    from.size = to.size = kMost / 2;
    for (const std::uint32_t* number = to.numbers.data(); number != to.end(); ++number) {
      block_of_[*number] = upper;
    }
    order_.insert(std::find(order_.begin(), order_.end(), lower) + 1, upper);
  }

  std::vector<Block> blocks_;
  std::vector<std::uint32_t> order_;     // blocks
  std::vector<std::uint32_t> block_of_;  // of each number
  std::vector<std::uint32_t> free_;      // blocks that are not in the order
};

}  // namespace kzgis::mesh

#endif
