#include "shell/platform.h"

#include <cstdlib>
#include <memory>

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkInformation>
#include <QProcess>
#include <QSettings>
#include <QSysInfo>
#include <QUrl>

#include "shell/kit/app_path.h"
#include "shell/kit/failure_modes.h"

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace shell {
namespace {

std::optional<bool>& internetForTests() {
    static std::optional<bool> online;
    return online;
}

QString registryPath(RegistryRoot root, const QString& subKey) {
    const QString rootName = root == RegistryRoot::LocalMachine
                                 ? QStringLiteral("HKEY_LOCAL_MACHINE")
                                 : QStringLiteral("HKEY_CURRENT_USER");
    return rootName + QLatin1Char('\\') + subKey;
}

// On Windows the real registry; elsewhere an INI file of the program's
// settings in which the key path is the group.
std::unique_ptr<QSettings> registryStore(RegistryRoot root, const QString& subKey) {
#ifdef Q_OS_WIN
    return std::make_unique<QSettings>(registryPath(root, subKey), QSettings::NativeFormat);
#else
    auto store =
        std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                    QStringLiteral("Sofravan"), QStringLiteral("registry"));
    store->beginGroup(registryPath(root, subKey).replace(QLatin1Char('\\'), QLatin1Char('/')));
    return store;
#endif
}

}  // namespace

bool FileFolderExists(const QString& path) {
    return !path.isEmpty() && !QFileInfo(path).fileName().isEmpty() && QFileInfo::exists(path);
}

bool DosyaVarmı(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    file.close();
    return true;
}

bool internetvarmi() {
    if (internetForTests())
        return *internetForTests();
    if (!QNetworkInformation::loadDefaultBackend())
        return false;
    const QNetworkInformation* network = QNetworkInformation::instance();
    return network != nullptr &&
           network->reachability() == QNetworkInformation::Reachability::Online;
}

void setInternetForTests(std::optional<bool> online) {
    internetForTests() = online;
}

QVariant registryDword(std::uint32_t value) {
    return QVariant::fromValue(static_cast<quint32>(value));
}

void RegSetDword(RegistryRoot root, const QString& subKey, const QString& valueName,
                 std::uint32_t value) {
    const auto store = registryStore(root, subKey);
    store->setValue(valueName, registryDword(value));
    store->sync();
}

qint64 RegGetDword(RegistryRoot root, const QString& subKey, const QString& valueName) {
    const auto store = registryStore(root, subKey);
    bool ok = false;
    const qint64 value = store->value(valueName).toLongLong(&ok);
    return ok ? value : -1;
}

QString GetOsArchitecture() {
    QString cpu = QSysInfo::currentCpuArchitecture();
    if (cpu.contains(QStringLiteral("64")))
        return QStringLiteral("64");
    if (cpu == QStringLiteral("i386") || cpu == QStringLiteral("arm"))
        return QStringLiteral("32");
    return cpu;
}

bool ShellExecuteOpen(const QString& file) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QDir::cleanPath(kit::localPath(file))));
}

std::optional<QString> RegGetString(RegistryRoot root, const QString& subKey,
                                    const QString& valueName) {
    const auto store = registryStore(root, subKey);
    if (!store->contains(valueName))
        return std::nullopt;
    return store->value(valueName).toString();
}

QString outsideProgram(const QString& name) {
#ifdef Q_OS_WIN
    return inAppPath(name + QStringLiteral(".exe"));
#else
    return inAppPath(name);
#endif
}

void Shell(const QString& program, const QStringList& arguments, WindowStyle style) {
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
#ifdef Q_OS_WIN
    process.setCreateProcessArgumentsModifier([style](QProcess::CreateProcessArguments* start) {
        start->startupInfo->dwFlags |= STARTF_USESHOWWINDOW;
        start->startupInfo->wShowWindow =
            style == WindowStyle::MinimizedFocus ? SW_SHOWMINIMIZED : SW_SHOWNORMAL;
    });
#else
    static_cast<void>(style);
#endif
    if (!process.startDetached())
        throw kit::RunTimeError(53, "File not found");
}

void ProgramiKapat() {
    std::_Exit(0);
}

}  // namespace shell
