#pragma once

#include <QDate>

namespace shell {

// Today's date from the computer's clock, which decides the month and year
// of a permit and the leap-year test.
QDate today();

// Tests put the clock on a day of their choosing; an invalid date puts it
// back on the computer's clock.
void setTodayForTests(QDate day);

}  // namespace shell
