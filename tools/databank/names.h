// What people call the themes and continents of a data bank.

#ifndef KZGIS_TOOLS_DATABANK_NAMES_H
#define KZGIS_TOOLS_DATABANK_NAMES_H

#include <kzgis/worldmap.h>

#include <optional>
#include <string>
#include <string_view>

namespace kzgis::databank {

/// "geographic", "political", "coastal", "river", or the name of the theme's file: "bdy",
/// "pby", "cil", "riv".  Upper and lower case are alike.
std::optional<overlaySections> theme_named(std::string_view name);

/// "africa", "asia", "europe", "namer", "samer", or the whole name: "north america".
std::optional<mapSections> continent_named(std::string_view name);

/// A level from 0 to 15.
std::optional<int> level_named(std::string_view text);

/// "geographic, political, coastal or river"
std::string theme_names();
/// "africa, asia, europe, namer or samer"
std::string continent_names();

const char* theme_name(overlaySections theme);

/// Where `WorldMap` looks for a file unless told otherwise, within the data bank's
/// directory: "africa.Map" and "cil.cbd".
std::string continent_directory(mapSections continent);
std::string theme_file(overlaySections theme);

}  // namespace kzgis::databank

#endif
