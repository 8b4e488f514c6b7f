#include "shell/kit/data_grid.h"

#include <algorithm>

#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QToolTip>

#include "shell/kit/grid_cell_delegate.h"
#include "shell/kit/message_box.h"

namespace kit {

DataGrid::DataGrid(QWidget* parent) : QTableView(parent) {
    QTableView::setModel(&model_);
    setItemDelegate(new GridCellDelegate(this));
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

void DataGrid::Refresh() {
    model_.reload();
}

QString DataGrid::Text() const {
    return model_.data(currentIndex(), Qt::DisplayRole).toString();
}

void DataGrid::setText(const QString& text) {
    const QModelIndex cell = currentIndex();
    if (!cell.isValid())
        return;
    // An editor open on the cell would write its own text over it later:
    // stepping off the cell and back closes it, the record set staying put.
    if (state() == QAbstractItemView::EditingState) {
        const QSignalBlocker stayingPut(this);
        following_ = true;
        setCurrentIndex(QModelIndex());
        setCurrentIndex(cell);
        following_ = false;
    }
    model_.setData(cell, text, Qt::EditRole);
}

QString DataGrid::columnText(int column) const {
    const int row = model_.currentRow();
    if (row < 0)
        return {};
    return model_.data(model_.index(row, column), Qt::DisplayRole).toString();
}

void DataGrid::setColumnVisible(int column, bool visible) {
    model_.setColumnVisible(column, visible);
    setColumnHidden(column, !visible);
}

void DataGrid::setColumnWidthTwips(int column, int twips) {
    twips = std::max(twips, 0);
    model_.setColumnWidthTwips(column, twips);
    setColumnWidth(column, twipsToPixels(twips));
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
    DataControl* control = model_.dataControl();
    if (!following_ && current.isValid() && current.row() != previous.row() && control &&
        control->isOpen() && !model_.isAsteriskRow(current.row())) {
        try {
            // Leaving the row writes its pending edit.
            control->Recordset().setAbsolutePosition(current.row() + 1);
        } catch (const std::exception& error) {
            MsgBox(QString::fromUtf8(error.what()), 48);
            followRecordset();
            return;
        }
    }
    // Told once the record set stands on the cell's row.
    if (current.isValid() && current != previous)
        emit RowColChange();
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

// A tool tip set on the grid by a handler shows over every cell; without
// one the cells' own apply.
bool DataGrid::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && !toolTip().isEmpty()) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), toolTip(), this);
        return true;
    }
    return QTableView::viewportEvent(event);
}

}  // namespace kit
