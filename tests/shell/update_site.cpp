#include "tests/shell/update_site.h"

#include <QTcpSocket>

namespace shell::testing {

UpdateSite::UpdateSite(QString body, bool answers) : body_(std::move(body)), answers_(answers) {
    connect(this, &QTcpServer::newConnection, this, &UpdateSite::answer);
    listen(QHostAddress::LocalHost);
}

QString UpdateSite::page() const {
    return QStringLiteral("http://127.0.0.1:%1/sofravan.html").arg(serverPort());
}

void UpdateSite::answer() {
    while (QTcpSocket* socket = nextPendingConnection()) {
        ++requests_;
        if (!answers_)
            continue;  // held open by the server, never answered
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            if (!socket->canReadLine())
                return;
            QObject::disconnect(socket, &QTcpSocket::readyRead, nullptr, nullptr);
            const QByteArray bytes = body_.toUtf8();
            socket->write(
                "HTTP/1.0 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n"
                "Content-Length: " +
                QByteArray::number(bytes.size()) + "\r\n\r\n" + bytes);
            socket->disconnectFromHost();
        });
    }
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
