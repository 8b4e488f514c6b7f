#include "shell/kit/bound_text_box.h"

#include "shell/kit/failure_modes.h"
#include "shell/kit/value_text.h"

namespace kit {

BoundTextBox::BoundTextBox(QWidget* parent) : QLineEdit(parent) {
    connect(this, &QLineEdit::textEdited, this, &BoundTextBox::takeUserText);
}

void BoundTextBox::bind(DataControl& control, const QString& field) {
    control_ = &control;
    field_ = field;
    connect(&control, &DataControl::moveComplete, this, &BoundTextBox::showCurrentRow);
    showCurrentRow();
}

void BoundTextBox::showCurrentRow() {
    if (!control_ || !control_->isOpen())
        return;
    store::Recordset& rows = control_->Recordset();
    QString text;
    // Without a current row (an empty or filtered-out set) the box is empty.
    skip([&] {
        if (rows.absolutePosition() != store::Recordset::kPositionUnknown || rows.addingNew()) {
            text = kit::displayText(rows.field(field_.toStdU16String()));
        }
    });
    setText(text);
}

void BoundTextBox::takeUserText(const QString& text) {
    if (!control_ || !control_->isOpen())
        return;
    store::Recordset& rows = control_->Recordset();
    // A text that is no value of the column stays in the box only: the row
    // keeps what it held, and the box shows that again at the next move.
    skip([&] {
        const std::size_t ordinal = rows.ordinalOf(field_.toStdU16String());
        rows.setField(ordinal, valueFromText(text, rows.fieldTypes()[ordinal]));
    });
}

}  // namespace kit
