#include "shell/kit/connection_strings.h"

#include "shell/kit/app_path.h"

namespace kit {

QString connectionString(const QString& dataSource) {
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + dataSource +
           QStringLiteral(";Persist Security Info=True;Jet OLEDB:database Password=") +
           QString::fromLatin1(kDatabasePassword);
}

QString relativeConnectionString() {
    return connectionString(QStringLiteral("kvl.mdb"));
}

QString absoluteConnectionString(const QString& fileName) {
    return connectionString(inAppPath(fileName));
}

}  // namespace kit
