// How high the records of a shapefile rise.

#ifndef KZGIS_TOOLS_TRIANGULATE_HEIGHTS_H
#define KZGIS_TOOLS_TRIANGULATE_HEIGHTS_H

#include <cstdint>
#include <optional>
#include <string>

#include "tools/support/attributes.h"

namespace kzgis::tools {

/// One height for all records, or a number of each record's own in a dBASE table.
class Heights {
 public:
  /// @param text  "12.5", or "@" and the name of a field.  Throws `UsageError` for anything else.
  explicit Heights(const std::string& text);

  bool need_table() const { return !fixed_; }
  /// Finds the field.  Throws `CommandError` when there is none.
  ///
  /// @param table  borrowed
  void use(const Attributes& table);

  /// Nothing when the record's is no number above 0.
  std::optional<double> of(std::uint32_t record) const;
  /// Why it has none.
  std::string why_none(std::uint32_t record) const;

 private:
  std::optional<double> fixed_;
  std::string field_;
  const Attributes* table_ = nullptr;
  int column_ = -1;
};

}  // namespace kzgis::tools

#endif
