// A stream buffer over write(2).  The first error stays: later writes may seem to work on a disk
// that was full for a moment, and the file would be short.

#include "tools/support/descriptor_buffer.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kzgis::tools {

void DescriptorBuffer::own(int descriptor) {
  descriptor_ = descriptor;
  setp(bytes_.data(), bytes_.data() + bytes_.size());
}

int DescriptorBuffer::close() {
  if (descriptor_ < 0) return error_;
  DescriptorBuffer::sync();
  if (::close(std::exchange(descriptor_, -1)) != 0 && error_ == 0) error_ = errno;
  setp(nullptr, nullptr);
  return error_;
}

/// Empties the buffer to make room for one more character.
DescriptorBuffer::int_type DescriptorBuffer::overflow(int_type c) {
  if (descriptor_ < 0 || sync() != 0) return traits_type::eof();
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  *pptr() = traits_type::to_char_type(c);
  pbump(1);
  return c;
}

int DescriptorBuffer::sync() {
  const char* next = pbase();
  while (error_ == 0 && next != pptr()) {
    const ssize_t written = ::write(descriptor_, next, static_cast<std::size_t>(pptr() - next));
    if (written >= 0) {
      next += written;
    } else if (errno != EINTR) {
      error_ = errno;
    }
  }
  if (error_ != 0) return -1;
  setp(pbase(), epptr());
  return 0;
}

}  // namespace kzgis::tools
