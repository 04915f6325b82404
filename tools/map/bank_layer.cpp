// Outlines from a data bank into memory.

#include "tools/map/bank_layer.h"

#include <optional>
#include <stdexcept>

#include "tools/databank/load.h"
#include "tools/databank/names.h"
#include "tools/support/report.h"

namespace kzgis::map {

BankTheme parse_bank_theme(const std::string& text) {
  const std::size_t colon = text.find(':');
  const std::optional<overlaySections> theme = databank::theme_named(text.substr(0, colon));
  if (!theme) {
    throw std::invalid_argument(tools::in_quotes(text.substr(0, colon)) +
                                " is no theme; there are " + databank::theme_names());
  }
  BankTheme result;
  result.theme = *theme;
  if (colon == std::string::npos) return result;
  const std::string levels = text.substr(colon + 1);
  const std::size_t dash = levels.find('-');
  const std::optional<int> first = databank::level_named(levels.substr(0, dash));
  const std::optional<int> last =
      dash == std::string::npos ? first : databank::level_named(levels.substr(dash + 1));
  if (!first || !last || *first > *last) {
    throw std::invalid_argument(tools::in_quotes(levels) +
                                " are no levels; they look like 1 or 1-3, from 0 to 15");
  }
  result.first_level = *first;
  result.last_level = *last;
  return result;
}

std::vector<BankTheme> all_bank_themes() {
  return {BankTheme{Political}, BankTheme{Geographic}, BankTheme{River}, BankTheme{Coastal}};
}

Role bank_role(overlaySections theme) {
  switch (theme) {
    case Geographic:
      return Role::border;
    case Political:
      return Role::province;
    case River:
      return Role::river;
    default:
      return Role::coast;
  }
}

Layer read_bank_layer(const std::string& directory, const BankTheme& theme,
                      kz_long precision_arcsec) {
  WorldMap map(directory.c_str());
  map.setPrecision(precision_arcsec);
  for (int level = theme.first_level; level <= theme.last_level; ++level) {
    map.setPOI(theme.theme, static_cast<infoLevels>(level), 1);
  }
  // A map's own box keeps the first run of each segment inside it: a coast that leaves the
  // box and comes back would have a gap.  So everything is loaded, and cut when drawn.
  databank::request_globe(map);
  map.readData();
  Layer layer;
  layer.kind = LayerKind::lines;
  for (UtVector<LatLon*>* const polyline : map.fetchPolygonCollection(theme.theme)) {
    GeoLine line;
    line.reserve(polyline->size());
    for (const LatLon* const point : *polyline)
      line.push_back({point->fetchLon(), point->fetchLat()});
    layer.records.push_back({std::move(line)});
  }
  return layer;
}

}  // namespace kzgis::map
