// Where each record of a shapefile goes in a data bank.

#ifndef KZGIS_TOOLS_PACK_LABELS_H
#define KZGIS_TOOLS_PACK_LABELS_H

#include <kzgis/databank.h>

#include <cstdint>
#include <optional>
#include <string>

#include "tools/support/attributes.h"

namespace kzgis::tools {

/// Where a record goes in a data bank.
struct Label {
  Theme theme{};
  Continent continent{};
  int level = 0;
};

/// What the command line says of one file: a value for all its records, "@FIELD" for the
/// value of an attribute, or nothing for the usual.
struct LabelSources {
  std::string theme;      ///< usually by the file's name: bdy, pby, cil or riv
  std::string continent;  ///< usually @CONT
  std::string level;      ///< usually @RANK
};

/// Finds the labels of one shapefile's records.
class Labels {
 public:
  /// @param file     the shapefile, as it was opened
  /// @param records  how many the shapefile has: as many as its table must have
  /// Throws `CommandError` when a label cannot be known for any record.
  Labels(const std::string& file, const LabelSources& sources, std::uint32_t records);

  /// Throws `CommandError` when an attribute names no theme, continent or level.
  Label of(std::uint32_t record) const;

 private:
  /// One of the three: fixed, or the value of a column.
  template <typename Value>
  struct Source {
    std::optional<Value> fixed;
    int column = 0;
    std::string field;  ///< its name, for messages
  };

  template <typename Value, typename Parse>
  Source<Value> source(const std::string& text, const char* option, Parse parse,
                       const std::string& choices);
  template <typename Value, typename Parse>
  Value value(const Source<Value>& source, std::uint32_t record, Parse parse,
              const std::string& choices) const;

  std::string file_;
  std::uint32_t records_;
  std::optional<Attributes> attributes_;  ///< opened when a label asks for it
  Source<Theme> theme_;
  Source<Continent> continent_;
  Source<int> level_;
};

}  // namespace kzgis::tools

#endif
