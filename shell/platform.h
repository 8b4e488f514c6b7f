#pragma once

#include <cstdint>
#include <optional>

#include <QString>
#include <QStringList>
#include <QVariant>

#include "shell/kit/app_path.h"

namespace shell {

using kit::appPath;
using kit::inAppPath;

// A directory-style lookup of the path: files and folders both count. Any
// error gives false.
bool FileFolderExists(const QString& path);
// True when the file can be opened for reading; any error gives false.
bool DosyaVarmı(const QString& path);

// Whether the computer is online, by the platform's own view of its
// network. Without a way to tell, false.
bool internetvarmi();
// Tests decide the answer themselves (no network is reached from a test
// unless it says so); nothing puts the platform's answer back.
void setInternetForTests(std::optional<bool> online);

// A DWORD under a registry root key; on platforms without a registry, in
// the program's own settings store under the same names. Failures are
// ignored.
enum class RegistryRoot { CurrentUser, LocalMachine };
void RegSetDword(RegistryRoot root, const QString& subKey, const QString& valueName,
                 std::uint32_t value);
// The value as the settings store is given it: a 32-bit unsigned number,
// which the Windows registry stores as REG_DWORD (a 64-bit one would become
// REG_QWORD, which readers of a DWORD ignore).
QVariant registryDword(std::uint32_t value);
// For checks: the value written, or -1.
qint64 RegGetDword(RegistryRoot root, const QString& subKey, const QString& valueName);

// "32" or "64" for the operating system's word size, other text when the
// platform tells neither.
QString GetOsArchitecture();

// The platform's ShellExecute with the verb "open": the file goes to the
// application the desktop keeps for its kind, without waiting for it.
// False when the desktop has none or refuses.
bool ShellExecuteOpen(const QString& file);

// A value under a registry root key as text: a string as stored, a DWORD as
// its decimal number. Nothing when the key or the value is missing. On
// platforms without a registry, from the program's own settings store, where
// RegSetDword writes.
std::optional<QString> RegGetString(RegistryRoot root, const QString& subKey,
                                    const QString& valueName);

// How the runtime's Shell shows the started program's window: its numbers.
// Only Windows has a say in it; elsewhere the program shows itself.
enum class WindowStyle { NormalFocus = 1, MinimizedFocus = 2 };

// An outside program in the program's folder by its name: "name.exe" on
// Windows, "name" elsewhere.
QString outsideProgram(const QString& name);

// The runtime's Shell: starts the program with its arguments and does not
// wait for it or look at what it does. The started program inherits the
// working folder. Throws kit::RunTimeError 53, "File not found", when it
// cannot be started.
void Shell(const QString& program, const QStringList& arguments, WindowStyle style);

// Ends the own process at once, exit code 0: nothing is closed or saved.
[[noreturn]] void ProgramiKapat();

}  // namespace shell
