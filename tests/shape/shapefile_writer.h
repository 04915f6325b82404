// Builds shapefiles in memory, right ones and damaged ones, and writes them to a
// directory of their own.  Written from the layout in "ESRI Shapefile Technical
// Description" (1998), apart from the reader under test.

#ifndef KZGIS_TESTS_SHAPE_SHAPEFILE_WRITER_H
#define KZGIS_TESTS_SHAPE_SHAPEFILE_WRITER_H

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "support/temporary_directory.h"

/// Bytes of a file in the making.
class Bytes {
 public:
  Bytes& big(std::int32_t value) {
    const auto bits = static_cast<std::uint32_t>(value);
    for (int shift = 24; shift >= 0; shift -= 8) text_ += static_cast<char>(bits >> shift & 255);
    return *this;
  }
  Bytes& little(std::int32_t value) { return little_bits(static_cast<std::uint32_t>(value), 4); }
  Bytes& little(double value) { return little_bits(std::bit_cast<std::uint64_t>(value), 8); }
  Bytes& zeros(std::size_t count) {
    text_.append(count, '\0');
    return *this;
  }
  Bytes& add(const std::string& bytes) {
    text_ += bytes;
    return *this;
  }
  const std::string& text() const { return text_; }

 private:
  Bytes& little_bits(std::uint64_t bits, int count) {
    for (int i = 0; i < count; ++i) text_ += static_cast<char>(bits >> 8 * i & 255);
    return *this;
  }
  std::string text_;
};

using Point = std::pair<double, double>;

struct Box {
  double x_min = -10.5, y_min = -20.25, x_max = 30.125, y_max = 40.0625;
};

/// A main header; the length is in 16-bit words.
inline std::string header_bytes(std::int32_t shape_type, std::int32_t length_words,
                                const Box& box = {}, std::int32_t file_code = 9994,
                                std::int32_t version = 1000) {
  return Bytes()
      .big(file_code)
      .zeros(20)
      .big(length_words)
      .little(version)
      .little(shape_type)
      .little(box.x_min)
      .little(box.y_min)
      .little(box.x_max)
      .little(box.y_max)
      .zeros(32)
      .text();
}

inline std::string null_content() { return Bytes().little(0).text(); }

inline std::string point_content(double x, double y) {
  return Bytes().little(1).little(x).little(y).text();
}

inline std::string points_bytes(const std::vector<Point>& points) {
  Bytes bytes;
  for (const auto& [x, y] : points) bytes.little(x).little(y);
  return bytes.text();
}

/// The 44 bytes before the parts of an arc or polygon, with any counts.
inline std::string arc_fixed_part(std::int32_t num_parts, std::int32_t num_points,
                                  std::int32_t type = 3, const Box& box = {}) {
  return Bytes()
      .little(type)
      .little(box.x_min)
      .little(box.y_min)
      .little(box.x_max)
      .little(box.y_max)
      .little(num_parts)
      .little(num_points)
      .text();
}

inline std::string arc_content(const std::vector<std::int32_t>& parts,
                               const std::vector<Point>& points, std::int32_t type = 3,
                               const Box& box = {}) {
  Bytes bytes;
  bytes.add(arc_fixed_part(static_cast<std::int32_t>(parts.size()),
                           static_cast<std::int32_t>(points.size()), type, box));
  for (const std::int32_t part : parts) bytes.little(part);
  return bytes.add(points_bytes(points)).text();
}

/// The 40 bytes before the points of a multi-point, with any count.
inline std::string multi_point_fixed_part(std::int32_t num_points, const Box& box = {}) {
  return Bytes()
      .little(8)
      .little(box.x_min)
      .little(box.y_min)
      .little(box.x_max)
      .little(box.y_max)
      .little(num_points)
      .text();
}

inline std::string multi_point_content(const std::vector<Point>& points, const Box& box = {}) {
  return multi_point_fixed_part(static_cast<std::int32_t>(points.size()), box) +
         points_bytes(points);
}

/// `count` points that differ from one another and from those of another `seed`.
inline std::vector<Point> some_points(int count, int seed = 0) {
  std::vector<Point> points;
  for (int i = 0; i < count; ++i) points.emplace_back(100 * seed + i + 0.125, -i - 0.375);
  return points;
}

/// A shape file and its index, record by record.
class ShapefileWriter {
 public:
  explicit ShapefileWriter(std::int32_t shape_type) : shape_type_(shape_type) {}

  /// Adds a record whose number, length and index entry are right.
  ShapefileWriter& add(const std::string& content) {
    return add(content, static_cast<std::int32_t>(content.size() / 2),
               static_cast<std::int32_t>(content.size() / 2));
  }
  /// Adds a record with lengths of one's own, in words: in its header, in the index.
  ShapefileWriter& add(const std::string& content, std::int32_t header_words,
                       std::int32_t index_words) {
    return add_indexed(content, header_words, static_cast<std::int32_t>((100 + shapes_.size()) / 2),
                       index_words);
  }
  /// The same with an offset of one's own in the index, in words.
  ShapefileWriter& add_indexed(const std::string& content, std::int32_t header_words,
                               std::int32_t offset_words, std::int32_t index_words) {
    index_ += Bytes().big(offset_words).big(index_words).text();
    shapes_ += Bytes().big(++number_).big(header_words).add(content).text();
    return *this;
  }

  std::string shp() const {
    return header_bytes(shape_type_, static_cast<std::int32_t>((100 + shapes_.size()) / 2)) +
           shapes_;
  }
  std::string shx() const {
    return header_bytes(shape_type_, static_cast<std::int32_t>((100 + index_.size()) / 2)) + index_;
  }

 private:
  std::int32_t shape_type_;
  std::int32_t number_ = 0;
  std::string shapes_;
  std::string index_;
};

inline void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary);
  file << bytes;
  file.close();
  ASSERT_FALSE(file.fail()) << path;
}

/// A test with an empty directory of its own, removed afterwards.
class ShapefileTest : public testing::Test {
 protected:
  std::string path(const std::string& name) const { return (directory_.path() / name).string(); }
  /// Writes both files and gives the base name that opens them.
  std::string write(const std::string& shp, const std::string& shx,
                    const std::string& name = "layer") const {
    // Anew: some hosts wait for the disk when a file is emptied and written again.
    for (const auto& [ending, bytes] : {std::pair(".shp", &shp), std::pair(".shx", &shx)}) {
      std::filesystem::remove(path(name + ending));
      write_file(path(name + ending), *bytes);
    }
    return path(name);
  }
  std::string write(const ShapefileWriter& writer, const std::string& name = "layer") const {
    return write(writer.shp(), writer.shx(), name);
  }

 private:
  TemporaryDirectory directory_;
};

#endif
