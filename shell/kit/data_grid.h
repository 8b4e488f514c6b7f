#pragma once

#include <QTableView>
#include <QVector>

#include "shell/kit/data_control.h"
#include "shell/kit/data_grid_model.h"
#include "shell/kit/grid_column.h"

namespace kit {

// The data grid bound to a data control: its columns as designed, the
// record set's current row as the grid's current row (a click moves the
// record set), editing where allowed, a new record at the asterisk row, and
// the Delete key removing the current record.
class DataGrid : public QTableView {
    Q_OBJECT
public:
    explicit DataGrid(QWidget* parent = nullptr);

    void setDataSource(DataControl* control);
    void setColumns(QVector<GridColumn> columns);
    DataGridModel& model() { return model_; }

    void setAllowUpdate(bool allow) { model_.allowUpdate = allow; }
    void setAllowAddNew(bool allow);
    bool allowDelete = false;

    // The original's Row and Col: the current cell, -1 without one.
    int Row() const { return currentIndex().row(); }
    int Col() const { return currentIndex().column(); }
    // The original's Text: what the current cell shows, "" without one.
    QString Text() const;
    // The original's Text assignment: the text goes into the current cell
    // as if typed there, and is written when the record set leaves the row.
    // Without a current cell nothing happens.
    void setText(const QString& text);
    // The original's Columns(i).Text: what the column shows in the record
    // set's current row, "" without one.
    QString columnText(int column) const;

    // The original's Columns(i).Visible and Columns(i).Width at run time;
    // they outlast a reload. A negative width is taken as 0.
    void setColumnVisible(int column, bool visible);
    void setColumnWidthTwips(int column, int twips);
    // The control's own width, in the window's units.
    int widthTwips() const { return pixelsToTwips(width()); }
    // Repaints from the record set.
    void Refresh();

signals:
    // A click on a cell, after the record set moved to its row.
    void Click();
    void DblClick();
    // The current cell moved to another row or column, by the user or by
    // the record set.
    void RowColChange();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool viewportEvent(QEvent* event) override;

private:
    void applyColumnLayout();
    void followRecordset();

    DataGridModel model_;
    bool following_ = false;  // the grid moves to the record set's row
};

}  // namespace kit
