#include "tests/portal/portal_site.h"

#include <QDate>
#include <QUrl>
#include <QUrlQuery>

namespace portal::testing {
namespace {

const QString kLoginPage = QStringLiteral(R"(<!DOCTYPE html>
<html><head><meta charset="utf-8"><title>e-Okul Giriş</title></head><body>
<h1>e-Okul Yönetim Bilgi Sistemi</h1>
<form action="menu.aspx" method="get">
<input name="kullanici" value="okul"> <input type="password" name="parola">
<button id="giris" type="submit">Giriş</button>
</form></body></html>)");

QString monthList(int chosen, const QString& keep) {
    QString options = QStringLiteral("<option value=\"\">Seçiniz</option>");
    for (int month = 1; month <= 12; ++month)
        options += QStringLiteral("<option value=\"%1\"%2>%1. ay</option>")
                       .arg(month)
                       .arg(month == chosen ? QStringLiteral(" selected") : QString());
    return QStringLiteral(
               "<select id=\"ddlAy\" onchange=\"location='menu.aspx?ay=' + this.value"
               " + '%1'\">%2</select>")
        .arg(keep, options);
}

QString menuTable(const QString& className, int days) {
    QString rows = QStringLiteral(
        "<tr><th>Gün</th><th>Sabah</th><th>Öğle</th><th>Akşam</th>"
        "<th>Ara öğün</th></tr>");
    for (int day = 1; day <= days; ++day) {
        rows += QStringLiteral("<tr><td>%1</td>").arg(day);
        for (int meal = 0; meal < 4; ++meal)
            rows += QStringLiteral("<td><textarea rows=\"4\" cols=\"18\"></textarea></td>");
        rows += QStringLiteral("</tr>");
    }
    return QStringLiteral(
               "<table id=\"menu\" class=\"%1\">%2</table>"
               "<script>var areas = document.querySelectorAll('#menu textarea');"
               " areas[0].value = 'eski kahvaltı'; areas[7].value = 'Kek null';"
               "</script>")
        .arg(className, rows);
}

QString menuPage(const QUrlQuery& query) {
    const int month = query.queryItemValue(QStringLiteral("ay")).toInt();
    const bool otherClass = query.queryItemValue(QStringLiteral("sinif")) == u"farkli";
    const QString daysAsked = query.queryItemValue(QStringLiteral("gunler"));
    QString keep;
    if (otherClass)
        keep += QStringLiteral("&sinif=farkli");
    if (!daysAsked.isEmpty())
        keep += QStringLiteral("&gunler=") + daysAsked;
    QString page = QStringLiteral(
        "<!DOCTYPE html><html><head><meta charset=\"utf-8\"><title>Yemek Menüsü</title></head>"
        "<body><table class=\"table\"><tr><td>Deneme Anadolu Lisesi</td></tr></table>"
        "<table class=\"table table-striped\"><tr><td><textarea id=\"duyuru\">Duyuru</textarea>"
        "</td></tr></table>");
    page += monthList(month, keep);
    if (month >= 1 && month <= 12) {
        const int days = daysAsked.isEmpty()
                             ? QDate(QDate::currentDate().year(), month, 1).daysInMonth()
                             : daysAsked.toInt();
        QString className = QStringLiteral("table table-striped table-bordered nowrap");
        if (otherClass)
            className += QStringLiteral(" compact");
        page += menuTable(className, days);
    }
    return page + QStringLiteral("<button id=\"kaydet\">Kaydet</button></body></html>");
}

}  // namespace

QByteArray PortalSite::respond(const QUrl& url) {
    using windows::testing::htmlResponse;
    if (url.path() == u"/main.aspx")
        return htmlResponse("200 OK", kLoginPage);
    if (url.path() == u"/menu.aspx")
        return htmlResponse("200 OK", menuPage(QUrlQuery(url)));
    return htmlResponse("404 Not Found", QStringLiteral("Yok"));
}

}  // namespace portal::testing
