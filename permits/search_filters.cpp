#include "permits/search_filters.h"

#include "shell/kit/vb_number.h"

namespace permits {
namespace {

void filter(kit::DataControl& list, const QString& text) {
    list.Recordset().setFilter(text.toStdU16String());
}

void clearAndReload(kit::DataControl& list) {
    list.Recordset().clearFilter();
    list.Refresh();
}

}  // namespace

void classSearch(kit::DataControl& list, const QString& item) {
    if (item == QStringLiteral("Tümü") || item == QStringLiteral("TÜMÜ")) {
        clearAndReload(list);
    } else {
        filter(list, QStringLiteral(" SINIF = '") + item + QStringLiteral("'"));
    }
}

void prefixSearch(kit::DataControl& list, const QString& column, const QString& typed,
                  const std::function<void()>& reload) {
    if (typed.isEmpty()) {
        reload();
    } else {
        filter(list, QLatin1Char(' ') + column + QStringLiteral(" like '") + typed.trimmed() +
                         QStringLiteral("%'"));
    }
}

void numberSearch(kit::DataControl& list, const QString& typed,
                  const std::function<void()>& reload) {
    if (typed.isEmpty()) {
        reload();
    } else {
        filter(list, QStringLiteral(" Numara like ") + typed);
    }
}

void identitySearch(kit::DataControl& list, const QString& typed) {
    if (typed.isEmpty()) {
        clearAndReload(list);
    } else {
        filter(list, QStringLiteral("TCKimlikno=") + kit::plainNumber(kit::Val(typed)));
    }
}

}  // namespace permits
