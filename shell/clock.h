#pragma once

#include <QDate>
#include <QDateTime>

namespace shell {

// Today's date from the computer's clock, which decides the month and year
// of a permit and the leap-year test.
QDate today();

// The date and time of the clock, which name the copies of the school's
// file: today() at the computer's time of day.
QDateTime now();

// Tests put the clock on a day of their choosing; an invalid date puts it
// back on the computer's clock.
void setTodayForTests(QDate day);

// Tests put the clock on a moment of their choosing, which today() follows
// unless a day is chosen as well; an invalid moment puts it back.
void setNowForTests(const QDateTime& moment);

}  // namespace shell
