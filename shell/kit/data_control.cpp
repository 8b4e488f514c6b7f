#include "shell/kit/data_control.h"

#include "shell/kit/connection_strings.h"
#include "shell/kit/message_box.h"

namespace kit {

DataControl::DataControl(const QString& recordSource, const QString& caption, QObject* parent)
    : QObject(parent) {
    // Every data control opens the file in the working folder, as the
    // controls laid on the original's windows did.
    control_.connectionString = relativeConnectionString().toStdString();
    control_.recordSource = recordSource.toStdU16String();
    control_.caption = caption.toStdU16String();
    control_.onMoveComplete = [this] { announce(); };
    control_.onWillChangeRecord = [this] { emit willChangeRecord(); };
}

void DataControl::Refresh() {
    // A fresh record set starts its versions anew: it is always new rows.
    seenOpen_ = false;
    control_.Refresh();
}

QString DataControl::Caption() const {
    return QString::fromStdU16String(control_.caption);
}

void DataControl::setCaption(const QString& caption) {
    control_.caption = caption.toStdU16String();
    emit captionChanged();
}

void DataControl::setRecordSource(const QString& recordSource) {
    control_.recordSource = recordSource.toStdU16String();
}

void DataControl::setConnectionString(const QString& connectionString) {
    control_.setConnectionString(connectionString.toStdString());
}

void DataControl::writePendingEdit() {
    if (isOpen())
        Recordset().leaveRow();
}

void DataControl::announce() {
    store::Recordset& rows = control_.recordset();
    const bool open = rows.isOpen();
    const unsigned long version = open ? rows.viewVersion() : 0;
    if (open != seenOpen_ || version != seenViewVersion_) {
        seenOpen_ = open;
        seenViewVersion_ = version;
        emit rowsChanged();
    }
    emit moveComplete();
}

void writePendingEdits(QObject* window) {
    for (DataControl* control : window->findChildren<DataControl*>()) {
        try {
            control->writePendingEdit();
        } catch (const std::exception& error) {
            MsgBox(QString::fromUtf8(error.what()), 48);
        }
    }
}

void openDataControl(DataControl& control) {
    try {
        control.Refresh();
    } catch (const std::exception& error) {
        MsgBox(QString::fromUtf8(error.what()), 48);
    }
}

}  // namespace kit
