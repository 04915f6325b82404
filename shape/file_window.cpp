#include "shape/file_window.h"

#include <algorithm>
#include <cstring>

#ifndef _WIN32
#include <sys/types.h>
#endif

namespace kzgis::shape_fields {
namespace {

/// What is read behind a jump, where nobody may want more: a page.
constexpr std::size_t kJumpBytes = 4096;

constexpr std::uint64_t kNowhere = ~std::uint64_t{0};

// A shapefile may be larger than a `long` can tell.
bool seek(std::FILE* file, std::uint64_t offset, int whence) {
#ifdef _WIN32
  return _fseeki64(file, static_cast<long long>(offset), whence) == 0;
#else
  return fseeko(file, static_cast<off_t>(offset), whence) == 0;
#endif
}

/// The same file, which reads straight into the window from then on.
std::FILE* unbuffered(std::FILE* file) {
  (void)std::setvbuf(file, nullptr, _IONBF, 0);
  return file;
}

std::uint64_t size_of(std::FILE* file) {
  if (!seek(file, 0, SEEK_END)) return 0;
#ifdef _WIN32
  const long long end = _ftelli64(file);
#else
  const off_t end = ftello(file);
#endif
  return end < 0 ? 0 : static_cast<std::uint64_t>(end);
}

}  // namespace

FileWindow::FileWindow(std::FILE* file, std::size_t width_bytes)
    : file_(unbuffered(file)),
      bytes_(new char[width_bytes]),
      width_(width_bytes),
      size_(size_of(file)),
      position_(kNowhere) {}

std::span<const char> FileWindow::from(std::uint64_t offset, std::size_t least) {
  const std::uint64_t end = start_ + held_;
  const bool jumps = offset < start_ || offset > end;
  if (jumps || end - offset < least) {
    // What of the window is still wanted moves to its front.
    const std::size_t kept = jumps ? 0 : static_cast<std::size_t>(end - offset);
    if (kept > 0) std::memmove(bytes_.get(), bytes_.get() + (held_ - kept), kept);
    start_ = offset;
    held_ = kept;

    const std::uint64_t place = start_ + held_;
    if (!file_ || (position_ != place && !seek(file_.get(), place, SEEK_SET))) {
      position_ = kNowhere;
      return {};
    }
    const std::size_t reach = jumps ? std::min(std::max(least, kJumpBytes), width_) : width_;
    const std::size_t wanted = reach - held_;
    const std::size_t got = std::fread(bytes_.get() + held_, 1, wanted, file_.get());
    held_ += got;
    position_ = place + got;
    if (got < wanted) {
      std::clearerr(file_.get());
      position_ = kNowhere;
    }
    if (held_ < least) return {};
  }
  const auto skipped = static_cast<std::size_t>(offset - start_);
  return {bytes_.get() + skipped, held_ - skipped};
}

}  // namespace kzgis::shape_fields
