// The buffer of a stream that reads ahead in large steps, and lets what it has be decoded in place.

#ifndef KZGIS_SHAPE_WINDOW_BUFFER_H
#define KZGIS_SHAPE_WINDOW_BUFFER_H

#include <cstddef>
#include <fstream>
#include <memory>
#include <streambuf>

namespace kzgis::shape_fields {

/// Stands between an input stream and its file.
///
/// A stream's own buffer is small, is copied from, and is thrown away by every seek, a seek to
/// where it stands included.  This one keeps its window for as long as seeks end in it.  Whoever
/// goes through the file in order is read ahead for, as far as the window is wide; whoever jumps
/// gets little more than a page.
class WindowBuffer : public std::streambuf {
 public:
  /// Takes the place of the stream's buffer, which goes on opening, closing and reading the file.
  /// Both must outlive the stream's use.  Throws `std::bad_alloc` without memory.
  WindowBuffer(std::ifstream& stream, std::size_t width_bytes);

  /// Begins at the beginning of the file, which has been opened anew.
  void forget();

  /// Bytes that can be had without reading.
  std::size_t held() const { return static_cast<std::size_t>(egptr() - gptr()); }
  /// The first of them; whoever has decoded some passes by them.
  const char* next() const { return gptr(); }
  void pass(std::size_t bytes) { setg(eback(), gptr() + bytes, egptr()); }

 protected:
  int_type underflow() override;
  std::streamsize xsgetn(char* bytes, std::streamsize count) override;
  pos_type seekoff(off_type offset, std::ios_base::seekdir from,
                   std::ios_base::openmode mode) override;
  pos_type seekpos(pos_type position, std::ios_base::openmode mode) override;

 private:
  /// Where the next byte lies in the file.
  off_type place() const { return eback() == nullptr ? elsewhere_ : start_ + (gptr() - eback()); }
  pos_type move_to(off_type place);

  std::filebuf& file_;
  std::unique_ptr<char[]> bytes_;
  std::size_t width_;
  off_type start_ = 0;      ///< where in the file the window begins
  off_type held_ = 0;       ///< bytes in the window
  off_type elsewhere_ = 0;  ///< the place, while it is not in the window
  off_type position_ = 0;   ///< where the file itself stands; -1 when that is not known
  bool seeks_ = true;       ///< where a file cannot seek, no seek succeeds
};

}  // namespace kzgis::shape_fields

#endif
