#include "shell/program_state.h"

#include <utility>

#include "shell/kit/connection_strings.h"
#include "shell/kit/failure_modes.h"

namespace shell {

std::unique_ptr<store::Connection> baglanti;
std::unique_ptr<store::Recordset> kayit;
std::unique_ptr<store::Connection> baglanti2;
std::unique_ptr<store::Recordset> kayit2;
bool yenisurumvar = false;

QString versionText() {
    return QStringLiteral("%1.%2.%3").arg(kVersionMajor).arg(kVersionMinor).arg(kVersionRevision);
}

void baglantiac() {
    kit::skip([] {
        if (!baglanti)
            baglanti = std::make_unique<store::Connection>();
        baglanti->Open(kit::relativeConnectionString().toStdString());
    });
}

jet::Value readSchoolName(jet::Value unread) {
    jet::Value okul = std::move(unread);
    kit::skip([] {
        if (!baglanti)
            baglanti = std::make_unique<store::Connection>();
    });
    kit::skip([] {
        baglanti->Open(kit::absoluteConnectionString(QStringLiteral("kvl.mdb")).toStdString());
    });
    kit::skip([] {
        if (!kayit)
            kayit = std::make_unique<store::Recordset>();
    });
    kit::skip([] {
        kayit->open(u"SELECT* from AYAR", *baglanti, store::CursorType::Keyset,
                    store::LockType::Optimistic, -1);
    });
    kit::skip([&okul] { okul = kayit->field(u"OKUL"); });
    kit::skip([] { kayit->close(); });
    kit::skip([] { baglanti->Close(); });
    kayit.reset();
    baglanti.reset();
    return okul;
}

}  // namespace shell
