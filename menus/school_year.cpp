#include "menus/school_year.h"

#include "shell/months.h"

namespace menus {

const QStringList& schoolYearMonths() {
    static const QStringList names = [] {
        QStringList list;
        for (int position = 0; position < 12; ++position)
            list << shell::ayAdi(monthAtPosition(position));
        return list;
    }();
    return names;
}

int monthAtPosition(int position) {
    if (position < 0 || position > 11)
        return 0;
    return (position + 8) % 12 + 1;
}

int positionOfMonth(int month) {
    if (month < 1 || month > 12)
        return -1;
    return (month + 3) % 12;
}

}  // namespace menus
