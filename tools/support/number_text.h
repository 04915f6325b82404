// Numbers and angles as people write them.

#ifndef KZGIS_TOOLS_SUPPORT_NUMBER_TEXT_H
#define KZGIS_TOOLS_SUPPORT_NUMBER_TEXT_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kzgis::tools {

/// A finite decimal number, blanks around it allowed; nothing for anything else.
std::optional<double> parse_number(std::string_view text);

/// Degrees, minutes and seconds as decimal degrees: "45:30:00", "-45 30 0", "45d30m0s",
/// "45d30'0\"S", "45.5".  One sign or hemisphere letter counts for the whole angle;
/// minutes and seconds lie in [0, 60), and only the last number may have a fraction.
std::optional<double> parse_dms(std::string_view text);

/// "1 row", "2 rows".
std::string counted(std::uint64_t number, const char* thing);

/// The shortest text that reads back as the same number; "nan" without a sign.
void append_number(std::string& line, double value);

/// "D:M:S" with one sign in front, seconds to five decimals (about a third of a
/// millimetre on the Earth); what rounds up to a whole turn is 0.
void append_dms(std::string& line, double angle_deg);

}  // namespace kzgis::tools

#endif
