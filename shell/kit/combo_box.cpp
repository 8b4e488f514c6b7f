#include "shell/kit/combo_box.h"

namespace kit {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    connect(this, &QComboBox::activated, this, [this] { emit Click(); });
}

void ComboBox::setListIndex(int index) {
    setCurrentIndex(index);
    emit Click();
}

}  // namespace kit
