#pragma once

#include <QString>

#include "tests/shell/loopback_site.h"

namespace portal::testing {

// A stand-in for the e-Okul portal on the loopback interface, with the page
// structure the program relies on and nothing of the real site's code:
//
// - main.aspx: a login form whose button ("giris") goes on to menu.aspx.
// - menu.aspx?ay=M: two tables of other classes (the second with a text
//   area of its own), the month list "ddlAy" whose change reloads the page
//   for the month chosen, and, when a month is chosen, the menu table with
//   id "menu": one row a day of the month in the present year, four text
//   areas a row. The page's own script writes "eski kahvaltı" into the
//   first area and "Kek null" into the second day's snack area.
//   &sinif=farkli gives the menu table one class more; &gunler=N makes it
//   N days long.
//
// It serves until it goes.
class PortalSite : public windows::testing::LoopbackSite {
    Q_OBJECT

protected:
    QByteArray respond(const QUrl& url) override;
};

}  // namespace portal::testing
