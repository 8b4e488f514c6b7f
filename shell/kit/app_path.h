#pragma once

#include <QString>

namespace kit {

// The program's folder, the original's App.Path: where the school's file,
// the sample workbook and the fixed pictures lie.
QString appPath();

// App.Path joined with a file name where the original wrote App.Path & "\x".
QString inAppPath(const QString& fileName);

// A path as the school's file stores it (the original's, "C:\Resimler\1.jpg")
// made usable on this machine: backslashes are folder separators. Nothing
// else changes, and the stored value is never rewritten.
QString localPath(QString storedPath);

// Tests run the windows on a folder of their own; an empty text goes back
// to the executable's folder.
void setAppPathForTests(const QString& folder);

}  // namespace kit
