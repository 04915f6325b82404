// Sewing halves together, and lines forced in.
//
// Whatever is done, the rings of all points have their arcs in the order of their directions.  So
// two arcs that follow each other round a face can be found without looking at coordinates, and a
// line between two corners of a face goes into both their rings at once.

#include "mesh/net.h"

#include <cstddef>

#include "mesh/sites.h"

namespace kzgis::mesh {

Net::Net(std::span<const exact::Point> points, std::span<const std::uint32_t> numbers)
    : points_(points), arc_of_(points.size(), kNone) {
  arcs_.reserve(6 * numbers.size());
  if (numbers.size() >= 2) divide(numbers);
  for (std::uint32_t arc = 0; arc < size(); ++arc) {
    if (arcs_[arc].next != kNone) arc_of_[from(arc)] = arc;
  }
}

/// A line whose ends have no other.
std::uint32_t Net::add(std::uint32_t from, std::uint32_t to) {
  if (free_.empty()) {
    free_.push_back(size());
    arcs_.resize(arcs_.size() + 2);
  }
  const std::uint32_t arc = free_.back();
  free_.pop_back();
  arcs_[arc] = {from, arc, arc};
  arcs_[arc ^ 1] = {to, arc ^ 1, arc ^ 1};
  return arc;
}

/// Puts an arc into a ring, counter-clockwise from another one.
void Net::insert_behind(std::uint32_t place, std::uint32_t arc) {
  const std::uint32_t next = arcs_[place].next;
  arcs_[arc].previous = place;
  arcs_[arc].next = next;
  arcs_[place].next = arc;
  arcs_[next].previous = arc;
}

/// A line through the face on the left of two arcs, from the end of the one to the beginning of the
/// other.  On its left it has what lies between the beginning of the other and the end of the one.
std::uint32_t Net::connect(std::uint32_t one, std::uint32_t other) {
  const std::uint32_t arc = add(to(one), from(other));
  insert_behind(round_face(one), arc);
  insert_behind(other, arc ^ 1);
  return arc;
}

/// Takes a line out of both its rings.
void Net::remove(std::uint32_t line) {
  for (const std::uint32_t arc : {line, line ^ 1}) {
    Arc& gone = arcs_[arc];
    arcs_[gone.next].previous = gone.previous;
    arcs_[gone.previous].next = gone.next;
    if (arc_of_[gone.from] == arc) arc_of_[gone.from] = gone.next;
    gone.next = kNone;
  }
  free_.push_back(line);
}

/// Triangulates points that follow each other.  The halves are no deeper than their number has
/// binary digits.
Net::Hull Net::divide(std::span<const std::uint32_t> numbers) {
  if (numbers.size() == 2) {
    const std::uint32_t arc = add(numbers[0], numbers[1]);
    return {arc, arc ^ 1};
  }
  if (numbers.size() == 3) {
    const std::uint32_t one = add(numbers[0], numbers[1]);
    const std::uint32_t other = add(numbers[1], numbers[2]);
    insert_behind(one ^ 1, other);
    const int side = turn(numbers[0], numbers[1], numbers[2]);
    if (side == 0) return {one, other ^ 1};
    const std::uint32_t back = connect(other, one);
    return side > 0 ? Hull{one, other ^ 1} : Hull{back ^ 1, back};
  }
  const std::size_t half = numbers.size() / 2;
  const Hull left = divide(numbers.first(half));
  return sew(left, divide(numbers.subspan(half)));
}

/// Joins two triangulations side by side, from their lower common tangent up.
///
/// In every step there is a line between the two, the base, with everything done below it.  The
/// next one goes from one of its ends to a neighbour of the other: to the point that, with the
/// base, makes a circle with no point in it.  Lines of either half with a point in their circle
/// give way.
Net::Hull Net::sew(Hull left, Hull right) {
  // The arcs of the hulls that face each other: down the right flank of the left one and down the
  // left flank of the right one.
  std::uint32_t l = left.right;
  std::uint32_t r = right.left;
  while (true) {
    if (turn(from(l), to(l), from(r)) > 0) {
      l = round_face(l);
    } else if (turn(from(r), to(r), from(l)) < 0) {
      r = arcs_[r ^ 1].next;
    } else {
      break;
    }
  }
  std::uint32_t base = connect(r ^ 1, l);  // from the right half to the left one
  if (from(l) == from(left.left)) left.left = base ^ 1;
  if (from(r) == from(right.right)) right.right = base;
  const auto above = [this, &base](std::uint32_t arc) {
    return turn(to(arc), to(base), from(base)) > 0;
  };
  while (true) {
    std::uint32_t on_left = arcs_[base ^ 1].next;
    const bool left_goes_on = above(on_left);
    if (left_goes_on) {
      while (in_circle(to(base), from(base), to(on_left), to(arcs_[on_left].next))) {
        const std::uint32_t next = arcs_[on_left].next;
        remove(on_left);
        on_left = next;
      }
    }
    std::uint32_t on_right = arcs_[base].previous;
    const bool right_goes_on = above(on_right);
    if (right_goes_on) {
      while (in_circle(to(base), from(base), to(on_right), to(arcs_[on_right].previous))) {
        const std::uint32_t next = arcs_[on_right].previous;
        remove(on_right);
        on_right = next;
      }
    }
    if (!left_goes_on && !right_goes_on) break;
    if (!left_goes_on ||
        (right_goes_on && in_circle(to(on_left), from(on_left), from(on_right), to(on_right)))) {
      base = connect(on_right, base ^ 1);
    } else {
      base = connect(base ^ 1, on_left ^ 1);
    }
  }
  return {left.left, right.right};
}

/// The arc from a to b, if there is one.  Else an arc of a or b behind which, counter-clockwise,
/// the way to the other one begins.
///
/// The rings of both are walked at the same pace, so that a line between a point of few lines and
/// one of very many costs little.
std::uint32_t Net::find_way(std::uint32_t a, std::uint32_t b) const {
  const std::uint32_t first_of_a = arc_of_[a];
  const std::uint32_t first_of_b = arc_of_[b];
  std::uint32_t of_a = first_of_a;
  std::uint32_t of_b = first_of_b;
  do {
    if (to(of_a) == b) return of_a;
    if (to(of_b) == a) return of_b ^ 1;
    of_a = arcs_[of_a].next;
    of_b = arcs_[of_b].next;
  } while (of_a != first_of_a && of_b != first_of_b);
  const bool a_is_done = of_a == first_of_a;
  const std::uint32_t here = a_is_done ? a : b;
  const std::uint32_t there = a_is_done ? b : a;
  std::uint32_t arc = a_is_done ? of_a : of_b;
  while (turn(here, to(arc), there) <= 0 || turn(here, to(arcs_[arc].next), there) >= 0) {
    arc = arcs_[arc].next;
  }
  return arc;
}

std::uint32_t Net::force(std::uint32_t a, std::uint32_t b) {
  const std::uint32_t start = find_way(a, b);
  if (from(start) == a && to(start) == b) return start;
  const std::uint32_t here = from(start);
  const std::uint32_t there = here == a ? b : a;
  // The lines that cross, one after another, from the right hand of the way to its left.
  for (std::uint32_t crossing = round_face(start);;) {
    const std::uint32_t to_apex = round_face(crossing ^ 1);
    const std::uint32_t from_apex = round_face(to_apex);
    const std::uint32_t apex = to(to_apex);
    remove(crossing);
    if (apex == there) {
      // One face is left, with all the ends of these lines round it.
      const std::uint32_t back = connect(to_apex, start);
      fill(back);
      fill(back ^ 1);
      return here == a ? back ^ 1 : back;
    }
    crossing = turn(here, there, apex) > 0 ? to_apex : from_apex;
  }
}

/// Triangulates the face on the left of an arc.
///
/// Of the face's corners, the one that makes an empty circle with the arc belongs to the arc's
/// triangle; on both of its other sides a smaller face remains.
void Net::fill(std::uint32_t base) {
  bases_.assign(1, base);
  while (!bases_.empty()) {
    const std::uint32_t bottom = bases_.back();
    bases_.pop_back();
    const std::uint32_t first = round_face(bottom);
    std::uint32_t best = first;  // ends in the corner that is taken
    for (std::uint32_t arc = round_face(first); to(arc) != from(bottom); arc = round_face(arc)) {
      if (in_circle(from(bottom), to(bottom), to(best), to(arc))) best = arc;
    }
    const std::uint32_t behind = round_face(best);
    const std::uint32_t last = arcs_[bottom].next ^ 1;  // comes to where the arc begins
    if (best != first) bases_.push_back(connect(best, first));
    if (behind != last) bases_.push_back(connect(last, behind));
  }
}

}  // namespace kzgis::mesh
