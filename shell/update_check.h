#pragma once

#include <optional>

#include <QString>

namespace kit {
class WebBrowser;
}

namespace shell {

// The update check of the main window's start: a version number read from
// the maker's page, compared with the program's own.

// The update page: "sofravan.html" on the maker's web server, over a secure
// connection. The environment variable SOFRAVAN_UPDATE_PAGE, when set, is
// the whole address in its place ("http://127.0.0.1:8080/sofravan.html"),
// so that the check can be tried on a page of one's own; a clerk never sets
// it.
QString updatePage();

// The version's three numbers written one after another, "1015" for
// 1.0.15, read as a 16-bit Integer. Throws std::overflow_error when the
// digits make more than 32,767.
qint16 versionNumber(int major, int minor, int revision);

// Whether the page's number (its value with every "." removed; nothing when
// it could not be read, which counts as 0) is greater than the own number.
// Throws store::DataError ("Type mismatch") when the page's number is no
// number at all, as the comparison of a text with a number does.
bool pageIsNewer(const std::optional<QString>& pageNumber, qint16 own);

// How long the check's page loads may take together. The page is a few
// hundred bytes; a server that takes the connection and never answers would
// otherwise hold the start of the program for good. When the time is up the
// load is stopped, as the browser's Stop button does, and the check goes on
// without the page: no announcement.
inline constexpr int kUpdateCheckLimitMs = 5000;

// The check: the browser goes to the update page and waits for it, reloads
// it twice and waits again, reads the value of the element "versiyon" and,
// when the page's number is greater, sets yenisurumvar and tells the user.
// Every statement that fails is passed over and the next one runs, so a
// page value that is no number ends in the announcement too.
void guncellemeKontrol(kit::WebBrowser& wb);

}  // namespace shell
