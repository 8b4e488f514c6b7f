#pragma once

#include <QStringList>

namespace shell {

// The month names of every window; a month's number is its position, 1 to
// 12.
const QStringList& aylar();
QString ayAdi(int month);

// Days of a month. February follows the present year on the clock, not the
// year of the month meant; a number outside 1 to 12 gives 0.
int aygunu(int month);

}  // namespace shell
