#pragma once

#include <QString>

namespace portal {

// The address of the e-Okul portal's start page: main.aspx at the root of
// the ministry's web server, over a secure connection.
//
// The environment variable SOFRAVAN_EOKUL_SITE, when set, takes the place
// of the server ("http://127.0.0.1:8080"), so that the window can be tried
// on pages of one's own; a clerk never sets it.
QString startPage();

}  // namespace portal
