// What a dBASE table says of the records of a shapefile.

#ifndef KZGIS_TOOLS_SUPPORT_ATTRIBUTES_H
#define KZGIS_TOOLS_SUPPORT_ATTRIBUTES_H

#include <shapefil.h>

#include <cstdint>
#include <memory>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "tools/support/report.h"

namespace kzgis::tools {

/// The attributes of a shapefile's records: its dBASE table.
class Attributes {
 public:
  /// @param file  the shapefile that the table belongs to, as it was opened: the table's name
  ///              differs in the extension alone
  /// Throws `CommandError` when there is no such table.
  explicit Attributes(const std::string& file);

  /// True when there is a file where the table should be.
  static bool exist(const std::string& file);

  const std::string& name() const { return name_; }
  int count() const;
  /// Throws `CommandError` unless there is a row for each of so many records, to its last byte.
  void expect_rows(std::uint32_t records) const;

  /// The column of a field, upper and lower case alike.
  std::optional<int> field(const std::string& field_name) const;

  /// One value without the blanks around it; empty where the table has none.
  ///
  /// @param record  counted from 1, as the shapefile's
  std::string text(int record, int field) const;

  /// All values of a record under the names of their fields: an object of numbers, truth values
  /// and texts, and null where the table has nothing.
  ///
  /// A text that is no UTF-8 is taken for ISO 8859-1.
  nlohmann::ordered_json row(int record) const;

  /// shapelib's own, for those who copy rows.
  DBFHandle handle() const { return table_.get(); }

 private:
  struct Close {
    void operator()(DBFHandle table) const { DBFClose(table); }
  };

  std::string name_;
  std::unique_ptr<DBFInfo, Close> table_;
};

/// The table that belongs to a shapefile, where there is one; one without a row for each record is
/// left out, with a complaint.
///
/// @param file     as for `Attributes`
/// @param records  of the shapefile
std::optional<Attributes> sound_attributes(const std::string& file, std::uint32_t records,
                                           const Complain& complain);

/// The number of a record, and its attributes; a field of the name "record" takes the number's
/// place.
nlohmann::ordered_json properties_of(std::uint32_t record,
                                     const nlohmann::ordered_json& attributes);

}  // namespace kzgis::tools

#endif
