// The date of the classic interfaces.

#ifndef KZGIS_UTDATE_H
#define KZGIS_UTDATE_H

#include <iosfwd>

#include "kzgis/export.h"

/// A date as three numbers, kept as given: nothing is tested or normalised.
class KZGIS_EXPORT UtDate {
 public:
  /// From three numbers of any kind; they need not be a date of the calendar.
  UtDate(short year, short month, short day);

  /// The first number, as given.
  short year() const;
  /// The second number, as given.
  short month() const;
  /// The third number, as given.
  short day() const;

 private:
  short year_;
  short month_;
  short day_;
};

/// Writes the three numbers in order, separated by '/': "1987/8/1".
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const UtDate& date);

#endif
