#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QString>

#include "shell/kit/data_control.h"

namespace kit {

// A text box bound to a column of a data control's current row. It shows
// the row's value (its change signal fires as for any other setting of the
// text); what the user types goes into the row's edit buffer, which the
// record set writes when it leaves the row, is refreshed, or the window
// goes down.
class BoundTextBox : public QLineEdit {
    Q_OBJECT
public:
    explicit BoundTextBox(QWidget* parent = nullptr);

    void bind(DataControl& control, const QString& field);
    const QString& dataField() const { return field_; }

private:
    void showCurrentRow();
    void takeUserText(const QString& text);

    QPointer<DataControl> control_;
    QString field_;
};

}  // namespace kit
