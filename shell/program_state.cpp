#include "shell/program_state.h"

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

}  // namespace shell
