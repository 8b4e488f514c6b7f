#include "portal/portal_address.h"

#include <QtGlobal>

namespace portal {

QString startPage() {
    QString site = qEnvironmentVariable("SOFRAVAN_EOKUL_SITE");
    if (site.isEmpty())
        site = QStringLiteral("https://e-okul.meb.gov.tr");
    while (site.endsWith(u'/'))
        site.chop(1);
    return site + QStringLiteral("/main.aspx");
}

}  // namespace portal
