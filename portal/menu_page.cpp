#include "portal/menu_page.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace portal {
namespace {

// The page's helpers, put in front of each script: the menu table's test,
// the runtime's Trim (blanks only), and the cleaning of "null".
const QString kPageHelpers = QStringLiteral(R"(
var menuClass = "table table-striped table-bordered nowrap";
function trimBlanks(text) { return text.replace(/^ +| +$/g, ""); }
function removeNullWords() {
    var tables = document.body.getElementsByTagName("table");
    for (var i = 0; i < tables.length; i++) {
        if (tables.item(i).className !== menuClass) continue;
        var areas = tables.item(i).getElementsByTagName("textarea");
        for (var a = 0; a < areas.length; a++)
            areas.item(a).value = areas.item(a).value.split("null").join("");
    }
}
)");

// One meal into the menu tables. `record` is the record set's position:
// back at the first record for each table, since the cleaning after each
// table moves it there.
const QString kWriteMeal = QStringLiteral(R"(
var values = %1;
var position = %2;
var tables = document.body.getElementsByTagName("table");
for (var i = 0; i < tables.length; i++) {
    var record = 0;
    if (tables.item(i).className === menuClass) {
        var areas = tables.item(i).getElementsByTagName("textarea");
        var counter = 1;
        for (var a = 0; a < areas.length; a++) {
            if (counter === position) {
                var area = areas.item(a);
                area.value = "";
                for (var line = 0; line < 4; line++, record++) {
                    if (record >= values.length) continue;
                    var value = values[record];
                    if (area.value === "")
                        area.value = value === null ? "null" : value;
                    else
                        area.value = trimBlanks(area.value) + "\r\n" + (value === null ? "" : value);
                }
            }
            counter++;
            if (counter === 5) counter = 1;
        }
    }
    removeNullWords();
}
)");

}  // namespace

QString chosenMonth(kit::WebBrowser& page) {
    return page.evaluate(QStringLiteral("return String(document.getElementById(\"ddlAy\").value);"))
        .toString();
}

void writeMeal(kit::WebBrowser& page, int position, const QVariantList& values) {
    QJsonArray lines;
    for (const QVariant& value : values)
        lines.append(value.isValid() ? QJsonValue(value.toString()) : QJsonValue());
    const QString valuesText =
        QString::fromUtf8(QJsonDocument(lines).toJson(QJsonDocument::Compact));
    page.evaluate(kPageHelpers + kWriteMeal.arg(valuesText, QString::number(position)));
}

void removeNullWords(kit::WebBrowser& page) {
    page.evaluate(kPageHelpers + QStringLiteral("removeNullWords();"));
}

}  // namespace portal
