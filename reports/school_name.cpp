#include "reports/school_name.h"

#include "shell/form1.h"
#include "shell/window_registry.h"

namespace reports {
namespace {

QString& nameWithoutMainWindow() {
    static QString name;
    return name;
}

}  // namespace

QString schoolName() {
    if (shell::isLoaded<shell::Form1>())
        return shell::instance<shell::Form1>().Text12->text();
    return nameWithoutMainWindow();
}

void setSchoolNameWithoutMainWindow(const QString& name) {
    nameWithoutMainWindow() = name;
}

}  // namespace reports
