// Opening an outline file, and why that was not possible.

#ifndef KZGIS_WORLDMAP_OPEN_BANK_H
#define KZGIS_WORLDMAP_OPEN_BANK_H

#include <string>

#include "kzgis/result.h"
#include "worldmap/bank_file.h"

namespace kzgis::worldmap {

/// A stream, or why there is none.
struct OpenedBank {
  Stream stream;
  bool missing = false;  ///< there is no such file, which need not be a failure
  Error error;
};

/// Opens an outline file; path variables in its name are expanded.
OpenedBank open_bank(const std::string& path);

/// The error of a file whose dictionary could not be read.
Error error_of(const std::string& path, Obstacle obstacle);

}  // namespace kzgis::worldmap

#endif
