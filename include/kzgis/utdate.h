#ifndef KZGIS_UTDATE_H
#define KZGIS_UTDATE_H

#include <iosfwd>

#include "kzgis/export.h"

/// A date as three numbers, kept as given: nothing is tested or normalised.  Any number of
/// threads may read one, and nothing of it needs memory.
class KZGIS_EXPORT UtDate {
 public:
  UtDate(short year, short month, short day);

  short year() const;
  short month() const;
  short day() const;

 private:
  short year_;
  short month_;
  short day_;
};

/// Writes the three numbers in order, separated by '/': "1987/8/1".
KZGIS_EXPORT std::ostream& operator<<(std::ostream& os, const UtDate& date);

#endif
