#include "store/recordset.h"

#include <algorithm>

#include "store/connection.h"
#include "store/data_error.h"
#include "store/field_conversion.h"
#include "store/jet/catalog.h"
#include "store/jet/table_writer.h"
#include "store/jet/text.h"
#include "store/source.h"
#include "store/sql/collation.h"
#include "store/sql/executor.h"

namespace store {
namespace {

// The kind of a computed column, from its first value: what the filter
// needs to compare a bare number with it.
jet::ColumnType kindOfValues(const std::vector<std::vector<jet::Value>>& rows, std::size_t column) {
    for (const auto& row : rows) {
        switch (row[column].kind()) {
            case jet::Value::Kind::Null: continue;
            case jet::Value::Kind::Text: return jet::ColumnType::Text;
            case jet::Value::Kind::Date: return jet::ColumnType::DateTime;
            case jet::Value::Kind::Boolean: return jet::ColumnType::Boolean;
            case jet::Value::Kind::Integer: return jet::ColumnType::LongInteger;
            default: return jet::ColumnType::Double;
        }
    }
    return jet::ColumnType::Text;
}

}  // namespace

void Recordset::open(std::u16string_view sql, Connection& connection, CursorType, LockType, long) {
    if (open_) throw DataError("the record set is already open");
    sql::ExecuteResult result = connection.Execute(sql);
    if (!result.isQuery) return;
    sql::QueryResult& query = result.query;
    source_ = connection.source();
    columnNames_ = std::move(query.columnNames);
    baseTable_ = std::move(query.baseTable);
    tableColumn_ = std::move(query.tableColumn);
    columnTypes_.clear();
    baseDefinition_ = baseTable_.empty() ? jet::TableDefinition() : database().table(baseTable_);
    for (std::size_t c = 0; c < columnNames_.size(); ++c) {
        const bool fromTable =
            !baseTable_.empty() && c < tableColumn_.size() && tableColumn_[c] >= 0;
        columnTypes_.push_back(
            fromTable ? baseDefinition_.columns[static_cast<std::size_t>(tableColumn_[c])].type
                      : kindOfValues(query.rows, c));
    }
    rows_.clear();
    rows_.reserve(query.rows.size());
    for (std::size_t r = 0; r < query.rows.size(); ++r) {
        Row row{std::move(query.rows[r]), std::nullopt, false};
        if (!baseTable_.empty() && r < query.rowIds.size()) row.id = query.rowIds[r];
        rows_.push_back(std::move(row));
    }
    filterText_.clear();
    filter_.reset();
    sort_.clear();
    edit_ = Edit::None;
    open_ = true;
    rebuildView();
    moved();
}

void Recordset::moved() {
    if (onMoveComplete) onMoveComplete();
}

// The file the rows came from, for writing them back.
jet::Database& Recordset::database() const {
    auto* file = dynamic_cast<JetSource*>(source_.get());
    if (file == nullptr) throw DataError("the record set's source cannot be written");
    return file->database();
}

jet::Database* Recordset::writableDatabase() const {
    auto* file = dynamic_cast<JetSource*>(source_.get());
    return file != nullptr ? &file->database() : nullptr;
}

void Recordset::close() {
    requireOpen();
    open_ = false;
    rows_.clear();
    view_.clear();
    edit_ = Edit::None;
    source_.reset();
}

void Recordset::requireOpen() const {
    if (!open_) throw DataError("the operation is not allowed when the record set is closed");
}

void Recordset::requireCurrent() const {
    requireOpen();
    if (edit_ == Edit::Add) return;
    if (currentDeleted_ || position_ < 0 || position_ >= static_cast<long>(view_.size())) {
        throw DataError("either BOF or EOF is true, or the current record has been deleted");
    }
}

long Recordset::recordCount() const {
    requireOpen();
    return static_cast<long>(view_.size());
}

long Recordset::absolutePosition() const {
    requireOpen();
    if (currentDeleted_ || position_ < 0 || position_ >= static_cast<long>(view_.size())) {
        return kPositionUnknown;
    }
    return position_ + 1;
}

bool Recordset::bof() const {
    requireOpen();
    return view_.empty() || position_ < 0;
}

bool Recordset::eof() const {
    requireOpen();
    return view_.empty() || position_ >= static_cast<long>(view_.size());
}

// A new row none of whose fields was assigned is dropped, not written:
// leaving it adds no empty row to the table.
void Recordset::leaveRow() {
    if (edit_ == Edit::Add && !newRowTouched_) {
        cancelUpdate();
        return;
    }
    if (edit_ != Edit::None) update();
}

void Recordset::moveFirst() {
    requireOpen();
    leaveRow();
    if (view_.empty()) throw DataError("either BOF or EOF is true: the record set is empty");
    position_ = 0;
    currentDeleted_ = false;
    moved();
}

void Recordset::moveLast() {
    requireOpen();
    leaveRow();
    if (view_.empty()) throw DataError("either BOF or EOF is true: the record set is empty");
    position_ = static_cast<long>(view_.size()) - 1;
    currentDeleted_ = false;
    moved();
}

void Recordset::moveNext() {
    requireOpen();
    leaveRow();
    if (eof() && !currentDeleted_) throw DataError("EOF is true: there is no next record");
    // A deleted row left the view: the next row already stands at its place.
    if (!currentDeleted_) ++position_;
    currentDeleted_ = false;
    position_ = std::min(position_, static_cast<long>(view_.size()));
    moved();
}

void Recordset::movePrevious() {
    requireOpen();
    leaveRow();
    if (bof()) throw DataError("BOF is true: there is no previous record");
    --position_;
    currentDeleted_ = false;
    moved();
}

void Recordset::setAbsolutePosition(long position) {
    requireOpen();
    if (position < 1 || position > static_cast<long>(view_.size())) {
        throw DataError("the position " + std::to_string(position) + " is outside the record set");
    }
    leaveRow();
    position_ = position - 1;
    currentDeleted_ = false;
    moved();
}

jet::Value Recordset::valueAt(long position, std::size_t ordinal) const {
    requireOpen();
    if (position < 1 || position > static_cast<long>(view_.size()) || ordinal >= columnNames_.size()) {
        throw DataError("no value at position " + std::to_string(position));
    }
    if (edit_ == Edit::Change && position - 1 == position_ && !currentDeleted_) return buffer_[ordinal];
    return rows_[view_[static_cast<std::size_t>(position - 1)]].values[ordinal];
}

std::size_t Recordset::ordinalOf(std::u16string_view name) const {
    for (std::size_t c = 0; c < columnNames_.size(); ++c) {
        if (sql::sameName(columnNames_[c], name)) return c;
    }
    throw DataError("item cannot be found in the collection: no field " +
                    jet::toUtf8(std::u16string(name)));
}

jet::Value Recordset::field(std::u16string_view name) const { return field(ordinalOf(name)); }

jet::Value Recordset::field(std::size_t ordinal) const {
    requireCurrent();
    if (ordinal >= columnNames_.size()) throw DataError("no field at ordinal " + std::to_string(ordinal));
    if (edit_ != Edit::None) return buffer_[ordinal];
    return rows_[view_[static_cast<std::size_t>(position_)]].values[ordinal];
}

void Recordset::setField(std::u16string_view name, const jet::Value& value) {
    setField(ordinalOf(name), value);
}

void Recordset::setField(std::size_t ordinal, const jet::Value& value) {
    requireCurrent();
    if (ordinal >= columnNames_.size()) throw DataError("no field at ordinal " + std::to_string(ordinal));
    if (baseTable_.empty() || tableColumn_[ordinal] < 0) {
        throw DataError("field " + jet::toUtf8(columnNames_[ordinal]) + " cannot be updated");
    }
    jet::Value converted = convertForColumn(
        value, baseDefinition_.columns[static_cast<std::size_t>(tableColumn_[ordinal])]);
    if (edit_ == Edit::None) {
        buffer_ = rows_[view_[static_cast<std::size_t>(position_)]].values;
        edit_ = Edit::Change;
    }
    buffer_[ordinal] = std::move(converted);
    newRowTouched_ = true;
}

void Recordset::addNew() {
    requireOpen();
    leaveRow();
    if (baseTable_.empty()) throw DataError("the record set cannot be updated: it is not one table's rows");
    buffer_.assign(columnNames_.size(), jet::Value());
    edit_ = Edit::Add;
    newRowTouched_ = false;
}

void Recordset::cancelUpdate() {
    requireOpen();
    edit_ = Edit::None;
    buffer_.clear();
}

// The row as the file holds it now, which must still be what this record
// set read: another program may have changed or deleted it since.
std::vector<jet::Value> Recordset::readUnchanged(const jet::PageSource& file,
                                                 const jet::TableDefinition& table,
                                                 const Row& row) const {
    std::vector<jet::Value> stored;
    if (!jet::readRow(file, table, *row.id, stored)) {
        throw DataError("the row cannot be located for updating: another program deleted it");
    }
    for (std::size_t c = 0; c < columnNames_.size(); ++c) {
        if (tableColumn_[c] >= 0 && !(stored[static_cast<std::size_t>(tableColumn_[c])] == row.values[c])) {
            throw DataError("the row cannot be located for updating: another program changed it");
        }
    }
    return stored;
}

// The values of a table row with the edit buffer laid over them.
std::vector<jet::Value> Recordset::withEdit(std::vector<jet::Value> tableValues) const {
    for (std::size_t c = 0; c < columnNames_.size(); ++c) {
        if (tableColumn_[c] >= 0)
            tableValues[static_cast<std::size_t>(tableColumn_[c])] = buffer_[c];
    }
    return tableValues;
}

// The fields after a write: those of the table as the file holds them,
// computed ones as they were.
std::vector<jet::Value> Recordset::fieldValues(const std::vector<jet::Value>& tableValues) const {
    std::vector<jet::Value> values = buffer_;
    for (std::size_t c = 0; c < columnNames_.size(); ++c) {
        if (tableColumn_[c] >= 0)
            values[c] = tableValues[static_cast<std::size_t>(tableColumn_[c])];
    }
    return values;
}

void Recordset::update() {
    requireOpen();
    if (edit_ == Edit::None) return;
    if (onWillChangeRecord) onWillChangeRecord();
    const bool adding = edit_ == Edit::Add;
    Row* const edited = adding ? nullptr : &rows_[view_[static_cast<std::size_t>(position_)]];
    jet::RowId id;
    std::vector<jet::Value> stored;
    // The check and the write in one statement: no other writer comes
    // between them.
    database().write([&](jet::WriteStatement& statement) {
        const jet::TableDefinition table = jet::findTable(statement, baseTable_);
        jet::TableWriter writer(statement, table);
        if (adding) {
            id = writer.insert(withEdit(std::vector<jet::Value>(table.columns.size())));
        } else {
            id = *edited->id;
            writer.update(id, withEdit(readUnchanged(statement, table, *edited)));
        }
        // The row as the file now holds it: an AutoNumber given, a Null
        // Yes/No stored as No.
        if (!jet::readRow(statement, table, id, stored)) {
            throw DataError("the row written to " + jet::toUtf8(baseTable_) +
                            " cannot be read back");
        }
    });
    if (adding) {
        rows_.push_back(Row{fieldValues(stored), id, false});
        // The new row joins the view at its end and becomes current.
        view_.push_back(rows_.size() - 1);
        ++viewVersion_;
        position_ = static_cast<long>(view_.size()) - 1;
    } else {
        edited->values = fieldValues(stored);
    }
    edit_ = Edit::None;
    buffer_.clear();
    currentDeleted_ = false;
}

void Recordset::remove() {
    requireCurrent();
    if (edit_ == Edit::Add) throw DataError("a new row cannot be deleted before it is written");
    if (baseTable_.empty()) throw DataError("the record set cannot be updated: it is not one table's rows");
    edit_ = Edit::None;
    Row& row = rows_[view_[static_cast<std::size_t>(position_)]];
    database().write([&](jet::WriteStatement& statement) {
        const jet::TableDefinition table = jet::findTable(statement, baseTable_);
        readUnchanged(statement, table, row);
        jet::TableWriter(statement, table).remove(*row.id);
    });
    row.deleted = true;
    view_.erase(view_.begin() + position_);
    ++viewVersion_;
    currentDeleted_ = true;
}

void Recordset::rebuildView() {
    ++viewVersion_;
    view_.clear();
    view_.reserve(rows_.size());
    for (std::size_t r = 0; r < rows_.size(); ++r) {
        if (rows_[r].deleted) continue;
        if (filter_ && !filter_->matches(filterBinding_, rows_[r].values)) continue;
        view_.push_back(r);
    }
    if (!sort_.empty()) {
        std::stable_sort(view_.begin(), view_.end(), [&](std::size_t a, std::size_t b) {
            for (const auto& [column, ascending] : sort_) {
                const int order = sql::compareValues(rows_[a].values[column], rows_[b].values[column]);
                if (order != 0) return ascending ? order < 0 : order > 0;
            }
            return false;
        });
    }
    position_ = 0;
    currentDeleted_ = false;
}

void Recordset::setFilter(std::u16string_view text) {
    requireOpen();
    leaveRow();
    // Both throw, leaving the old filter in place.
    sql::Filter parsed = sql::parseFilter(text);
    filterBinding_ = parsed.bind(columnNames_, columnTypes_);
    filter_ = std::move(parsed);
    filterText_ = std::u16string(text);
    rebuildView();
    moved();
}

void Recordset::clearFilter() {
    requireOpen();
    leaveRow();
    filter_.reset();
    filterText_.clear();
    rebuildView();
    moved();
}

void Recordset::setSort(std::u16string_view text) {
    requireOpen();
    leaveRow();
    std::vector<std::pair<std::size_t, bool>> keys;
    std::size_t start = 0;
    while (start <= text.size()) {
        std::size_t end = text.find(u',', start);
        if (end == std::u16string_view::npos) end = text.size();
        std::u16string_view part = text.substr(start, end - start);
        const auto trim = [](std::u16string_view s) {
            while (!s.empty() && s.front() == u' ') s.remove_prefix(1);
            while (!s.empty() && s.back() == u' ') s.remove_suffix(1);
            return s;
        };
        part = trim(part);
        bool ascending = true;
        const std::size_t blank = part.rfind(u' ');
        if (blank != std::u16string_view::npos) {
            const std::u16string_view order = trim(part.substr(blank + 1));
            if (sql::sameName(order, u"asc") || sql::sameName(order, u"desc")) {
                ascending = sql::sameName(order, u"asc");
                part = trim(part.substr(0, blank));
            }
        }
        if (!part.empty()) keys.emplace_back(ordinalOf(part), ascending);
        start = end + 1;
    }
    sort_ = std::move(keys);
    rebuildView();
    moved();
}

}  // namespace store
