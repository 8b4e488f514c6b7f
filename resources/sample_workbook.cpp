#include "resources/sample_workbook.h"

#include <QFile>

namespace resources {

QByteArray sampleWorkbook() {
    QFile file(QStringLiteral(":/resources/YEMEK_MENUSU.XLS"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

}  // namespace resources
