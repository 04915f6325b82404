// What holds between calls: either the get area is the window, and the place lies in it or at its
// end, or there is no get area, and the place is `elsewhere_`.

#include "shape/window_buffer.h"

#include <algorithm>
#include <cstring>

namespace kzgis::shape_fields {
namespace {

/// What is read behind a jump, where nobody may want more.
constexpr std::size_t kJumpBytes = 8192;

}  // namespace

WindowBuffer::WindowBuffer(std::ifstream& stream, std::size_t width_bytes)
    : file_(*stream.rdbuf()), bytes_(new char[width_bytes]), width_(width_bytes) {
  std::istream& as_any = stream;
  as_any.rdbuf(this);
}

void WindowBuffer::forget() {
  setg(nullptr, nullptr, nullptr);
  start_ = held_ = elsewhere_ = position_ = 0;
  seeks_ = file_.pubseekoff(0, std::ios_base::cur, std::ios_base::in) != pos_type(off_type(-1));
}

WindowBuffer::int_type WindowBuffer::underflow() {
  if (gptr() != egptr()) return traits_type::to_int_type(*gptr());
  const off_type wanted = place();
  const bool jumps = wanted != start_ + held_;
  // Should the reading throw, it does so from here.
  setg(nullptr, nullptr, nullptr);
  elsewhere_ = wanted;
  held_ = 0;
  if (position_ != wanted &&
      file_.pubseekpos(wanted, std::ios_base::in) == pos_type(off_type(-1))) {
    return traits_type::eof();
  }
  position_ = seeks_ ? -1 : wanted;
  std::size_t reach = jumps ? std::min(kJumpBytes, width_) : width_;
  if (!seeks_) {
    // A terminal: no waiting for more than it says at once.
    if (traits_type::eq_int_type(file_.sgetc(), traits_type::eof())) return traits_type::eof();
    reach = std::min(reach, static_cast<std::size_t>(file_.in_avail()));
  }
  const std::streamsize got = file_.sgetn(bytes_.get(), static_cast<std::streamsize>(reach));
  if (got <= 0) return traits_type::eof();
  start_ = wanted;
  held_ = got;
  // At its end a file may be asked again, and say something else.
  if (!seeks_ || static_cast<std::size_t>(got) == reach) position_ = start_ + held_;
  setg(bytes_.get(), bytes_.get(), bytes_.get() + got);
  return traits_type::to_int_type(*gptr());
}

std::streamsize WindowBuffer::xsgetn(char* bytes, std::streamsize count) {
  std::streamsize done = 0;
  while (done < count) {
    if (held() == 0 && traits_type::eq_int_type(underflow(), traits_type::eof())) break;
    const auto step = std::min(count - done, static_cast<std::streamsize>(held()));
    std::memcpy(bytes + done, next(), static_cast<std::size_t>(step));
    pass(static_cast<std::size_t>(step));
    done += step;
  }
  return done;
}

WindowBuffer::pos_type WindowBuffer::move_to(off_type place) {
  if (place < 0 || !seeks_ || !file_.is_open()) return pos_type(off_type(-1));
  if (held_ > 0 && place >= start_ && place <= start_ + held_) {
    setg(bytes_.get(), bytes_.get() + (place - start_), bytes_.get() + held_);
  } else {
    setg(nullptr, nullptr, nullptr);
    elsewhere_ = place;
  }
  return place;
}

WindowBuffer::pos_type WindowBuffer::seekoff(off_type offset, std::ios_base::seekdir from,
                                             std::ios_base::openmode) {
  if (from == std::ios_base::end) {
    const pos_type end = file_.pubseekoff(offset, from, std::ios_base::in);
    position_ = -1;
    return end == pos_type(off_type(-1)) ? end : move_to(end);
  }
  return move_to(from == std::ios_base::cur ? place() + offset : offset);
}

WindowBuffer::pos_type WindowBuffer::seekpos(pos_type position, std::ios_base::openmode) {
  return move_to(position);
}

}  // namespace kzgis::shape_fields
