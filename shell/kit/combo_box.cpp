#include "shell/kit/combo_box.h"

#include "store/sql/collation.h"

namespace kit {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent) {
    connect(this, &QComboBox::activated, this, [this] { emit Click(); });
}

void ComboBox::setListIndex(int index) {
    setCurrentIndex(index);
    emit Click();
}

void ComboBox::AddItem(const QString& item) {
    int at = count();
    if (Sorted) {
        const std::u16string key = item.toStdU16String();
        while (at > 0 && sql::compareText(itemText(at - 1).toStdU16String(), key) > 0)
            --at;
    }
    insertItem(at, item);
}

}  // namespace kit
