#include "tests/shell/loopback_site.h"

#include <QTcpSocket>

namespace windows::testing {

LoopbackSite::LoopbackSite(bool answers) : answers_(answers) {
    connect(this, &QTcpServer::newConnection, this, &LoopbackSite::answer);
    listen(QHostAddress::LocalHost);
}

QString LoopbackSite::address() const {
    return QStringLiteral("http://127.0.0.1:%1").arg(serverPort());
}

void LoopbackSite::answer() {
    while (QTcpSocket* socket = nextPendingConnection()) {
        ++requests_;
        if (!answers_)
            continue;  // held open by the server, never answered
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QTcpSocket::readyRead, socket, [this, socket] {
            if (!socket->canReadLine())
                return;
            QObject::disconnect(socket, &QTcpSocket::readyRead, nullptr, nullptr);
            // "GET /path?query HTTP/1.1"
            const QList<QByteArray> request = socket->readLine().split(' ');
            socket->write(respond(QUrl(QString::fromLatin1(request.value(1)))));
            socket->disconnectFromHost();
        });
    }
}

QByteArray htmlResponse(const QByteArray& status, const QString& page) {
    const QByteArray bytes = page.toUtf8();
    return "HTTP/1.0 " + status + "\r\nContent-Type: text/html; charset=utf-8\r\n" +
           "Content-Length: " + QByteArray::number(bytes.size()) + "\r\nConnection: close\r\n\r\n" +
           bytes;
}

}  // namespace windows::testing
