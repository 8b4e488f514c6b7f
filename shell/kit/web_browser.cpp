#include "shell/kit/web_browser.h"

#include <memory>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <QWebEnginePage>

namespace kit {
namespace {

// A page that can keep its scripts' errors and console output to itself.
class QuietPage : public QWebEnginePage {
public:
    explicit QuietPage(QObject* parent) : QWebEnginePage(parent) {}

    bool silent = false;

protected:
    void javaScriptConsoleMessage(JavaScriptConsoleMessageLevel level, const QString& message,
                                  int lineNumber, const QString& sourceID) override {
        if (!silent)
            QWebEnginePage::javaScriptConsoleMessage(level, message, lineNumber, sourceID);
    }
};

// The script wrapped so that a throw comes back as a value: the answer is
// an object with "ok" and either "value" or "error".
QString guarded(const QString& functionBody) {
    return QStringLiteral(
               "(function() { try { return { ok: true, value: (function() {\n%1\n})() }; }"
               " catch (e) { return { ok: false, error: String(e) }; } })()")
        .arg(functionBody);
}

}  // namespace

WebBrowser::WebBrowser(QWidget* parent) : QWebEngineView(parent) {
    setPage(new QuietPage(this));
    connect(this, &QWebEngineView::loadStarted, this, [this] { busy_ = true; });
    connect(this, &QWebEngineView::loadFinished, this, [this] { busy_ = false; });
}

void WebBrowser::setSilent(bool silent) {
    static_cast<QuietPage*>(page())->silent = silent;
}

bool WebBrowser::silent() const {
    return static_cast<QuietPage*>(page())->silent;
}

// Busy from the call on, as the original's control is, not from the moment
// the engine reports the load as started.
//
// A page on this machine is read in the system's code page, as the
// original's browser on a Turkish Windows read a page that declares none.
// Chromium would guess the encoding from the bytes instead, and takes a
// short Turkish text for Western European.
void WebBrowser::Navigate(const QString& address) {
    busy_ = true;
    const QUrl url = QUrl::fromUserInput(address);
    QFile page(url.toLocalFile());
    if (url.isLocalFile() && page.open(QIODevice::ReadOnly)) {
        setContent(page.readAll(), QStringLiteral("text/html;charset=windows-1254"), url);
        return;
    }
    setUrl(url);
}

bool WebBrowser::Busy() const {
    return busy_;
}

QVariant WebBrowser::evaluate(const QString& functionBody, int timeoutMs) {
    if (url().isEmpty())
        throw ScriptError("no page is loaded");
    QEventLoop loop;
    QVariant answer;
    bool answered = false;
    // The page may answer after the loop has given up; the guard keeps that
    // late answer off the finished call's locals.
    auto alive = std::make_shared<bool>(true);
    page()->runJavaScript(guarded(functionBody), [&, alive](const QVariant& result) {
        if (!*alive)
            return;
        answer = result;
        answered = true;
        loop.quit();
    });
    if (!answered) {
        QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    *alive = false;
    if (!answered)
        throw ScriptError("the page did not answer in time");
    const QVariantMap outcome = answer.toMap();
    if (!outcome.contains(QStringLiteral("ok")))
        throw ScriptError("the page gave no answer");
    if (!outcome.value(QStringLiteral("ok")).toBool())
        throw ScriptError(outcome.value(QStringLiteral("error")).toString().toStdString());
    return outcome.value(QStringLiteral("value"));
}

void Wait(const WebBrowser& browser) {
    QCoreApplication::processEvents();
    QCoreApplication::processEvents();
    // Busy changes only through an event, so the loop sleeps until one
    // comes rather than turning on an empty queue.
    while (browser.Busy())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

}  // namespace kit
