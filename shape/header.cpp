// The main header of an ESRI shapefile and of its index, after "ESRI Shapefile
// Technical Description" (1998).
//
// Reading and judging are apart: `ReadHeader` decodes whatever 100 bytes it meets, and
// `ValidateFileHeader` tells, when asked, what is wrong with them.  The order of its tests and
// the labels of the report are kept (docs/classic.md).

#include <ostream>
#include <string>

#include "kzgis/shape.h"
#include "shape/fields.h"

using namespace kzgis;
using namespace kzgis::shape_fields;

namespace {

constexpr kz_long kHeaderLength = 100;
constexpr kz_long kFileCode = 9994;
constexpr kz_long kVersion = 1000;

}  // namespace

// Of the format's fourteen types these five have readers.  Those with Z or M values and the
// multipatch have no name here, as unknown numbers have none.
const char* kzgis::shape_type::name_of(kz_long type) {
  switch (type) {
    case null_shape:
      return "null";
    case point:
      return "point";
    case arc:
      return "arc";
    case polygon:
      return "polygon";
    case multi_point:
      return "polypoint";
    default:
      return nullptr;
  }
}

KZ_GIS_ESRI_ShapeHeader_c::~KZ_GIS_ESRI_ShapeHeader_c() = default;

std::ifstream& KZ_GIS_ESRI_ShapeHeader_c::FileStream(std::ifstream& stream) {
  stream_ = &stream;
  return stream;
}

const char* KZ_GIS_ESRI_ShapeHeader_c::FileName(const char* name) {
  file_name_ = name;
  return name;
}

// The stream must stand at the header; no seek is made.  Nothing is stored before all 100 bytes
// are there, so that a failed read leaves the numbers of before.
kz_ulong KZ_GIS_ESRI_ShapeHeader_c::ReadHeader() {
  if (stream_ == nullptr || !stream_->is_open()) return status::not_open;

  char header[kHeaderLength];
  const kz_ulong result = read_bytes(*stream_, header, sizeof header);
  if (result != status::success) return result;

  // Main file header:
  //    0  int32   big-endian     file code
  //    4  20 bytes               unused
  //   24  int32   big-endian     file length in 16-bit words, this header included
  //   28  int32   little-endian  version
  //   32  int32   little-endian  shape type
  //   36  double  little-endian  Xmin, then Ymin (44), Xmax (52), Ymax (60)
  //   68  32 bytes               Zmin, Zmax, Mmin, Mmax: not kept
  file_code_ = big_endian_long(byte_util, header);
  file_length_ = words_to_bytes(big_endian_long(byte_util, header + 24));
  version_ = little_endian<kz_long>(header + 28);
  shape_type_ = little_endian<kz_long>(header + 32);
  x_min_ = little_endian<double>(header + 36);
  y_min_ = little_endian<double>(header + 44);
  x_max_ = little_endian<double>(header + 52);
  y_max_ = little_endian<double>(header + 60);
  return status::success;
}

// Stricter than the format: of its types only the five that the readers know pass, and a box
// without width or height, as that of a single point or of a line along an axis, is refused.
kz_ulong KZ_GIS_ESRI_ShapeHeader_c::ValidateFileHeader() const {
  if (stream_ != nullptr && !stream_->is_open()) return status::not_open;
  if (file_code_ != kFileCode) return status::bad_file_code;
  if (version_ != kVersion) return status::bad_version;
  if (shape_type::name_of(shape_type_) == nullptr) return status::bad_shape_type;
  // Written so that a NaN passes: a box that cannot be compared is not called empty.
  if (x_min_ >= x_max_) return status::bad_bounding_box;
  if (y_min_ >= y_max_) return status::bad_bounding_box;
  return status::success;
}

kz_ulong KZ_GIS_ESRI_ShapeHeader_c::PrintFileHeader(std::ostream& os) const {
  if (stream_ != nullptr && !stream_->is_open()) return status::not_open;

  // Integers are decimal whatever the stream's flags say; doubles follow them.
  os << "ShapeFileHeader";
  if (file_name_ != nullptr) {
    os << " for " << file_name_ << std::endl;
  } else {
    os << ":" << std::endl;
  }
  os << "  FileCode   = " << std::to_string(file_code_) << std::endl;
  os << "  FileLength = " << std::to_string(file_length_) << std::endl;
  os << "  Version    = " << std::to_string(version_) << std::endl;
  const char* const type_name = shape_type::name_of(shape_type_);
  os << "  Shape Type = " << std::to_string(shape_type_) << " ("
     << (type_name != nullptr ? type_name : "invalid") << " shape)" << std::endl;
  // The exchanged labels of the two Y lines are part of the report
  // (ShapeHeaderPrintTest.WritesNineLinesWithTheLabelsOfYExchanged).
  os << "  XMin Type  = " << x_min_ << std::endl;
  os << "  YMax Type  = " << y_min_ << std::endl;
  os << "  XMax Type  = " << x_max_ << std::endl;
  os << "  YMin Type  = " << y_max_ << std::endl;
  return status::success;
}

kz_long KZ_GIS_ESRI_ShapeHeader_c::HeaderLength() const { return kHeaderLength; }

kz_long KZ_GIS_ESRI_ShapeHeader_c::FileLength() const { return file_length_; }

kz_long KZ_GIS_ESRI_ShapeHeader_c::ShapeType() const { return shape_type_; }
