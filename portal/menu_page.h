#pragma once

#include <QString>
#include <QVariantList>

#include "shell/kit/web_browser.h"

// What the program knows of the portal's menu page, and all that it relies
// on: a month list with the id "ddlAy", and a table whose class is exactly
// "table table-striped table-bordered nowrap" holding four text areas a
// day (morning, noon, evening, snack), the days in ascending order. The
// page is the portal's and may change; nothing else of it is assumed.
//
// A text area's text is its value: its innerText stays empty in Chromium
// whatever the area shows. Each function runs one script in the page and
// throws kit::ScriptError when the page could not run it.
namespace portal {

// The value of the month list: "1" to "12", or "" while no month is
// chosen. Throws when the page has no element "ddlAy".
QString chosenMonth(kit::WebBrowser& page);

// Writes one meal into every menu table of the page. `values` are the
// meal's column in the records' order (text, or an invalid QVariant for
// Null). Each menu table takes them from the first: the text area at
// `position` (1 to 4) of each day is emptied and receives the next four
// values as lines. A first value that is Null leaves the word "null", a
// later one an empty line; values that run out leave the rest as they are.
// After each table of the page, menu or not, the areas are cleaned as
// removeNullWords() does.
void writeMeal(kit::WebBrowser& page, int position, const QVariantList& values);

// Removes every "null", in that case only, from the text areas of all menu
// tables.
void removeNullWords(kit::WebBrowser& page);

}  // namespace portal
