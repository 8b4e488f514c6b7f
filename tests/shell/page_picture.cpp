#include "tests/shell/page_picture.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QWebEnginePage>

#include "shell/kit/web_browser.h"

namespace windows::testing {
namespace {

// The page of the browser at the browser's size: a CSS pixel is 3/4 of a
// point, so a page of the view's size in points, read back at 96 dots per
// inch, has the view's pixels.
QImage pagePicture(kit::WebBrowser& browser, const QTemporaryDir& folder) {
    const QString pdf = folder.filePath(QStringLiteral("page.pdf"));
    const QSizeF points(browser.width() * 0.75, browser.height() * 0.75);
    const QPageLayout layout(QPageSize(points, QPageSize::Point), QPageLayout::Portrait,
                             QMarginsF());
    QSignalSpy printed(browser.page(), &QWebEnginePage::pdfPrintingFinished);
    browser.page()->printToPdf(pdf, layout);
    if (!printed.wait(10000))
        return {};
    const QString png = folder.filePath(QStringLiteral("page"));
    QProcess::execute(QStringLiteral("pdftoppm"),
                      {QStringLiteral("-png"), QStringLiteral("-singlefile"), QStringLiteral("-r"),
                       QStringLiteral("96"), pdf, png});
    return QImage(png + QStringLiteral(".png"));
}

}  // namespace

QImage windowPicture(QWidget& window) {
    QImage picture = window.grab().toImage();
    QTemporaryDir folder;
    QPainter painter(&picture);
    for (kit::WebBrowser* browser : window.findChildren<kit::WebBrowser*>()) {
        if (!browser->isVisible())
            continue;
        const QImage page = pagePicture(*browser, folder);
        if (page.isNull())
            continue;
        const QRect place(browser->mapTo(&window, QPoint(0, 0)), browser->size());
        painter.drawImage(place, page);
    }
    return picture;
}

}  // namespace windows::testing
