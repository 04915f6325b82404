// The forest of rings, grown step by step.
//
// Between steps, every place but the outermost has its parent, all groups have rings, and of
// every point seen so far the rings around it are those of one place and of the places above
// it.  For two places one above the other a point was seen that lies in the upper one alone, and
// for two that are not, a point of each outside the other: that is why a chain that does not
// fit the forest is the proof of an overlap, and not of a wrong guess.

#include "mesh/containment.h"

#include <algorithm>

namespace kzgis::mesh {

Containment::Containment(std::size_t rings) : group_of_(rings, kNone) {}

std::uint32_t Containment::add_group(std::uint32_t size) {
  groups_.push_back({.place = kNone, .size = size});
  return static_cast<std::uint32_t>(groups_.size() - 1);
}

std::uint32_t Containment::add_place(std::uint32_t parent, std::uint32_t group) {
  places_.push_back({.parent = parent, .group = group});
  const auto place = static_cast<std::uint32_t>(places_.size() - 1);
  groups_[group].place = place;
  return place;
}

/// Parts from a group the rings that are crossed, as its inner or its outer half.
///
/// The inner half keeps the place: every chain and every child that refers to it lies in all
/// of the old group's rings, and so in the inner half.
///
/// @return the group of those that are crossed
std::uint32_t Containment::part(std::uint32_t group, bool inner) {
  const std::uint32_t crossed = add_group(groups_[group].crossed);
  groups_[group].size -= groups_[group].crossed;
  groups_[group].parted = crossed;
  const std::uint32_t place = groups_[group].place;
  const std::uint32_t outer_group = inner ? group : crossed;
  const std::uint32_t inner_group = inner ? crossed : group;
  places_[place].parent = add_place(places_[place].parent, outer_group);
  places_[place].group = inner_group;
  groups_[inner_group].place = place;
  return crossed;
}

Containment::Chain Containment::across(Chain from, std::span<const std::uint32_t> crossed) {
  if (overlap_) return kNone;
  touched_.clear();
  unmet_.clear();
  for (const std::uint32_t ring : crossed) {
    const std::uint32_t group = group_of_[ring];
    if (group == kNone) {
      unmet_.push_back(ring);
    } else if (groups_[group].crossed++ == 0) {
      touched_.push_back(group);
    }
  }
  // On the way from the one point to the other, rings are left first and entered afterwards, as
  // if the way led outwards as far as needed and then inwards: which rings lie around a point
  // does not depend on the way to it.
  Chain chain = leave(from);
  if (!enter(chain)) {
    find_overlap(chain, crossed);
    return kNone;
  }
  // Rings that are met for the first time lie inside all that were met before and are around
  // the point too: those hold some earlier point, which these do not.
  if (!unmet_.empty()) {
    const std::uint32_t group = add_group(static_cast<std::uint32_t>(unmet_.size()));
    for (const std::uint32_t ring : unmet_) group_of_[ring] = group;
    chain = add_place(chain, group);
  }
  forget_step(crossed);
  return chain;
}

/// Leaves the innermost groups, as long as they are crossed.  Of a group that is crossed in
/// part, those that stay are around the point behind, and so the outer half.
/// @return what is left of the chain; what was left has nothing crossed any more
Containment::Chain Containment::leave(Chain from) {
  Chain chain = from;
  while (chain != kNone) {
    const std::uint32_t group = places_[chain].group;
    if (groups_[group].crossed == 0) break;
    if (groups_[group].crossed < groups_[group].size) part(group, true);
    groups_[group].crossed = 0;
    chain = places_[chain].parent;
  }
  return chain;
}

/// Enters the groups that are still crossed, each below the last.  Of a group that is crossed in
/// part, those that are not do not hold the point behind, and are the inner half; nothing below
/// them can be entered then.
/// @return false when they do not all lie below each other
bool Containment::enter(Chain& chain) {
  std::uint32_t outermost = kNone;  // that has no parent
  const auto entering_below = [&](std::uint32_t place) -> std::uint32_t& {
    return place == kNone ? outermost : places_[place].entering;
  };
  std::size_t expected = 0;
  for (const std::uint32_t group : touched_) {
    if (groups_[group].crossed == 0) continue;
    const std::uint32_t place = groups_[group].place;
    entering_below(places_[place].parent) = place;
    ++expected;
  }
  std::size_t entered = 0;
  Chain last = chain;
  bool in_part = false;
  for (std::uint32_t next = entering_below(chain); next != kNone && !in_part;
       next = entering_below(next)) {
    const Group& group = groups_[places_[next].group];
    in_part = group.crossed < group.size;
    last = next;
    ++entered;
  }
  for (const std::uint32_t group : touched_) {
    if (groups_[group].crossed > 0) entering_below(places_[groups_[group].place].parent) = kNone;
  }
  if (entered != expected) return false;
  if (in_part) last = groups_[part(places_[last].group, false)].place;
  chain = last;
  return true;
}

/// Moves the rings of parted groups to their new ones.
void Containment::forget_step(std::span<const std::uint32_t> crossed) {
  for (const std::uint32_t ring : crossed) {
    const std::uint32_t group = group_of_[ring];
    if (group != kNone && groups_[group].parted != kNone) group_of_[ring] = groups_[group].parted;
  }
  for (const std::uint32_t group : touched_) {
    groups_[group].crossed = 0;
    groups_[group].parted = kNone;
  }
}

/// Names two rings that contradict each other, when a step cannot be made: around the point
/// behind are two whose places are not below each other, or one without its parent.
void Containment::find_overlap(Chain chain, std::span<const std::uint32_t> crossed) {
  std::vector<bool> around(places_.size() + touched_.size(), false);  // the point behind
  for (std::uint32_t place = chain; place != kNone; place = places_[place].parent) {
    around[place] = true;
  }
  for (const std::uint32_t group : touched_) {
    if (groups_[group].crossed == 0) continue;
    const std::uint32_t place = groups_[group].place;
    const bool leaves = around[place];
    if (groups_[group].crossed == groups_[group].size) {
      around[place] = !leaves;
    } else {
      // What stays around is the outer half, and so is what is entered.
      const std::uint32_t parted = part(group, leaves);
      around[place] = false;
      around[groups_[leaves ? group : parted].place] = true;
    }
  }
  forget_step(crossed);
  std::vector<std::uint32_t> below(places_.size() + 1, kNone);  // the last for those outermost
  for (std::uint32_t place = 0; place < places_.size(); ++place) {
    if (!around[place]) continue;
    const std::uint32_t parent = places_[place].parent;
    std::uint32_t& first = parent == kNone ? below.back() : below[parent];
    const bool lost = parent != kNone && !around[parent];
    if (lost || first != kNone) {
      overlap_ = Pair{ring_at(place), ring_at(lost ? parent : first)};
      return;
    }
    first = place;
  }
}

/// A ring of the group at a place.
std::uint32_t Containment::ring_at(std::uint32_t place) const {
  const auto ring = std::find(group_of_.begin(), group_of_.end(), places_[place].group);
  return static_cast<std::uint32_t>(ring - group_of_.begin());
}

std::optional<Containment::Pair> Containment::repetition() const {
  std::vector<std::uint32_t> first(groups_.size(), kNone);
  for (std::uint32_t ring = 0; ring < group_of_.size(); ++ring) {
    if (!has_inside(ring)) continue;
    std::uint32_t& other = first[group_of_[ring]];
    if (other != kNone) return Pair{other, ring};
    other = ring;
  }
  return std::nullopt;
}

std::vector<std::uint32_t> Containment::parents() const {
  std::vector<std::uint32_t> ring_of(groups_.size(), kNone);
  for (std::uint32_t ring = 0; ring < group_of_.size(); ++ring) {
    if (has_inside(ring)) ring_of[group_of_[ring]] = ring;
  }
  std::vector<std::uint32_t> parents(group_of_.size(), kNone);
  for (std::uint32_t ring = 0; ring < group_of_.size(); ++ring) {
    if (!has_inside(ring)) continue;
    const std::uint32_t parent = places_[groups_[group_of_[ring]].place].parent;
    if (parent != kNone) parents[ring] = ring_of[places_[parent].group];
  }
  return parents;
}

}  // namespace kzgis::mesh
