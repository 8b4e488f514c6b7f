#include "shell/kit/app_path.h"

#include <QCoreApplication>
#include <QDir>

namespace kit {
namespace {

QString& chosenFolder() {
    static QString folder;
    return folder;
}

}  // namespace

QString appPath() {
    return chosenFolder().isEmpty() ? QCoreApplication::applicationDirPath() : chosenFolder();
}

QString inAppPath(const QString& fileName) {
    return appPath() + QDir::separator() + fileName;
}

QString localPath(QString storedPath) {
    return storedPath.replace(u'\\', u'/');
}

void setAppPathForTests(const QString& folder) {
    chosenFolder() = folder;
}

}  // namespace kit
