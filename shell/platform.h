#pragma once

#include <cstdint>
#include <optional>

#include <QString>

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

// A DWORD under a registry root key; on platforms without a registry, in
// the program's own settings store under the same names. Failures are
// ignored.
enum class RegistryRoot { CurrentUser, LocalMachine };
void RegSetDword(RegistryRoot root, const QString& subKey, const QString& valueName,
                 std::uint32_t value);
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

// Ends the own process at once, exit code 0: nothing is closed or saved.
[[noreturn]] void ProgramiKapat();

}  // namespace shell
