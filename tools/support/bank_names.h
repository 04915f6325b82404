// What people call the themes, continents and levels of a data bank.

#ifndef KZGIS_TOOLS_SUPPORT_BANK_NAMES_H
#define KZGIS_TOOLS_SUPPORT_BANK_NAMES_H

#include <kzgis/databank.h>

#include <optional>
#include <string>
#include <string_view>

namespace kzgis::tools {

/// "geographic", "political", "coastal", "river", or the name of the theme's file: "bdy",
/// "pby", "cil", "riv".  Upper and lower case are alike.
std::optional<Theme> theme_named(std::string_view name);

/// "africa", "asia", "europe", "namer", "samer", or the whole name: "north america".
std::optional<Continent> continent_named(std::string_view name);

/// A level from 0 to 15.
std::optional<int> level_named(std::string_view text);

/// "geographic, political, coastal or river"
std::string theme_names();
/// "africa, asia, europe, namer or samer"
std::string continent_names();

const char* theme_name(Theme theme);

}  // namespace kzgis::tools

#endif
