#pragma once

#include <QString>

namespace reports {

// The school's name that every report title begins with: the main window's
// copy of AYAR.OKUL. A run without the main window (the print-report tool)
// sets it from AYAR itself.
QString schoolName();
void setSchoolNameWithoutMainWindow(const QString& name);

}  // namespace reports
