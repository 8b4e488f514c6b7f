#pragma once

#include <QStringList>

namespace menus {

// The months as the menu windows list them, in the order of the school
// year: position 0 is "EYLÜL" (9), position 11 "AĞUSTOS" (8).
const QStringList& schoolYearMonths();

// The month number of a list position; a position outside 0 to 11 gives 0.
int monthAtPosition(int position);

// The list position of a month 1 to 12; -1 for any other number.
int positionOfMonth(int month);

}  // namespace menus
