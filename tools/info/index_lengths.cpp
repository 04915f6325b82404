// Lengths of records, after "ESRI Shapefile Technical Description" (1998).
//
// Big-endian, in 16-bit words:
//   index, at byte 100 + 8 N of record N from 0   0  int32  offset of the record
//                                                 4  int32  length of its content
//   file, at that offset                          0  int32  record number
//                                                 4  int32  length of its content

#include "tools/info/index_lengths.h"

#include <array>
#include <cstddef>
#include <optional>

namespace kzgis::tools {

namespace {

struct Pair {
  std::uint32_t first = 0;
  std::uint32_t second = 0;
};

std::optional<Pair> read_pair(std::ifstream& file, std::uint64_t place) {
  std::array<char, 8> bytes{};
  file.clear();
  file.seekg(static_cast<std::streamoff>(place));
  if (!file.read(bytes.data(), bytes.size())) return std::nullopt;
  const auto number = [&bytes](std::size_t from) {
    std::uint32_t value = 0;
    for (std::size_t i = from; i < from + 4; ++i) {
      value = value << 8U | static_cast<unsigned char>(bytes.at(i));
    }
    return value;
  };
  return Pair{number(0), number(4)};
}

}  // namespace

IndexLengths::IndexLengths(const Shapefile& shapes) {
  if (shapes.index_path().empty()) return;
  shapes_.open(shapes.path(), std::ios::binary);
  index_.open(shapes.index_path(), std::ios::binary);
}

std::string IndexLengths::flaw_of(std::uint32_t number) {
  if (!index_.is_open()) return {};
  const auto entry = read_pair(index_, 100 + (std::uint64_t{number} - 1) * 8);
  if (!entry) return {};
  const auto header = read_pair(shapes_, 2 * std::uint64_t{entry->first});
  if (!header || header->second == entry->second) return {};
  const auto bytes = [](std::uint32_t words) { return std::to_string(2 * std::uint64_t{words}); };
  return "its length is " + bytes(header->second) + " bytes, but the index says " +
         bytes(entry->second);
}

}  // namespace kzgis::tools
