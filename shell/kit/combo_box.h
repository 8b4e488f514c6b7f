#pragma once

#include <QComboBox>

namespace kit {

// A combo box whose Click runs as the original's does: when the user picks
// an entry, even the one already shown, and when code sets the list index.
class ComboBox : public QComboBox {
    Q_OBJECT
public:
    explicit ComboBox(QWidget* parent = nullptr);

    void setListIndex(int index);
    int ListIndex() const { return currentIndex(); }
    // The original's AddItem: at the end, or in a Sorted combo at its place
    // in the system's order of texts (after entries that sort equal).
    void AddItem(const QString& item);
    bool Sorted = false;

signals:
    void Click();
};

}  // namespace kit
