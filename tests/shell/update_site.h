#pragma once

#include <QString>

#include "tests/shell/loopback_site.h"

namespace shell::testing {

// The maker's update page on the loopback interface: sofravan.html with
// the given body, or, when it does not answer, a server that takes each
// connection and never says a word. It serves until it goes.
class UpdateSite : public windows::testing::LoopbackSite {
    Q_OBJECT
public:
    explicit UpdateSite(QString body, bool answers = true);
    // "http://127.0.0.1:port/sofravan.html".
    QString page() const;

protected:
    QByteArray respond(const QUrl& url) override;

private:
    QString body_;
};

// A page that carries the version in the element "versiyon", as the
// maker's page does.
QString versionPage(const QString& value);

// The update page's address on a loopback port with no server behind it:
// connections are refused.
QString refusingPage();

}  // namespace shell::testing
