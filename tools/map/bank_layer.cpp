// Outlines from a data bank into memory.

#include "tools/map/bank_layer.h"

#include <cstddef>
#include <optional>

#include "tools/support/bank_names.h"
#include "tools/support/command_error.h"
#include "tools/support/progress.h"

namespace kzgis::map {
namespace {

/// The points of a segment in degrees, without those nearer than the precision to the last one
/// kept.  The first and the last stay.
Outline thinned(const Segment& segment, std::int64_t precision_arcsec) {
  Outline line;
  line.starts.push_back(0);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < segment.lat.size(); ++i) {
    const std::int64_t dlat = segment.lat[i] - segment.lat[kept];
    const std::int64_t dlon = segment.lon[i] - segment.lon[kept];
    const bool is_near = dlat * dlat + dlon * dlon < precision_arcsec * precision_arcsec;
    if (i > 0 && is_near && i + 1 < segment.lat.size()) continue;
    line.x.push_back(segment.lon[i] / 3600.0);
    line.y.push_back(segment.lat[i] / 3600.0);
    kept = i;
  }
  return line;
}

}  // namespace

BankTheme parse_bank_theme(const std::string& text) {
  const std::size_t colon = text.find(':');
  const std::optional<Theme> theme = tools::theme_named(text.substr(0, colon));
  if (!theme) {
    throw tools::UsageError("--theme", tools::in_quotes(text.substr(0, colon)) +
                                           " is no theme; there are " + tools::theme_names());
  }
  BankTheme result;
  result.theme = *theme;
  if (colon == std::string::npos) return result;
  const std::string levels = text.substr(colon + 1);
  const std::size_t dash = levels.find('-');
  const std::optional<int> first = tools::level_named(levels.substr(0, dash));
  const std::optional<int> last =
      dash == std::string::npos ? first : tools::level_named(levels.substr(dash + 1));
  if (!first || !last || *first > *last) {
    throw tools::UsageError("--theme", tools::in_quotes(levels) +
                                           " are no levels; they look like 1 or 1-3, from 0 to 15");
  }
  result.first_level = *first;
  result.last_level = *last;
  return result;
}

std::vector<BankTheme> all_bank_themes() {
  return {BankTheme{Theme::provinces}, BankTheme{Theme::boundaries}, BankTheme{Theme::rivers},
          BankTheme{Theme::coasts}};
}

Role bank_role(Theme theme) {
  switch (theme) {
    case Theme::boundaries:
      return Role::border;
    case Theme::provinces:
      return Role::province;
    case Theme::rivers:
      return Role::river;
    default:
      return Role::coast;
  }
}

Layer read_bank_layer(const std::string& directory, const BankTheme& theme,
                      std::int32_t precision_arcsec, const tools::Complain& complain) {
  // No box: a long side may cross the map's window and have no point inside.  What lies outside
  // is cut off when it is drawn.
  DatabankQuery query;
  query.themes.push_back(theme.theme);
  for (int level = theme.first_level; level <= theme.last_level; ++level) {
    query.levels.push_back(level);
  }
  const tools::LibraryProgress progress("loading " + directory);
  const Result<Databank> bank = read_databank(directory, query);
  if (!bank) tools::fail(bank.error());
  for (const DamagedFile& file : bank->damaged) complain(file.error.message);
  Layer layer;
  layer.kind = LayerKind::lines;
  for (const Segment& segment : bank->segments) {
    layer.records.push_back(thinned(segment, precision_arcsec));
  }
  return layer;
}

}  // namespace kzgis::map
