// A file of any size, seen through a window that moves along it.

#ifndef KZGIS_SHAPE_FILE_WINDOW_H
#define KZGIS_SHAPE_FILE_WINDOW_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>

namespace kzgis::shape_fields {

/// Gives the bytes of a file from any place on, with few reads.
///
/// Whoever goes through the file in order is read ahead for, as far as the window is wide;
/// whoever jumps gets little more than what was asked for.
class FileWindow {
 public:
  FileWindow() = default;  ///< of an empty file
  /// Takes over an open file.  Throws `std::bad_alloc` without memory, the file closed.
  ///
  /// @param width_bytes  of the window, and the most that can be asked for at a time
  FileWindow(std::FILE* file, std::size_t width_bytes);

  /// The size of the file when it was opened; 0 also for a device, which has none.
  std::uint64_t size() const { return size_; }

  /// What the window shows from `offset` on; the next call moves it.
  ///
  /// A read that failed is forgotten: the next call tries again.
  ///
  /// @param least  how many bytes there must be, at least 1
  /// @return at least that many; none when the file does not give them
  std::span<const char> from(std::uint64_t offset, std::size_t least);

 private:
  struct Close {
    void operator()(std::FILE* file) const { (void)std::fclose(file); }
  };

  std::unique_ptr<std::FILE, Close> file_;
  std::unique_ptr<char[]> bytes_;
  std::size_t width_ = 0;
  std::uint64_t size_ = 0;
  std::uint64_t start_ = 0;     ///< where in the file the window begins
  std::size_t held_ = 0;        ///< bytes in the window
  std::uint64_t position_ = 0;  ///< where the file itself stands
};

}  // namespace kzgis::shape_fields

#endif
