// Sofravan: the office program of a school's dining hall. The run begins at
// the splash window; the program's folder is its working folder.

#include <QApplication>

#include "shell/frm_splash.h"
#include "shell/window_registry.h"

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Sofravan"));
    QApplication::setQuitOnLastWindowClosed(true);
    shell::instance<shell::frmSplash>().show();
    return QApplication::exec();
}
