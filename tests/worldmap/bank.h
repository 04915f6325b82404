// Writes World DataBank II files byte by byte, and a data bank directory to load them from.

#ifndef KZGIS_TESTS_WORLDMAP_BANK_H
#define KZGIS_TESTS_WORLDMAP_BANK_H

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "kzgis/status.h"
#include "kzgis/worldmap.h"
#include "support/temporary_directory.h"

inline std::string u16(std::uint32_t value) {
  return {static_cast<char>(value), static_cast<char>(value >> 8)};
}
inline std::string u32(std::uint32_t value) { return u16(value) + u16(value >> 16); }
/// A long in ones' complement: what is read back is `value`.
inline std::string i32(std::int32_t value) {
  const auto bits = static_cast<std::uint32_t>(value);
  return u32(value < 0 ? bits - 1 : bits);
}

inline std::string short_delta(int dlon, int dlat) {
  const int high = dlon < 0 ? dlon + 256 : dlon + 64;
  return u16(static_cast<std::uint32_t>(high << 8 | (dlat & 0xFF)));
}
inline std::string long_delta(std::int32_t dlon, std::int32_t dlat) {
  const auto words = [](std::int32_t delta) {
    const auto bits = static_cast<std::uint32_t>(delta);
    return u16((bits >> 16) & ~0x4000U) + u16(bits);
  };
  return words(dlon) + words(dlat);
}

/// A point in arc-seconds: latitude, longitude.
using ArcPoint = std::pair<long, long>;
using ArcLine = std::vector<ArcPoint>;

struct Segment {
  std::int32_t lon = 0;
  std::int32_t lat = 0;
  std::uint32_t count = 0;
  std::string deltas;
  std::uint32_t level = 1;
  // Extents that every box overlaps.
  std::int32_t max_lat = 324000;
  std::int32_t min_lat = -324000;
  std::int32_t max_lon = 1295999;
  std::int32_t min_lon = 1;

  std::string data() const {
    return i32(lon) + i32(lat) + u32(0xABABABAB) + u32(count) + u16(0xCDCD) + deltas;
  }
  std::string entry(std::size_t offset) const {
    return u32(7) + i32(max_lat) + i32(min_lat) + i32(max_lon) + i32(min_lon) +
           u32(static_cast<std::uint32_t>(offset)) + u16(9) + u16(level);
  }
};

/// The segment through the given points, which the reader gets to see all of: the last one
/// is written twice.
inline Segment segment_through(const ArcLine& points) {
  Segment segment;
  segment.lat = static_cast<std::int32_t>(points.front().first);
  segment.lon = static_cast<std::int32_t>(points.front().second);
  segment.count = static_cast<std::uint32_t>(points.size() + 1);
  for (std::size_t i = 1; i < points.size(); ++i) {
    segment.deltas += long_delta(static_cast<std::int32_t>(points[i].second - points[i - 1].second),
                                 static_cast<std::int32_t>(points[i].first - points[i - 1].first));
  }
  segment.deltas += short_delta(0, 0);
  return segment;
}

inline std::string cbd_header(std::size_t dictionary_offset, std::uint32_t count) {
  return u32(0x20770002) + u32(static_cast<std::uint32_t>(dictionary_offset)) + u32(count) +
         u32(0x11111111) + u32(0x22222222);
}

/// A whole file: the header, the segments, the dictionary at the end.
inline std::string cbd_file(const std::vector<Segment>& segments) {
  std::string data;
  std::string dictionary;
  for (const Segment& segment : segments) {
    dictionary += segment.entry(20 + data.size());
    data += segment.data();
  }
  return cbd_header(20 + data.size(), static_cast<std::uint32_t>(segments.size())) + data +
         dictionary;
}

/// A scratch directory laid out as a data bank, and maps that load from it.
class BankTest : public ::testing::Test {
 protected:
  BankTest() {
    for (const char* continent : {"africa", "asia", "europe", "namer", "samer"}) {
      std::filesystem::create_directory(root_ + "/" + continent + ".Map");
    }
  }

  void write(const std::string& name, const std::string& bytes) const {
    // Anew: some hosts wait for the disk when a file is emptied and written again.
    std::filesystem::remove(root_ + "/" + name);
    std::ofstream(root_ + "/" + name, std::ios::binary) << bytes;
  }

  /// Asks for Level1 coasts, every point of the whole globe.
  void ask_for_all(WorldMap& map) const {
    map.setCIADirectory(root_);
    map.setPrecision(0);
    map.setPOI(Coastal, Level1, 1);
    set_box(map, -324000, 0, 324000, 1295999);
  }
  static void set_box(WorldMap& map, int south, int west, int north, int east) {
    *map.fetchLowLeftBoundary() = LatLon(south, west);
    *map.fetchUpRightBoundary() = LatLon(north, east);
  }

  static std::vector<ArcLine> lines_of(WorldMap& map, overlaySections overlay = Coastal) {
    std::vector<ArcLine> lines;
    for (UtVector<LatLon*>* line : map.fetchPolygonCollection(overlay)) {
      lines.emplace_back();
      for (const LatLon* point : *line) {
        lines.back().emplace_back(std::lround(point->fetchLat() * 3600.0),
                                  std::lround(point->fetchLon() * 3600.0));
      }
    }
    return lines;
  }

  /// What a map set up by `ask_for_all` and `change` loads of one file.
  template <typename Change>
  std::vector<ArcLine> load(const std::string& bytes, Change change) const {
    write("africa.Map/cil.cbd", bytes);
    WorldMap map;
    ask_for_all(map);
    change(map);
    map.readData();
    return lines_of(map);
  }
  std::vector<ArcLine> load(const std::string& bytes) const {
    return load(bytes, [](WorldMap&) {});
  }

  TemporaryDirectory directory_;
  const std::string root_ = directory_.path().string();
};

/// Records progress reports while it lives.
class ProgressCapture {
 public:
  ProgressCapture() : former_(OMstatus_set_handler(&ProgressCapture::record, this)) {}
  ~ProgressCapture() { OMstatus_set_handler(former_, nullptr); }
  ProgressCapture(const ProgressCapture&) = delete;
  ProgressCapture& operator=(const ProgressCapture&) = delete;

  std::vector<int> percents;
  std::vector<std::string> labels;

 private:
  static void record(int percent, const char* label, void* self) {
    static_cast<ProgressCapture*>(self)->percents.push_back(percent);
    static_cast<ProgressCapture*>(self)->labels.emplace_back(label);
  }
  OMstatus_handler former_;
};

#endif
