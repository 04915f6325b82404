// Which ring lies in which, learnt from rings that are crossed on the way from point to point.

#ifndef KZGIS_MESH_CONTAINMENT_H
#define KZGIS_MESH_CONTAINMENT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "mesh/sites.h"

namespace kzgis::mesh {

/// The forest of rings, grown while somebody walks from point to point.
///
/// The insides of the rings must form a forest: of any two, one lies in the other or they have
/// nothing in common.  Then the rings around a point are a chain, each in the next, and the
/// innermost of them names them all.  Whoever knows the chain of one point and which rings lie
/// between it and another point is told the chain of that other point.
///
/// Rings that no point has told apart so far are kept in one group, which has one place in the
/// forest.  The first point that lies in some of them and not in the others parts the group, and
/// decides for ever which part is the inner one: had any point decided otherwise, the two
/// would not have been together until now.  Nothing but the parity of crossings is asked for,
/// no area and no coordinate.
///
/// A step takes time in proportion to the number of rings that are crossed.
class Containment {
 public:
  /// The rings around a point: the place of the innermost group; kNone outside all.
  using Chain = std::uint32_t;

  /// Two rings that have points in common, and each of them others too.
  struct Pair {
    std::uint32_t ring, other;
  };

  explicit Containment(std::size_t rings);

  /// The chain of a point, seen from one whose chain is `from`.
  ///
  /// @param crossed  the rings that have just one of the two points inside, each once
  /// @return of no use once there is an `overlap`, and nothing more is learnt then
  Chain across(Chain from, std::span<const std::uint32_t> crossed);

  /// Two rings that cannot be in one forest, once some have been met.
  const std::optional<Pair>& overlap() const { return overlap_; }

  /// Two rings that no point has told apart, the first such pair, the lower number first.
  std::optional<Pair> repetition() const;

  /// Whether a point was found inside the ring.
  bool has_inside(std::uint32_t ring) const { return group_of_[ring] != kNone; }

  /// For each ring the smallest other one around it, or kNone.
  ///
  /// Before: there is neither an overlap nor a repetition.
  std::vector<std::uint32_t> parents() const;

 private:
  struct Group {
    std::uint32_t place = kNone;
    std::uint32_t size = 0;
    std::uint32_t crossed = 0;     // how many of its rings the step at hand crosses
    std::uint32_t parted = kNone;  // the group that these make up now
  };
  struct Place {
    std::uint32_t parent = kNone;
    std::uint32_t group = kNone;
    std::uint32_t entering = kNone;  // a place below it, entered in the step at hand
  };

  std::uint32_t add_group(std::uint32_t size);
  std::uint32_t add_place(std::uint32_t parent, std::uint32_t group);
  std::uint32_t part(std::uint32_t group, bool inner);
  Chain leave(Chain from);
  bool enter(Chain& chain);
  void forget_step(std::span<const std::uint32_t> crossed);
  void find_overlap(Chain chain, std::span<const std::uint32_t> crossed);
  std::uint32_t ring_at(std::uint32_t place) const;

  std::vector<std::uint32_t> group_of_;  // of each ring; kNone before it was met
  std::vector<Group> groups_;
  std::vector<Place> places_;
  std::optional<Pair> overlap_;
  // Of the step at hand, kept for their memory.
  std::vector<std::uint32_t> touched_;  // groups
  std::vector<std::uint32_t> unmet_;    // rings
};

}  // namespace kzgis::mesh

#endif
