// Numbers and angles as people write them, and as the command writes them back.

#include "tools/support/number_text.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace kzgis::tools {

namespace {

std::string_view trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Takes the unsigned number at the start of `text` away from it.
std::optional<double> take_number(std::string_view& text) {
  if (text.empty() || (text.front() != '.' && (text.front() < '0' || text.front() > '9'))) {
    return std::nullopt;
  }
  double value = 0.0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
  if (error != std::errc{}) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return value;
}

/// Takes what may stand behind the number of the given place (0 degrees, 1 minutes, 2
/// seconds) away from the start of `text`; false when nothing does.
bool take_unit(std::string_view& text, int place) {
  static constexpr std::array<std::array<std::string_view, 3>, 3> kUnits{
      {{"d", "\u00B0", ":"}, {"m", "'", ":"}, {"s", "\"", "''"}}};
  const std::size_t before = text.size();
  text = trim(text);
  for (const std::string_view unit : kUnits.at(static_cast<std::size_t>(place))) {
    if (text.substr(0, unit.size()) == unit) {
      text = trim(text.substr(unit.size()));
      break;
    }
  }
  return text.size() != before;
}

}  // namespace

std::optional<double> parse_number(std::string_view text) {
  text = trim(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') text.remove_prefix(1);
  double value = 0.0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size() || !std::isfinite(value)) {
    return std::nullopt;
  }
  return value;
}

// Degrees, minutes and seconds, each with its unit behind it or a colon, the last one with a
// fraction if any; a sign in front or a letter of the compass behind, not both.
std::optional<double> parse_dms(std::string_view text) {
  text = trim(text);
  bool negative = false;
  if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
    negative = text.front() == '-';
    text = trim(text.substr(1));
  } else if (!text.empty() && std::string_view("NSEW").find(text.back()) != text.npos) {
    negative = text.back() == 'S' || text.back() == 'W';
    text = trim(text.substr(0, text.size() - 1));
  }
  std::array<double, 3> parts{};
  bool whole = true;
  bool parted = true;
  for (std::size_t place = 0; place < 3 && (place == 0 || !text.empty()); ++place) {
    const auto part = take_number(text);
    // What a smaller unit follows is a whole number, and something stands between the two.
    if (!part || !whole || !parted || (place > 0 && *part >= 60.0)) return std::nullopt;
    parts.at(place) = *part;
    whole = std::trunc(*part) == *part;
    parted = take_unit(text, static_cast<int>(place));
  }
  if (!text.empty()) return std::nullopt;
  const double angle = parts[0] + (parts[1] * 60.0 + parts[2]) / 3600.0;
  return negative ? -angle : angle;
}

std::string counted(std::uint64_t number, const char* thing) {
  return std::to_string(number) + ' ' + thing + (number == 1 ? "" : "s");
}

void append_number(std::string& line, double value) {
  if (std::isnan(value)) {
    line += "nan";  // whatever its sign
    return;
  }
  std::array<char, 32> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value);
  line.append(text.data(), end);
}

void append_dms(std::string& line, double angle_deg) {
  if (!std::isfinite(angle_deg)) {
    append_number(line, angle_deg);
    return;
  }
  // Rounded as a whole first, so that no field ever shows 60.
  constexpr double kPartsPerSecond = 1e5;
  constexpr long long kPartsPerTurn = 360LL * 3600 * 100000;
  const auto parts = std::llround(std::abs(angle_deg) * 3600.0 * kPartsPerSecond) % kPartsPerTurn;
  const auto whole_sec = parts / static_cast<long long>(kPartsPerSecond);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%s%lld:%02lld:%02lld.%05lld",
                angle_deg < 0.0 && parts != 0 ? "-" : "", whole_sec / 3600, whole_sec / 60 % 60,
                whole_sec % 60, parts % static_cast<long long>(kPartsPerSecond));
  line += text.data();
}

}  // namespace kzgis::tools
