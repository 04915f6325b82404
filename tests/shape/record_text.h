// A record of a `Shapefile` as text, for comparisons with what it should be.

#ifndef KZGIS_TESTS_SHAPE_RECORD_TEXT_H
#define KZGIS_TESTS_SHAPE_RECORD_TEXT_H

#include <span>
#include <sstream>
#include <string>

#include "kzgis/shapefile.h"

/// "1: polygon 5, box 0 1 2 3, parts 0 4, x ..." without what is empty; or the error's message.
inline std::string told(const kzgis::Result<kzgis::ShapeRecord>& record) {
  if (!record) return record.error().message;
  std::ostringstream os;
  os.precision(17);
  os << record->number << ": type " << static_cast<int>(record->type) << ", box "
     << record->box.min_x << ' ' << record->box.min_y << ' ' << record->box.max_x << ' '
     << record->box.max_y;
  const auto put = [&os](const char* name, const auto& numbers) {
    if (!numbers.empty()) os << ", " << name;
    for (const auto number : numbers) os << ' ' << number;
  };
  put("parts", record->parts);
  put("x", record->x);
  put("y", record->y);
  put("z", record->z);
  put("m", record->m);
  return os.str();
}

/// Opens a file that must open; else the test program ends with the error's message.
inline kzgis::Shapefile opened(const std::string& path) {
  return kzgis::Shapefile::open(path).value();
}

#endif
