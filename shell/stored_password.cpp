#include "shell/stored_password.h"

#include "shell/kit/connection_strings.h"
#include "store/connection.h"
#include "store/recordset.h"

namespace shell {

jet::Value storedPassword() {
    store::Connection connection;
    store::Recordset settings;
    connection.Open(kit::absoluteConnectionString(QStringLiteral("KVL.mdb")).toStdString());
    settings.open(u"select* from AYAR", connection, store::CursorType::Keyset,
                  store::LockType::Optimistic, -1);
    jet::Value password = settings.field(u"SIFRE");
    settings.close();
    connection.Close();
    return password;
}

}  // namespace shell
