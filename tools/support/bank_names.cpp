// The names of themes and continents, long and short; lower case stands for both cases.

#include "tools/support/bank_names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

namespace kzgis::tools {

namespace {

struct ThemeName {
  Theme theme;
  const char* name;
  const char* short_name;
};

constexpr std::array kThemes = {ThemeName{Theme::boundaries, "geographic", "bdy"},
                                ThemeName{Theme::provinces, "political", "pby"},
                                ThemeName{Theme::coasts, "coastal", "cil"},
                                ThemeName{Theme::rivers, "river", "riv"}};

struct ContinentName {
  Continent continent;
  const char* name;
  const char* whole_name;
};

constexpr std::array kContinents = {
    ContinentName{Continent::africa, "africa", "africa"},
    ContinentName{Continent::asia, "asia", "asia"},
    ContinentName{Continent::europe, "europe", "europe"},
    ContinentName{Continent::north_america, "namer", "north america"},
    ContinentName{Continent::south_america, "samer", "south america"}};

bool same(std::string_view a, std::string_view lower) {
  return std::equal(a.begin(), a.end(), lower.begin(), lower.end(), [](char x, char y) {
    return std::tolower(static_cast<unsigned char>(x)) == y;
  });
}

template <typename Names>
std::string listed(const Names& names) {
  std::string list;
  for (const auto& each : names) {
    if (!list.empty()) list += &each == &names.back() ? " or " : ", ";
    list += each.name;
  }
  return list;
}

}  // namespace

std::optional<Theme> theme_named(std::string_view name) {
  for (const ThemeName& each : kThemes) {
    if (same(name, each.name) || same(name, each.short_name)) return each.theme;
  }
  return std::nullopt;
}

std::optional<Continent> continent_named(std::string_view name) {
  for (const ContinentName& each : kContinents) {
    if (same(name, each.name) || same(name, each.whole_name)) return each.continent;
  }
  return std::nullopt;
}

std::optional<int> level_named(std::string_view text) {
  int level = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, level);
  if (error != std::errc() || stop != end || level < 0 || level >= kLevelCount) return std::nullopt;
  return level;
}

std::string theme_names() { return listed(kThemes); }
std::string continent_names() { return listed(kContinents); }

const char* theme_name(Theme theme) { return kThemes[static_cast<std::size_t>(theme)].name; }

}  // namespace kzgis::tools
