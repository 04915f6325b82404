// The lengths of records that an index gives a second time.

#ifndef KZGIS_TOOLS_INFO_INDEX_LENGTHS_H
#define KZGIS_TOOLS_INFO_INDEX_LENGTHS_H

#include <kzgis/shapefile.h>

#include <cstdint>
#include <fstream>
#include <string>

namespace kzgis::tools {

/// Holds the index of a shapefile against its records: readers need not look at the lengths in
/// it, and the library does not.
class IndexLengths {
 public:
  explicit IndexLengths(const Shapefile& shapes);

  /// What is wrong with the entry of a record that can be read, as a sentence without its
  /// number; empty when nothing is, or there is no index.
  ///
  /// @param number  counted from 1
  std::string flaw_of(std::uint32_t number);

 private:
  std::ifstream shapes_;
  std::ifstream index_;
};

}  // namespace kzgis::tools

#endif
