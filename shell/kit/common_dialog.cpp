#include "shell/kit/common_dialog.h"

#include <QColorDialog>

#include "shell/kit/colour_number.h"

namespace kit {

CommonDialog::CommonDialog(QWidget* owner) : QObject(owner), owner_(owner) {}

void CommonDialog::ShowColor() {
    QColorDialog dialog(colourOfNumber(color_), owner_);
    dialog.setObjectName(QStringLiteral("ColorDialog"));
    dialog.setWindowTitle(QStringLiteral("Renk"));
    if (dialog.exec() == QDialog::Accepted)
        color_ = numberOfColour(dialog.selectedColor());
}

}  // namespace kit
