// Outlines of a data bank as a layer of a map.

#ifndef KZGIS_TOOLS_MAP_BANK_LAYER_H
#define KZGIS_TOOLS_MAP_BANK_LAYER_H

#include <kzgis/databank.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tools/map/layer.h"
#include "tools/map/style.h"
#include "tools/support/report.h"

namespace kzgis::map {

/// One theme of a data bank, and which of its levels.
struct BankTheme {
  Theme theme = Theme::coasts;
  int first_level = 0;
  int last_level = 15;
};

/// "coastal", "river:1", "coastal:1-3".  Throws `tools::UsageError` when it is none.
BankTheme parse_bank_theme(const std::string& text);

/// The four themes, every level.
std::vector<BankTheme> all_bank_themes();

/// Coast, river, border or province.
Role bank_role(Theme theme);

/// Loads one theme from the data bank in a directory.  Damaged files are complained of, and give
/// what of them is sound.  Throws `tools::CommandError` when there is no bank.
///
/// @param precision_arcsec  points nearer than this to the one before are left out
/// Empty when the bank has no such lines.
Layer read_bank_layer(const std::string& directory, const BankTheme& theme,
                      std::int32_t precision_arcsec, const tools::Complain& complain);

}  // namespace kzgis::map

#endif
