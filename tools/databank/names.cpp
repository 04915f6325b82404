#include "tools/databank/names.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>

#include "tools/databank/layout.h"

namespace kzgis::databank {

namespace {

struct ThemeName {
  overlaySections theme;
  const char* name;
  const char* short_name;
};

constexpr std::array kThemes = {
    ThemeName{Geographic, "geographic", "bdy"}, ThemeName{Political, "political", "pby"},
    ThemeName{Coastal, "coastal", "cil"}, ThemeName{River, "river", "riv"}};

struct ContinentName {
  mapSections continent;
  const char* name;
  const char* whole_name;
};

constexpr std::array kContinents = {
    ContinentName{Africa, "africa", "africa"}, ContinentName{Asia, "asia", "asia"},
    ContinentName{Europe, "europe", "europe"}, ContinentName{NoAm, "namer", "north america"},
    ContinentName{SoAm, "samer", "south america"}};

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

std::optional<overlaySections> theme_named(std::string_view name) {
  for (const ThemeName& each : kThemes) {
    if (same(name, each.name) || same(name, each.short_name)) return each.theme;
  }
  return std::nullopt;
}

std::optional<mapSections> continent_named(std::string_view name) {
  for (const ContinentName& each : kContinents) {
    if (same(name, each.name) || same(name, each.whole_name)) return each.continent;
  }
  return std::nullopt;
}

std::optional<int> level_named(std::string_view text) {
  int level = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, level);
  if (error != std::errc() || stop != end || level < 0 || level >= kNumLevels) return std::nullopt;
  return level;
}

std::string theme_names() { return listed(kThemes); }
std::string continent_names() { return listed(kContinents); }

const char* theme_name(overlaySections theme) {
  return kThemes[static_cast<std::size_t>(theme)].name;
}

std::string continent_directory(mapSections continent) {
  return std::string(kContinents[static_cast<std::size_t>(continent)].name) + ".Map";
}

std::string theme_file(overlaySections theme) {
  return std::string(kThemes[static_cast<std::size_t>(theme)].short_name) + ".cbd";
}

}  // namespace kzgis::databank
