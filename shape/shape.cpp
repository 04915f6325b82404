// The pair of files of an ESRI shapefile, and the way to a record through its index,
// after "ESRI Shapefile Technical Description" (1998).
//
// Index record N, counted from 1, at byte 100 + (N - 1) * 8, big-endian:
//   0  int32  offset of the record header in the shape file, in 16-bit words
//   4  int32  content length of the record, in 16-bit words
// Record header in the shape file, big-endian, the content following it:
//   0  int32  record number
//   4  int32  content length, in 16-bit words
// Words become bytes as they are decoded: whatever is handed out is in bytes.
//
// A file is open to this class while its flag is set: the stream is open, and its header was
// read.  Each of the two files has a stream, a flag, a name and a header of its own, and may be
// open without the other; `FileName` alone opens both or neither.  The third file of the format,
// with the attributes (".dbf"), is known as an ending only and never opened.
//
// A read or a seek that has failed leaves its fail flag on the stream, and nothing here clears
// it until the file is opened anew: what fails once goes on failing (docs/classic.md).

#include "kzgis/shape.h"

#include <cstring>
#include <memory>
#include <new>
#include <string>

#include "kzgis/filetools.h"
#include "platform/named_pipe.h"
#include "shape/fields.h"
#include "shape/file_names.h"
#include "shape/window_buffer.h"

using namespace kzgis;
using namespace kzgis::shape_fields;

namespace {

constexpr std::size_t kLongestName = 255;  // of a file, extension included

// How far the two files are read ahead.
constexpr std::size_t kShapeWindow = 65536;
constexpr std::size_t kIndexWindow = 8192;

/// Opens a stream for binary reading; its fail flag tells whether that went wrong.
void open_stream(std::ifstream& stream, std::unique_ptr<WindowBuffer>& buffer, std::size_t window,
                 const char* name) {
  try {
    if (is_named_pipe(name)) {
      stream.setstate(std::ios::failbit);
    } else {
      if (!buffer) buffer = std::make_unique<WindowBuffer>(stream, window);
      stream.open(name, std::ios::in | std::ios::binary);
      if (!stream.fail()) buffer->forget();
    }
  } catch (const std::bad_alloc&) {
    // An open file without a buffer: closed, the stream can open it again.
    stream.close();
    stream.setstate(std::ios::failbit);
  }
}

}  // namespace

KZ_GIS_ESRI_Shape_c::KZ_GIS_ESRI_Shape_c(const char* name) {
  if (name != nullptr) FileName(name);
}

// A copy shares nothing with the other object: it opens the same files by their base name, and
// stands at the first record wherever the other stands.
KZ_GIS_ESRI_Shape_c::KZ_GIS_ESRI_Shape_c(const KZ_GIS_ESRI_Shape_c& other) {
  FileName(other.base_name_);
}

// The streams stay open under the lowered flags, so that opening them again fails: a
// target in use ends closed, itself included (ShapeAssignmentTest.ClosesATargetInUse).
// NOLINTNEXTLINE(bugprone-unhandled-self-assignment,cert-oop54-cpp): FileName copies first
KZ_GIS_ESRI_Shape_c& KZ_GIS_ESRI_Shape_c::operator=(const KZ_GIS_ESRI_Shape_c& other) {
  shape_file_open_ = false;
  index_file_open_ = false;
  FileName(other.base_name_);
  return *this;
}

KZ_GIS_ESRI_Shape_c::~KZ_GIS_ESRI_Shape_c() { CloseFiles(); }

const char* KZ_GIS_ESRI_Shape_c::FileName(const char* name) {
  if (name == nullptr) {
    CloseFiles();
    return base_name_;
  }
  try {
    // The expansion is also the copy that makes it safe to be given one of our own names.
    char expanded[kzgis::kPathBytes];
    const char* const full_name = FILEmap_variables(name, expanded);
    if (full_name != nullptr) {
      const std::string base(without_extension(full_name, Case::lower));
      // The names of both files fit their members, which are a little longer than this limit.
      if (base.size() + kExtensionLength <= kLongestName) {
        std::memcpy(base_name_, base.c_str(), base.size() + 1);
        if (ShapeFileName((base + ".shp").c_str()) != nullptr &&
            IndexFileName((base + ".shx").c_str()) != nullptr) {
          return base_name_;
        }
      }
    }
  } catch (const std::bad_alloc&) {
    // Ends like a file that cannot be opened.
  }
  CloseFiles();
  return nullptr;
}

const char* KZ_GIS_ESRI_Shape_c::ShapeFileName(const char* name) {
  return OpenFile(name, shape_stream_, shape_buffer_, kShapeWindow, shape_file_open_,
                  shape_file_name_, shape_header_);
}

const char* KZ_GIS_ESRI_Shape_c::IndexFileName(const char* name) {
  return OpenFile(name, index_stream_, index_buffer_, kIndexWindow, index_file_open_,
                  index_file_name_, index_header_);
}

/// Closes the file that is open and opens another, then reads its header.
///
/// The header is read and not judged: whatever its 100 bytes say, the file is open then.
///
/// @return the open file's name, kept in `open_name`; null, with the file closed and that name
///         empty, when anything failed
const char* KZ_GIS_ESRI_Shape_c::OpenFile(const char* name, std::ifstream& stream,
                                          std::unique_ptr<WindowBuffer>& buffer, std::size_t window,
                                          bool& open, char (&open_name)[kNameSize],
                                          KZ_GIS_ESRI_ShapeHeader_c& header) {
  if (name == nullptr) {
    CloseFile(stream, open, open_name);
    return nullptr;
  }
  char wanted[kNameSize] = "";  // `name` may be `open_name`, which closing empties
  const std::size_t length = std::strlen(name);
  const bool fits = length < sizeof wanted;
  if (fits) std::memcpy(wanted, name, length + 1);
  CloseFile(stream, open, open_name);

  if (fits) {
    open_stream(stream, buffer, window, wanted);
  } else {
    stream.setstate(std::ios::failbit);
  }
  if (stream.fail()) {
    open_name[0] = '\0';
    return nullptr;
  }
  // The flag first: should the header be missing, `CloseFile` has something to close.
  open = true;
  std::memcpy(open_name, wanted, length + 1);
  header.FileName(open_name);
  header.FileStream(stream);
  if (header.ReadHeader() != status::success) {
    CloseFile(stream, open, open_name);
    return nullptr;
  }
  return open_name;
}

// The flag says whether there is something to close, not the stream: see `operator=`.
void KZ_GIS_ESRI_Shape_c::CloseFile(std::ifstream& stream, bool& open,
                                    char (&open_name)[kNameSize]) {
  if (!open) return;
  open = false;
  stream.close();
  open_name[0] = '\0';
}

void KZ_GIS_ESRI_Shape_c::CloseFiles() {
  base_name_[0] = '\0';
  CloseShapeFile();
  CloseIndexFile();
}

void KZ_GIS_ESRI_Shape_c::CloseShapeFile() {
  CloseFile(shape_stream_, shape_file_open_, shape_file_name_);
}

void KZ_GIS_ESRI_Shape_c::CloseIndexFile() {
  CloseFile(index_stream_, index_file_open_, index_file_name_);
}

unsigned char KZ_GIS_ESRI_Shape_c::ShapeFileIsOpen() const { return shape_file_open_ ? 1 : 0; }

unsigned char KZ_GIS_ESRI_Shape_c::IndexFileIsOpen() const { return index_file_open_ ? 1 : 0; }

const KZ_GIS_ESRI_ShapeHeader_c& KZ_GIS_ESRI_Shape_c::ShapeHeader() const { return shape_header_; }

const KZ_GIS_ESRI_ShapeHeader_c& KZ_GIS_ESRI_Shape_c::IndexHeader() const { return index_header_; }

// The shape file's flag guards a number that comes from the index header (docs/classic.md): with
// the index alone open there is no count, and with the shape file alone the count is that of the
// index opened last.
kz_ulong KZ_GIS_ESRI_Shape_c::NumberOfDataRecords(kz_ulong* count) const {
  if (!shape_file_open_) return status::not_open;
  const auto header_length = static_cast<kz_ulong>(index_header_.HeaderLength());
  *count = (static_cast<kz_ulong>(index_header_.FileLength()) - header_length) / kIndexRecordSize;
  return status::success;
}

kz_ulong KZ_GIS_ESRI_Shape_c::SeekToFirstDataRecord() {
  if (!shape_file_open_) return status::not_open;
  shape_stream_.seekg(shape_header_.HeaderLength());
  return shape_stream_.fail() ? status::seek_failed : status::success;
}

kz_ulong KZ_GIS_ESRI_Shape_c::SeekToDataRecord(kz_long recordNumber) {
  if (!shape_file_open_) return status::not_open;
  kz_long offset = 0;
  kz_long length = 0;
  if (ReadIndexRecord(recordNumber, &offset, &length) != status::success) {
    return status::wrong_kind;
  }
  shape_stream_.seekg(offset);
  return shape_stream_.fail() ? status::seek_failed : status::success;
}

/// Reads where a record lies and how long its content is, in bytes.
///
/// The place in the index is computed in 32 bits and not checked: a number out of range
/// meets a seek or a read that fails, or, beyond 2^29, wraps to some other record.
kz_ulong KZ_GIS_ESRI_Shape_c::ReadIndexRecord(kz_long recordNumber, kz_long* offset,
                                              kz_long* length) {
  if (!index_file_open_) return status::not_open;
  const auto header_length = static_cast<kz_ulong>(index_header_.HeaderLength());
  const kz_ulong position =
      header_length + (static_cast<kz_ulong>(recordNumber) - 1) * kIndexRecordSize;
  index_stream_.seekg(static_cast<kz_long>(position));
  if (index_stream_.fail()) return status::seek_failed;

  char record[kIndexRecordSize];
  const kz_ulong result = read_bytes(Input{index_stream_, *index_buffer_}, record, sizeof record);
  if (result != status::success) return result;
  *offset = words_to_bytes(big_endian_long(byte_util, record));
  *length = words_to_bytes(big_endian_long(byte_util, record + 4));
  return status::success;
}

/// Reads the record header at the shape stream's position: the number as it is written,
/// the content length in bytes.  The stream is left at the content.
kz_ulong KZ_GIS_ESRI_Shape_c::ReadShapeRecordHeader(kz_long* recordNumber, kz_long* length) {
  if (!shape_file_open_) return status::not_open;
  char header[8];
  const kz_ulong result = read_bytes(Input{shape_stream_, *shape_buffer_}, header, sizeof header);
  if (result != status::success) return result;
  *recordNumber = big_endian_long(byte_util, header);
  *length = words_to_bytes(big_endian_long(byte_util, header + 4));
  return status::success;
}
