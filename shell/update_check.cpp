#include "shell/update_check.h"

#include <QDeadlineTimer>
#include <QTimer>
#include <QUrl>

#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/vb_number.h"
#include "shell/kit/web_browser.h"
#include "shell/program_state.h"
#include "store/data_error.h"
#include "store/number_text.h"

namespace shell {
namespace {

// The browser's Refresh: the page shown is loaded again, busy from the call
// on. Without an address there is nothing to load, and the step fails.
void refresh(kit::WebBrowser& wb) {
    const QUrl address = wb.url();
    if (address.isEmpty() || !address.isValid())
        throw store::DataError("no page to refresh");
    wb.Navigate(address.toString(QUrl::FullyEncoded));
}

// Wait, with the check's time limit: once the time is up, a page still
// loading is stopped, which ends its load and clears Busy.
void waitWithin(kit::WebBrowser& wb, const QDeadlineTimer& limit) {
    QTimer stopper;
    stopper.setInterval(20);
    QObject::connect(&stopper, &QTimer::timeout, &wb, [&wb, &limit] {
        if (limit.hasExpired() && wb.Busy())
            wb.stop();
    });
    stopper.start();
    kit::Wait(wb);
}

}  // namespace

QString updatePage() {
    const QString chosen = qEnvironmentVariable("SOFRAVAN_UPDATE_PAGE");
    return chosen.isEmpty() ? QStringLiteral("https://guncelleme.sofravan.com.tr/sofravan.html")
                            : chosen;
}

qint16 versionNumber(int major, int minor, int revision) {
    const QString digits =
        QString::number(major) + QString::number(minor) + QString::number(revision);
    return kit::CInt(digits);
}

bool pageIsNewer(const std::optional<QString>& pageNumber, qint16 own) {
    if (!pageNumber)
        return 0 > own;
    const std::optional<store::DecimalNumber> number =
        store::readNumber(pageNumber->toStdU16String());
    if (!number)
        throw store::DataError("Type mismatch");
    return number->toDouble() > own;
}

void guncellemeKontrol(kit::WebBrowser& wb) {
    const QDeadlineTimer limit(kUpdateCheckLimitMs);
    kit::skip([&] { wb.Navigate(QStringLiteral("//about blank")); });
    kit::skip([&] { wb.Navigate(updatePage()); });
    kit::skip([&] { waitWithin(wb, limit); });
    // Once the time is up no further load is started.
    kit::skip([&] {
        if (!limit.hasExpired())
            refresh(wb);
    });
    kit::skip([&] {
        if (!limit.hasExpired())
            refresh(wb);
    });
    kit::skip([&] { waitWithin(wb, limit); });

    qint16 surum = 0;
    kit::skip([&] { surum = versionNumber(kVersionMajor, kVersionMinor, kVersionRevision); });
    // Left empty when the page or its element cannot be read.
    std::optional<QString> sayfa;
    kit::skip([&] {
        const QVariant value =
            wb.evaluate(QStringLiteral("return document.getElementById('versiyon').value;"));
        if (!value.isValid())
            throw store::DataError("object doesn't support this property");
        sayfa = value.toString().remove(QLatin1Char('.'));
    });
    // A comparison that fails goes on with the next statement, which is
    // the announcement.
    bool newer = true;
    kit::skip([&] { newer = pageIsNewer(sayfa, surum); });
    if (newer) {
        yenisurumvar = true;
        kit::MsgBox(QStringLiteral("Program güncellemesi bulundu.\nÇıkışta program güncellenecek."),
                    64, QStringLiteral("Yurtsayim"));
    }
}

}  // namespace shell
