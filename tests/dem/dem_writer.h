// Builds USGS DEM files in memory, right ones and damaged ones, and writes them to a
// directory of their own.  Written from "Standards for Digital Elevation Models" (USGS),
// apart from the readers under test: of a profile's elevations 146 stand in its first block
// and 170 in each of the others.

#ifndef KZGIS_TESTS_DEM_DEM_WRITER_H
#define KZGIS_TESTS_DEM_DEM_WRITER_H

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "support/temporary_directory.h"

/// A number in `width` characters, blanks before it.
inline std::string integer_field(long long value, int width = 6) {
  char text[64];
  std::snprintf(text, sizeof text, "%*lld", width, value);
  return text;
}

/// A number in 24 characters as Fortran writes it, 0.150000000000000D+03, with another
/// letter, or in another width, when told so.
inline std::string real_field(double value, char letter = 'D', int width = 24, int digits = 15) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*e", digits - 1, value);
  std::string number = text;
  // 1.50e+02 becomes 0.150D+03.
  const bool negative = number.front() == '-';
  if (negative) number.erase(0, 1);
  const std::size_t e = number.find('e');
  const int exponent = std::stoi(number.substr(e + 1)) + (value == 0.0 ? 0 : 1);
  std::snprintf(text, sizeof text, "%s0.%c%s%c%+03d", negative ? "-" : "", number[0],
                number.substr(2, e - 2).c_str(), letter, exponent);
  std::string field = text;
  if (static_cast<int>(field.size()) < width) {
    field.insert(0, static_cast<std::size_t>(width) - field.size(), ' ');
  }
  return field;
}

/// Text cut off or filled with blanks to a multiple of 1024 bytes.
inline std::string whole_blocks(std::string bytes) {
  bytes.resize((bytes.size() + 1023) / 1024 * 1024, ' ');
  return bytes;
}

/// Logical record A: fields put at their offsets into a block of blanks.
class RecordAText {
 public:
  RecordAText() : bytes_(1024, ' ') {
    put(0, "TEST QUADRANGLE");
    put(40, "MADE FOR TESTS");
    put(135, "2");
    put(137, "NW1").put(140, "MAPC");
    integer(144, 3).integer(150, 1).integer(156, 1).integer(162, 10);
    for (int i = 0; i < 15; ++i) put(168 + 24 * i, real_field(0.0));
    integer(528, 2).integer(534, 2).integer(540, 4);
    corners({{500000, 5000000}, {500000, 5000300}, {500300, 5000300}, {500300, 5000000}});
    range(100.0, 200.0);
    put(786, real_field(0.0)).integer(810, 0);
    steps(30.0, 30.0, 1.0);
    size(1, 3);
    put(864, "   402   10119871951I2 3 1 1   1   0");
  }
  RecordAText& put(int offset, const std::string& text) {
    bytes_.replace(static_cast<std::size_t>(offset), text.size(), text);
    return *this;
  }
  RecordAText& integer(int offset, int value, int width = 6) {
    return put(offset, integer_field(value, width));
  }
  RecordAText& corners(const std::vector<std::pair<double, double>>& places, char letter = 'D') {
    for (std::size_t i = 0; i < places.size(); ++i) {
      put(546 + 48 * static_cast<int>(i), real_field(places[i].first, letter));
      put(570 + 48 * static_cast<int>(i), real_field(places[i].second, letter));
    }
    return *this;
  }
  RecordAText& range(double low, double high, char letter = 'D') {
    return put(738, real_field(low, letter)).put(762, real_field(high, letter));
  }
  RecordAText& steps(double x, double y, double z, char letter = 'E') {
    return put(816, real_field(x, letter, 12, 6))
        .put(828, real_field(y, letter, 12, 6))
        .put(840, real_field(z, letter, 12, 6));
  }
  RecordAText& size(int rows, int columns) { return integer(852, rows).integer(858, columns); }
  const std::string& text() const { return bytes_; }

 private:
  std::string bytes_;
};

/// Logical record B.
struct ProfileText {
  int row = 1;
  int column = 1;
  double base_x = 500000.0;
  double base_y = 5000000.0;
  std::vector<int> elevations = {};
  int columns = 1;  ///< of elevations
  int rows = -1;    ///< of elevations; -1 as many as there are
  double datum = 0.0;
  char letter = 'D';

  std::string text() const {
    const int claimed = rows == -1 ? static_cast<int>(elevations.size()) / columns : rows;
    std::string bytes = integer_field(row) + integer_field(column) + integer_field(claimed) +
                        integer_field(columns) + real_field(base_x, letter) +
                        real_field(base_y, letter) + real_field(datum, letter) +
                        real_field(100.0, letter) + real_field(200.0, letter);
    std::size_t room = 146;
    for (const int elevation : elevations) {
      if (room == 0) {
        bytes = whole_blocks(std::move(bytes));
        room = 170;
      }
      bytes += integer_field(elevation);
      --room;
    }
    return whole_blocks(std::move(bytes));
  }
};

/// Elevations 1, 2, 3, ... as many as asked for.
inline std::vector<int> counting(int count, int first = 1) {
  std::vector<int> elevations;
  for (int i = 0; i < count; ++i) elevations.push_back(first + i);
  return elevations;
}

/// A test with a directory of its own.
class DemTest : public testing::Test {
 protected:
  /// Writes a file and gives its name.
  std::string write(const std::string& bytes, const std::string& name = "test.dem") const {
    const std::string path = directory_ + "/" + name;
    // Anew: some hosts wait for the disk when a file is emptied and written again.
    std::filesystem::remove(path);
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  const std::string& directory() const { return directory_; }

 private:
  TemporaryDirectory place_;
  const std::string directory_ = place_.path().string();
};

#endif
