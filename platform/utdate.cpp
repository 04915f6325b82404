// Dates as three numbers.  The reader of elevation models stores what its files say, which need
// not be a date of any calendar, so that nothing is tested here.

#include "kzgis/utdate.h"

#include <ostream>

UtDate::UtDate(short year, short month, short day) : year_(year), month_(month), day_(day) {}

short UtDate::year() const { return year_; }
short UtDate::month() const { return month_; }
short UtDate::day() const { return day_; }

std::ostream& operator<<(std::ostream& os, const UtDate& date) {
  return os << date.year() << '/' << date.month() << '/' << date.day();
}
