#pragma once

#include <QAbstractTableModel>
#include <QPointer>
#include <QVector>

#include "shell/kit/data_control.h"
#include "shell/kit/grid_column.h"

namespace kit {

// The rows of a data control's record set as a table for QTableView, one
// view row per row under the present filter and sort, plus the asterisk row
// for a new record when adding is allowed. Reading paints without moving
// the record set; editing a cell makes its row current first, so that the
// record set writes the edit when it leaves the row.
class DataGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    explicit DataGridModel(QObject* parent = nullptr);

    void setDataControl(DataControl* control);
    DataControl* dataControl() const { return control_; }
    // Without designed columns (none set, or an empty list) the grid shows
    // every field of the source.
    void setColumns(QVector<GridColumn> columns);
    const QVector<GridColumn>& columns() const { return columns_; }
    // A column's look changed at run time; no repaint of the rows.
    void setColumnVisible(int column, bool visible);
    void setColumnWidthTwips(int column, int twips);

    bool allowUpdate = false;
    bool allowAddNew = false;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;

    // The row of the view that is the record set's current row, or -1.
    int currentRow() const;
    bool isAsteriskRow(int row) const;
    // Repaints whole: the grid's Refresh.
    void reload();

private:
    int recordCount() const;
    int ordinalOf(int column) const;

    QPointer<DataControl> control_;
    QVector<GridColumn> columns_;
    bool designedColumns_ = false;  // else columns_ follows the source's fields
    QVector<int> ordinals_;  // per column, the record set's field, or -1
};

}  // namespace kit
