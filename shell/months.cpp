#include "shell/months.h"

#include "shell/clock.h"

namespace shell {

const QStringList& aylar() {
    static const QStringList names = {
        QStringLiteral("OCAK"),   QStringLiteral("ŞUBAT"),   QStringLiteral("MART"),
        QStringLiteral("NİSAN"),  QStringLiteral("MAYIS"),   QStringLiteral("HAZİRAN"),
        QStringLiteral("TEMMUZ"), QStringLiteral("AĞUSTOS"), QStringLiteral("EYLÜL"),
        QStringLiteral("EKİM"),   QStringLiteral("KASIM"),   QStringLiteral("ARALIK")};
    return names;
}

QString ayAdi(int month) {
    return month >= 1 && month <= 12 ? aylar()[month - 1] : QString();
}

int aygunu(int month) {
    switch (month) {
        case 1:
        case 3:
        case 5:
        case 7:
        case 8:
        case 10:
        case 12:
            return 31;
        case 4:
        case 6:
        case 9:
        case 11:
            return 30;
        case 2: {
            // The length of the present year, from one New Year to the next.
            const int year = today().year();
            return QDate(year, 1, 1).daysTo(QDate(year + 1, 1, 1)) == 365 ? 28 : 29;
        }
        default:
            return 0;
    }
}

}  // namespace shell
