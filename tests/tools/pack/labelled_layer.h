// Shapefiles with attributes, for what takes labels from them.

#ifndef KZGIS_TESTS_TOOLS_DATABANK_LABELLED_LAYER_H
#define KZGIS_TESTS_TOOLS_DATABANK_LABELLED_LAYER_H

#include <gtest/gtest.h>
#include <shapefil.h>

#include <string>
#include <vector>

/// Writes a table of text attributes.
inline void write_table(const std::string& path, const std::vector<const char*>& fields,
                        const std::vector<std::vector<const char*>>& rows) {
  DBFHandle table = DBFCreate(path.c_str());
  ASSERT_NE(table, nullptr);
  for (const char* const field : fields) DBFAddField(table, field, FTString, 20, 0);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    for (std::size_t column = 0; column < fields.size(); ++column) {
      DBFWriteStringAttribute(table, static_cast<int>(row), static_cast<int>(column),
                              rows[row][column]);
    }
  }
  DBFClose(table);
}

#endif
