#include "shell/kit/connection_strings.h"

#include "shell/kit/app_path.h"

namespace kit {
namespace {

QString& relativeDataSource() {
    static QString source = QStringLiteral("kvl.mdb");
    return source;
}

}  // namespace

QString connectionString(const QString& dataSource) {
    return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + dataSource +
           QStringLiteral(";Persist Security Info=True;Jet OLEDB:database Password=") +
           QString::fromLatin1(kDatabasePassword);
}

QString relativeConnectionString() {
    return connectionString(relativeDataSource());
}

void setRelativeDataSourceForTools(const QString& path) {
    relativeDataSource() = path.isEmpty() ? QStringLiteral("kvl.mdb") : path;
}

QString absoluteConnectionString(const QString& fileName) {
    return connectionString(inAppPath(fileName));
}

}  // namespace kit
