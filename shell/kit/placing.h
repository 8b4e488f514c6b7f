#pragma once

#include <QString>
#include <QWidget>

#include "shell/kit/grid_column.h"

namespace kit {

// A window as designed: named, captioned (its caption is also its name for
// assistive technology), at its designed size in twips, and unloaded, that
// is deleted, when it closes.
inline void designWindow(QWidget* window, const char* name, const QString& caption, int widthTwips,
                         int heightTwips) {
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setObjectName(QString::fromLatin1(name));
    window->setWindowTitle(caption);
    window->setAccessibleName(caption);
    window->resize(twipsToPixels(widthTwips), twipsToPixels(heightTwips));
}

// A control placed in its parent where the designed window has it, in twips.
inline void place(QWidget* control, int left, int top, int width, int height) {
    control->setGeometry(twipsToPixels(left), twipsToPixels(top), twipsToPixels(width),
                         twipsToPixels(height));
}

// A control given the name the designed window gives it, which is how
// assistive technology and the tests find it.
template <class Control>
Control* named(Control* control, const char* name) {
    control->setObjectName(QString::fromLatin1(name));
    return control;
}

}  // namespace kit
