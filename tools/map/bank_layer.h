#ifndef KZGIS_TOOLS_MAP_BANK_LAYER_H
#define KZGIS_TOOLS_MAP_BANK_LAYER_H

#include <kzgis/worldmap.h>

#include <string>
#include <vector>

#include "tools/map/layer.h"
#include "tools/map/style.h"

namespace kzgis::map {

/// One theme of a data bank, and which of its levels.
struct BankTheme {
  overlaySections theme = Coastal;
  int first_level = 0;
  int last_level = 15;
};

/// "coastal", "river:1", "coastal:1-3".  Throws `std::invalid_argument` with what is wrong.
BankTheme parse_bank_theme(const std::string& text);

/// The four themes, every level.
std::vector<BankTheme> all_bank_themes();

/// Coast, river, border or province.
Role bank_role(overlaySections theme);

/// Loads one theme from the data bank in a directory.
///
/// @param precision_arcsec  points nearer than this to the one before are left out
/// Empty when the bank has no such lines.
Layer read_bank_layer(const std::string& directory, const BankTheme& theme,
                      kz_long precision_arcsec);

}  // namespace kzgis::map

#endif
