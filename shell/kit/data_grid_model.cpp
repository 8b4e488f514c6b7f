#include "shell/kit/data_grid_model.h"

#include <utility>

#include "shell/kit/failure_modes.h"
#include "shell/kit/message_box.h"
#include "shell/kit/value_text.h"

namespace kit {

DataGridModel::DataGridModel(QObject* parent) : QAbstractTableModel(parent) {}

void DataGridModel::setDataControl(DataControl* control) {
    if (control_)
        disconnect(control_, nullptr, this, nullptr);
    control_ = control;
    if (control_)
        connect(control_, &DataControl::rowsChanged, this, &DataGridModel::reload);
    reload();
}

void DataGridModel::setColumns(QVector<GridColumn> columns) {
    columns_ = std::move(columns);
    designedColumns_ = !columns_.isEmpty();
    reload();
}

void DataGridModel::setColumnVisible(int column, bool visible) {
    if (column >= 0 && column < columns_.size())
        columns_[column].visible = visible;
}

void DataGridModel::setColumnWidthTwips(int column, int twips) {
    if (column >= 0 && column < columns_.size())
        columns_[column].widthTwips = twips;
}

void DataGridModel::reload() {
    beginResetModel();
    // A grid without designed columns shows every field of its source,
    // headed by the field's name, as a grid bound at run time does.
    // A width set at run time stays with its field.
    if (!designedColumns_) {
        QVector<GridColumn> previous = std::exchange(columns_, {});
        if (control_ && control_->isOpen()) {
            for (const std::u16string& name : control_->Recordset().fieldNames()) {
                const QString field = QString::fromStdU16String(name);
                GridColumn column = gridColumn(field, field);
                for (const GridColumn& before : previous) {
                    if (before.dataField == field)
                        column.widthTwips = before.widthTwips;
                }
                columns_.push_back(column);
            }
        }
    }
    ordinals_.clear();
    for (const GridColumn& column : columns_) {
        int ordinal = -1;
        // A column whose field the source lacks stays empty.
        if (control_ && control_->isOpen()) {
            skip([&] {
                ordinal = static_cast<int>(
                    control_->Recordset().ordinalOf(column.dataField.toStdU16String()));
            });
        }
        ordinals_.push_back(ordinal);
    }
    endResetModel();
}

int DataGridModel::recordCount() const {
    if (!control_ || !control_->isOpen())
        return 0;
    return static_cast<int>(control_->Recordset().recordCount());
}

int DataGridModel::ordinalOf(int column) const {
    return column >= 0 && column < ordinals_.size() ? ordinals_[column] : -1;
}

int DataGridModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid())
        return 0;
    return recordCount() + (allowAddNew && control_ && control_->isOpen() ? 1 : 0);
}

int DataGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

bool DataGridModel::isAsteriskRow(int row) const {
    return allowAddNew && row == recordCount();
}

QVariant DataGridModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return {};
    const int ordinal = ordinalOf(index.column());
    if (ordinal < 0 || !control_ || !control_->isOpen())
        return {};
    store::Recordset& rows = control_->Recordset();
    jet::Value value;
    if (isAsteriskRow(index.row())) {
        if (!rows.addingNew())
            return {};
        value = rows.field(static_cast<std::size_t>(ordinal));
    } else {
        value = rows.valueAt(index.row() + 1, static_cast<std::size_t>(ordinal));
    }
    const QString text = displayText(value);
    return columns_[index.column()].valueItems.value(text, text);
}

QVariant DataGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (role != Qt::DisplayRole)
        return {};
    if (orientation == Qt::Horizontal) {
        return section < columns_.size() ? columns_[section].caption : QVariant();
    }
    if (isAsteriskRow(section))
        return QStringLiteral("*");
    return section == currentRow() ? QStringLiteral("▶") : QString();
}

Qt::ItemFlags DataGridModel::flags(const QModelIndex& index) const {
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    const bool editable = isAsteriskRow(index.row()) ? allowAddNew : allowUpdate;
    if (editable && ordinalOf(index.column()) >= 0)
        flags |= Qt::ItemIsEditable;
    return flags;
}

int DataGridModel::currentRow() const {
    if (!control_ || !control_->isOpen())
        return -1;
    store::Recordset& rows = control_->Recordset();
    if (rows.addingNew())
        return allowAddNew ? recordCount() : -1;
    const long position = rows.absolutePosition();
    return position == store::Recordset::kPositionUnknown ? -1 : static_cast<int>(position - 1);
}

bool DataGridModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    const int ordinal = ordinalOf(index.column());
    if (role != Qt::EditRole || ordinal < 0 || !control_ || !control_->isOpen())
        return false;
    store::Recordset& rows = control_->Recordset();
    const GridColumn& column = columns_[index.column()];
    QString text = value.toString();
    const QString key = column.valueItems.key(text);
    if (!key.isEmpty())
        text = key;
    try {
        if (isAsteriskRow(index.row())) {
            if (!rows.addingNew())
                rows.addNew();
        } else if (index.row() != currentRow()) {
            rows.setAbsolutePosition(index.row() + 1);
        }
        rows.setField(static_cast<std::size_t>(ordinal),
                      valueFromText(text, rows.fieldTypes()[static_cast<std::size_t>(ordinal)]));
    } catch (const std::exception& error) {
        // The grid's own error event: the description, and the cell keeps
        // the row's value.
        MsgBox(QString::fromUtf8(error.what()), 48);
        return false;
    }
    emit dataChanged(index, index);
    emit headerDataChanged(Qt::Vertical, 0, rowCount() - 1);
    return true;
}

}  // namespace kit
