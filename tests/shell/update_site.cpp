#include "tests/shell/update_site.h"

#include <QTcpServer>

namespace shell::testing {

UpdateSite::UpdateSite(QString body, bool answers)
    : LoopbackSite(answers), body_(std::move(body)) {}

QString UpdateSite::page() const {
    return address() + QStringLiteral("/sofravan.html");
}

QByteArray UpdateSite::respond(const QUrl& /*url*/) {
    return windows::testing::htmlResponse("200 OK", body_);
}

QString versionPage(const QString& value) {
    return QStringLiteral(
               "<!DOCTYPE html><html><body><p>Sofravan</p>"
               "<input type=\"hidden\" id=\"versiyon\" value=\"%1\"></body></html>")
        .arg(value);
}

QString refusingPage() {
    QTcpServer closed;
    closed.listen(QHostAddress::LocalHost);
    const quint16 port = closed.serverPort();
    closed.close();
    return QStringLiteral("http://127.0.0.1:%1/sofravan.html").arg(port);
}

}  // namespace shell::testing
