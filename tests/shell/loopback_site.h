#pragma once

#include <QByteArray>
#include <QString>
#include <QTcpServer>
#include <QUrl>

namespace windows::testing {

// A web site of a test on the loopback interface: each connection's request
// is answered with what respond() makes of its address, and the connection
// is closed. One that does not answer takes each connection and never says
// a word. It serves until it goes.
class LoopbackSite : public QTcpServer {
    Q_OBJECT
public:
    explicit LoopbackSite(bool answers = true);
    // "http://127.0.0.1:port".
    QString address() const;
    // Connections taken so far.
    int requests() const { return requests_; }

protected:
    // The whole response, status line and headers included, to a request
    // for `url` (path and query).
    virtual QByteArray respond(const QUrl& url) = 0;

private:
    void answer();
    bool answers_;
    int requests_ = 0;
};

// An HTTP/1.0 response of `status` ("200 OK") with an HTML page in UTF-8.
QByteArray htmlResponse(const QByteArray& status, const QString& page);

}  // namespace windows::testing
