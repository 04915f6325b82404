// The chains of corners that a sweep leaves behind while it cuts a face into triangles.

#ifndef KZGIS_MESH_CHAINS_H
#define KZGIS_MESH_CHAINS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mesh/sites.h"

namespace kzgis::mesh {

/// A sweep line crosses a face in intervals, each between a side below it and a side above it.
///
/// To the left of the line, from the left end of the one side to that of the other, an interval
/// ends in a chain of sites that never turns right on the way up: whatever could be cut off has
/// been.  The site that came last lies farthest to the right, and it sees along the line; from
/// there the chain leads back to the left both ways.
///
/// After S. Hertel and K. Mehlhorn, "Fast triangulation of simple polygons", Foundations of
/// Computation Theory (1983).  Triangles come out counter-clockwise, none of them flat.
class Chains {
 public:
  /// The ends of an interval's chain, and what came last.
  struct Chain {
    std::uint32_t bottom = kNone, top = kNone, last = kNone;
  };

  /// @param triangles  three sites are appended for each
  Chains(const Sites& sites, std::vector<std::uint32_t>& triangles)
      : sites_(sites), triangles_(triangles) {}

  void reserve(std::size_t corners) { links_.reserve(corners); }

  /// Begins an interval whose two sides begin at a site.
  Chain open(std::uint32_t site) {
    const std::uint32_t link = add_link(site);
    return {link, link, link};
  }

  /// Ends an interval whose two sides end at a site: what is left of it is cut up.
  void close(const Chain& chain, std::uint32_t site) {
    for (std::uint32_t l = chain.bottom; links_[l].above != kNone; l = links_[l].above) {
      add_triangle(site, links_[links_[l].above].site, links_[l].site);
    }
  }

  /// Cuts off what a site on the lower side sees of the chain, and puts the site there.
  void put_at_bottom(Chain& chain, std::uint32_t site) {
    std::uint32_t& end = chain.bottom;
    for (; links_[end].above != kNone; end = links_[end].above) {
      const std::uint32_t next = links_[links_[end].above].site;
      if (sites_.turn(site, links_[end].site, next) >= 0) break;
      add_triangle(site, next, links_[end].site);
    }
    const std::uint32_t link = add_link(site);
    links_[link].above = end;
    links_[end].below = link;
    end = chain.last = link;
  }

  /// The same with a site on the upper side.
  void put_on_top(Chain& chain, std::uint32_t site) {
    std::uint32_t& end = chain.top;
    for (; links_[end].below != kNone; end = links_[end].below) {
      const std::uint32_t next = links_[links_[end].below].site;
      if (sites_.turn(next, links_[end].site, site) >= 0) break;
      add_triangle(site, links_[end].site, next);
    }
    const std::uint32_t link = add_link(site);
    links_[link].below = end;
    links_[end].above = link;
    end = chain.last = link;
  }

  /// Parts an interval in two at a site in the middle of it, from which two sides begin.
  ///
  /// @param chain  becomes that of the lower part
  /// @return that of the upper part
  Chain split(Chain& chain, std::uint32_t site) {
    // The chain parts at the site that came last, which belongs to both parts.
    const std::uint32_t own = chain.last;
    const std::uint32_t copy = add_link(links_[own].site);
    links_[copy].above = links_[own].above;
    if (links_[own].above != kNone) links_[links_[own].above].below = copy;
    links_[own].above = kNone;
    Chain upper{copy, chain.top == own ? copy : chain.top, copy};
    put_at_bottom(upper, site);
    chain.top = own;
    put_on_top(chain, site);
    return upper;
  }

  /// Makes two intervals one, at a site between them where the upper side of the lower one and the
  /// lower side of the upper one end.
  ///
  /// @param chain  of the lower interval; becomes that of both
  void merge(Chain& chain, Chain upper, std::uint32_t site) {
    put_on_top(chain, site);
    put_at_bottom(upper, site);
    // The upper one's link for the site gives way to the lower one's.
    const std::uint32_t next = links_[upper.bottom].above;
    links_[chain.last].above = next;
    if (next != kNone) {
      links_[next].below = chain.last;
      chain.top = upper.top;
    }
  }

 private:
  /// A place in a chain.
  struct Link {
    std::uint32_t site;
    std::uint32_t below = kNone, above = kNone;  // links; kNone at the ends
  };

  std::uint32_t add_link(std::uint32_t site) {
    links_.push_back({site});
    return static_cast<std::uint32_t>(links_.size() - 1);
  }

  void add_triangle(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    triangles_.insert(triangles_.end(), {a, b, c});
  }

  const Sites& sites_;
  std::vector<std::uint32_t>& triangles_;
  std::vector<Link> links_;
};

}  // namespace kzgis::mesh

#endif
