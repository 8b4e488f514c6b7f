#include "shell/kit/data_grid.h"

#include <QHeaderView>
#include <QKeyEvent>

#include "shell/kit/message_box.h"

namespace kit {

DataGrid::DataGrid(QWidget* parent) : QTableView(parent) {
    QTableView::setModel(&model_);
    setSelectionBehavior(QAbstractItemView::SelectItems);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                    QAbstractItemView::AnyKeyPressed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    verticalHeader()->setFixedWidth(24);
    connect(this, &QTableView::clicked, this, [this] { emit Click(); });
    connect(&model_, &QAbstractItemModel::modelReset, this, [this] {
        applyColumnLayout();
        followRecordset();
    });
}

void DataGrid::setDataSource(DataControl* control) {
    if (model_.dataControl())
        disconnect(model_.dataControl(), nullptr, this, nullptr);
    model_.setDataControl(control);
    if (control) {
        setAccessibleName(control->Caption());
        connect(control, &DataControl::moveComplete, this, &DataGrid::followRecordset);
    }
}

void DataGrid::setColumns(QVector<GridColumn> columns) {
    model_.setColumns(std::move(columns));
}

void DataGrid::setAllowAddNew(bool allow) {
    model_.allowAddNew = allow;
    model_.reload();
}

void DataGrid::setColumnWidthTwips(int column, int widthTwips) {
    model_.setColumnWidth(column, widthTwips);
    setColumnWidth(column, twipsToPixels(widthTwips));
}

void DataGrid::Refresh() {
    model_.reload();
}

void DataGrid::applyColumnLayout() {
    const QVector<GridColumn>& columns = model_.columns();
    for (int c = 0; c < columns.size(); ++c) {
        setColumnHidden(c, !columns[c].visible);
        setColumnWidth(c, twipsToPixels(columns[c].widthTwips));
    }
}

// Puts the grid's current cell on the record set's current row, keeping
// the column.
void DataGrid::followRecordset() {
    const int row = model_.currentRow();
    following_ = true;
    if (row < 0) {
        selectionModel()->clearCurrentIndex();
    } else if (row != currentIndex().row()) {
        const int column = std::max(currentIndex().column(), 0);
        setCurrentIndex(model_.index(row, column));
    }
    following_ = false;
    viewport()->update();
    verticalHeader()->viewport()->update();
}

void DataGrid::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    if (following_ || !current.isValid() || current.row() == previous.row())
        return;
    DataControl* control = model_.dataControl();
    if (!control || !control->isOpen() || model_.isAsteriskRow(current.row()))
        return;
    try {
        // Leaving the row writes its pending edit.
        control->Recordset().setAbsolutePosition(current.row() + 1);
    } catch (const std::exception& error) {
        MsgBox(QString::fromUtf8(error.what()), 48);
        followRecordset();
    }
}

void DataGrid::keyPressEvent(QKeyEvent* event) {
    DataControl* control = model_.dataControl();
    if (event->key() == Qt::Key_Delete && allowDelete && control && control->isOpen() &&
        state() != QAbstractItemView::EditingState && model_.currentRow() >= 0 &&
        !model_.isAsteriskRow(model_.currentRow())) {
        try {
            control->Recordset().remove();
        } catch (const std::exception& error) {
            MsgBox(QString::fromUtf8(error.what()), 48);
        }
        control->announce();
        return;
    }
    QTableView::keyPressEvent(event);
}

void DataGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    QTableView::mouseDoubleClickEvent(event);
    emit DblClick();
}

}  // namespace kit
