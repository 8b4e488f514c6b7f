#pragma once

#include <QObject>
#include <QString>

#include "store/data_control.h"

namespace kit {

// A data control laid on a window: the data layer's DataControl, with Qt
// signals so that any number of bound boxes, grids and navigation bars can
// follow its record set. It lives as long as its window.
class DataControl : public QObject {
    Q_OBJECT
public:
    // The design of the control: its record source (a table name or a
    // query), its navigation bar's caption. The connection string is the
    // relative one every data control of the program uses.
    DataControl(const QString& recordSource, const QString& caption, QObject* parent = nullptr);

    // Runs the record source again. Throws DataError.
    void Refresh();
    bool isOpen() const { return control_.recordset().isOpen(); }
    store::Recordset& Recordset() { return control_.recordset(); }
    QString Caption() const;
    // The original's Caption assignment: the navigation bar shows the text.
    void setCaption(const QString& caption);
    void setRecordSource(const QString& recordSource);
    // Another source than the program's database (a workbook): taken at
    // the next Refresh.
    void setConnectionString(const QString& connectionString);
    // What happens to a pending edit when the window goes down: it is
    // written. Throws DataError.
    void writePendingEdit();

signals:
    // The current row changed, or the rows in view did (rowsChanged first).
    void moveComplete();
    // The rows in view are others: refreshed, filtered, sorted, added to or
    // deleted from.
    void rowsChanged();
    // An edited or new row is about to be written: a handler may still
    // assign fields of the record set's current row, and they are written
    // with it. The original's WillChangeRecord.
    void willChangeRecord();
    void captionChanged();

public slots:
    // Tells the followers to look again; grids call it after writing through
    // the record set themselves.
    void announce();

private:
    store::DataControl control_;
    unsigned long seenViewVersion_ = 0;
    bool seenOpen_ = false;
};

// When a window goes down, the pending edits of its data controls are
// written; a failure shows its description.
void writePendingEdits(QObject* window);

// Opens a data control as its window loads. A control that cannot reach its
// source shows the error's description and stays closed; the window opens
// all the same.
void openDataControl(DataControl& control);

}  // namespace kit
