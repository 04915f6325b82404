// The file side of USGS DEM reading: blocks of 1024 bytes, their byte counter, and the
// readers of single fields.  The format is that of "Standards for Digital Elevation Models"
// (USGS), as the classic classes understand it; dem/layout.h has the fields.
//
// The counter says how many bytes of the present block are used.  It is kept beside the stream
// and not derived from its position: `skipFile` and the accounting of single bytes move the two
// in ways of their own (docs/classic.md).  What holds between
// operations is counter < 1021.  A byte that would bring the counter to 1021 belongs to the next
// block: the stream moves on by 1024 less the counter, the counter becomes 0, and that byte is
// not counted there.

#include <algorithm>
#include <iostream>
#include <limits>
#include <string>

#include "dem/layout.h"
#include "dem/number_text.h"
#include "kzgis/dem.h"
#include "kzgis/filetools.h"
#include "platform/named_pipe.h"

DEM_LRA::DEM_LRA() = default;

DEM_LRA::DEM_LRA(const UtString& name) {
  setFN(name);
  resetByteCount();
}

// The message shows the name as it was passed, `fetchFileName` the expanded one.
int DEM_LRA::setFN(const UtString& name) {
  if (is_open()) close();
  char expanded[kzgis::kPathBytes];
  FILEmap_variables(name.c_str(), expanded);  // leaves an empty name when it is too long
  file_name_ = expanded;
  clear();
  if (kzgis::is_named_pipe(file_name_.c_str())) {
    setstate(failbit);
  } else {
    open(file_name_.c_str());
  }
  ingested_ = 0;
  if (!is_open()) {
    std::cerr << "DEM_LRA::setFN(): Could not open " << name << std::endl;
    return -1;
  }
  byte_count_ = 0;
  return 1;
}

// The flags are cleared even if the close has failed: this operation cannot.  The fields of the
// last file stay readable.
int DEM_LRA::closeFN() {
  if (is_open()) close();
  clear();
  ingested_ = 0;
  return 1;
}

UtString DEM_LRA::fetchFileName() const { return file_name_; }
int DEM_LRA::fetchLRAIngest() const { return ingested_; }
void DEM_LRA::setLRAIngest(int ingested) { ingested_ = ingested; }

int DEM_LRA::fetchByteCount() const { return byte_count_; }
void DEM_LRA::resetByteCount() { byte_count_ = 0; }

/// Moves the stream on, as a seek would, and tells the truth about the end of the file.
///
/// A seek clears the end-of-file flag and may stand past the end without setting it, so that
/// what follows would start anew on a file that is over.  Reading on has no such lapse, and
/// keeps the stream's buffer.
void DEM_LRA::move_forward(std::int64_t bytes) {
  if (!good()) return;
  if (bytes < 0) {
    seekg(bytes, std::ios_base::cur);
    return;
  }
  // Where a stream counts in 32 bits, no file is longer than they count.
  constexpr std::int64_t kMost = std::numeric_limits<std::streamsize>::max();
  ignore(static_cast<std::streamsize>(std::min(bytes, kMost)));
  // An `ignore` that ends at the last byte may look one further and find the end of the file;
  // a seek would not, and neither may the next reader fail for it.
  if (eof() && gcount() == bytes) clear(rdstate() & ~std::ios_base::eofbit);
}

int DEM_LRA::addByteCount(int n) {
  // In 64 bits, and with a floor: a derived class may count any number, a negative one too.
  const std::int64_t sum = std::int64_t{byte_count_} + n;
  if (sum < kzgis::dem::kBlockLimit) {
    byte_count_ = static_cast<int>(
        std::max<std::int64_t>(sum, std::numeric_limits<int>::min() + kzgis::dem::kBlockBytes));
    return byte_count_;
  }
  moveToNextBlock();
  return byte_count_;
}

int DEM_LRA::incByteCount() { return addByteCount(1); }

void DEM_LRA::moveToNextBlock() {
  if (!is_open()) return;
  move_forward(std::int64_t{kzgis::dem::kBlockBytes} - byte_count_);
  byte_count_ = 0;
}

// The stream has moved already when the bytes are counted.  A skip that reaches the end of its
// block therefore moves on once more, by what the block had left before it
// (docs/classic.md).
int DEM_LRA::skipFile(int n) {
  move_forward(n);
  if (!good()) return -1;
  addByteCount(n);
  return 1;
}

// Every reader leaves its variable alone, but for texts, when the field is not there in full.

int DEM_LRA::readFile(char* c) {
  incByteCount();
  const int read = get();
  if (!good()) return -1;
  *c = static_cast<char>(read);
  return 1;
}

/// Counts and reads bytes one after another, those of a block in one piece.
///
/// The counter and the stream end as by `incByteCount` and `get` for each byte.  The caller
/// asks for no more than the block has left, or for one byte where it has none left: that one
/// moves to the next block.
/// @return how many of the `most` there were before the end of the file
int DEM_LRA::read_in_block(char* bytes, int most) {
  incByteCount();
  read(bytes, most);
  const auto got = static_cast<int>(gcount());
  // A byte that is not there has been asked for, and counts.
  byte_count_ += std::min(got, most - 1);
  return got;
}

// A text may begin in one block and end in the next.  Integers alone are kept in one piece, and
// dates with them; the interface makes that difference.
int DEM_LRA::readFile(UtString* s, int width) {
  *s = "";
  if (width < 0) return -1;
  std::string text;
  char piece[kzgis::dem::kBlockLimit];
  for (int missing = width; missing > 0;) {
    if (!good()) break;
    // At 1020 one byte, uncounted, begins the next block.
    const int room = kzgis::dem::kBlockLimit - 1 - std::max(byte_count_, 0);
    const int wanted = std::min(missing, std::max(room, 1));
    const int got = read_in_block(piece, wanted);
    text.append(piece, static_cast<std::size_t>(got));
    missing -= got;
  }
  // A field that the end of the file cuts short has no NUL, and the caller its -1.
  const bool whole = text.size() == static_cast<std::size_t>(width);
  if (whole) text += '\0';
  *s = text;
  return whole ? 1 : -1;
}

// The room is bounded, since a width is the caller's and may be any number.  What stands behind
// the digits of a field is not looked at: reading judges nothing.
int DEM_LRA::readFile(int* v, int width) {
  field_buffer_.reserve(static_cast<std::size_t>(std::clamp(width, 0, kzgis::dem::kBlockBytes)));
  if (std::int64_t{byte_count_} + width >= kzgis::dem::kBlockLimit) moveToNextBlock();
  if (readFile(&field_buffer_, width) == -1) return -1;
  *v = kzgis::dem::integer_of(field_buffer_.str()).value;
  return 1;
}

// `real_of` knows exponents with E only, as `atof` does: 0.15D+03 is 0.15.
int DEM_LRA::readFile(double* v, int width) {
  UtString text;
  if (readFile(&text, width) == -1) return -1;
  *v = kzgis::dem::real_of(text.str()).value;
  return 1;
}

int DEM_LRA::readFile(UtDate* d, int width) {
  int n = 0;
  if (readFile(&n, width) == -1) return -1;
  *d = kzgis::dem::date_of(n);
  return 1;
}

// As many single reads of six characters would do the same, one block at most.  What is left of
// a field that the end of the file cuts short counts as read and is no elevation.
int DEM_LRA::read_elevations(int* values, int most) {
  using kzgis::dem::kElevationWidth;
  constexpr int kBefore = 2;  // bytes in front of a field that plain_number looks at
  char piece[kBefore + kzgis::dem::kBlockLimit];
  piece[0] = piece[1] = 0;
  if (std::int64_t{byte_count_} + kElevationWidth >= kzgis::dem::kBlockLimit) moveToNextBlock();
  if (!good()) return 0;
  const int room = (kzgis::dem::kBlockLimit - 1 - std::max(byte_count_, 0)) / kElevationWidth;
  const int count =
      read_in_block(piece + kBefore, std::min(most, room) * kElevationWidth) / kElevationWidth;
  if (kzgis::dem::plain_numbers(piece + kBefore, static_cast<std::size_t>(count), values)) {
    return count;
  }
  for (int i = 0; i < count; ++i) {
    const char* const field = piece + kBefore + std::ptrdiff_t{i} * kElevationWidth;
    const kzgis::dem::PlainNumber plain = kzgis::dem::plain_number(field);
    values[i] =
        plain.odd == 0 ? plain.value : kzgis::dem::integer_of({field, kElevationWidth}).value;
  }
  return count;
}
