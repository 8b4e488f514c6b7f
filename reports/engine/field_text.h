#pragma once

#include <QString>

#include "store/jet/value.h"

namespace engine {

// The text a bound field shows for a value of its column: the value as a
// Turkish Windows shows it (kit::displayText), or, for a date under an
// output format, the date written in that format.
QString fieldText(const jet::Value& value, const QString& outputFormat);

// A date in a format of the original's Format function, with Turkish names
// whatever the machine's locale. The parts it knows: d, dd (day), ddd, dddd
// (day name), m, mm (month), mmm, mmmm (month name), yy, yyyy (year), h, hh
// (hour), n, nn (minute), s, ss (second), "/" (the date separator, "." on a
// Turkish system) and ":"; text in double quotes and a character after "\"
// are written as they stand, and so is every other character. "m" is always
// the month: the reports format dates, not times.
QString formatDate(const jet::Date& date, const QString& format);

}  // namespace engine
