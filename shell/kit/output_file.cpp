#include "shell/kit/output_file.h"

#include <QFile>

#include "shell/kit/windows1254.h"

namespace kit {

void printToOutputFile(const QString& path, const QString& text) {
    const QByteArray bytes = toWindows1254(text + QStringLiteral("\r\n"));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(bytes) != bytes.size() || !file.flush())
        throw FileAccessError();
}

}  // namespace kit
