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
    // A column's width from now on. Throws std::out_of_range for a column
    // the grid lacks.
    void setColumnWidthTwips(int column, int widthTwips);
    void setAllowAddNew(bool allow);
    bool allowDelete = false;

    // The original's Row and Col: the current cell, -1 without one.
    int Row() const { return currentIndex().row(); }
    int Col() const { return currentIndex().column(); }
    // Repaints from the record set.
    void Refresh();

signals:
    // A click on a cell, after the record set moved to its row.
    void Click();
    void DblClick();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void applyColumnLayout();
    void followRecordset();

    DataGridModel model_;
    bool following_ = false;  // the grid moves to the record set's row
};

}  // namespace kit
