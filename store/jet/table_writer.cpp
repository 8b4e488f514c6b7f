#include "table_writer.h"

#include <algorithm>
#include <cstring>
#include <set>
#include <string>

#include "data_page.h"
#include "data_page_builder.h"
#include "error.h"
#include "format.h"
#include "index_key.h"
#include "index_writer.h"
#include "row_decoder.h"
#include "row_encoder.h"
#include "text.h"
#include "usage_map.h"
#include "usage_map_writer.h"
#include "write_statement.h"

namespace jet {
namespace {

namespace d = format::data;
namespace l = format::lval;

// Long values up to this size stay in the row.
constexpr std::size_t kMaxInlineLongValue = 64;
// The table's last data pages whose rows' long value pages a writer looks at.
constexpr std::size_t kLastPagesSearched = 4;
// The most a long value row carries: a whole page less its header and offset.
constexpr std::size_t kMaxLongValueRow = kMaxRowSize;

void putU32(Bytes& out, std::size_t at, std::uint32_t value) {
    std::memcpy(out.data() + at, &value, 4);
}

std::uint32_t pointerTo(RowId row) { return (row.page << 8) | row.row; }

Bytes reference(std::uint32_t header, std::uint32_t pointer) {
    Bytes bytes(l::kReferenceSize, 0);
    putU32(bytes, 0, header);
    putU32(bytes, 4, pointer);
    return bytes;
}

std::uint32_t readU32(const Page& page, std::size_t at) {
    std::uint32_t value;
    std::memcpy(&value, page.data() + at, 4);
    return value;
}

// Whether every key column of the index is Null in the row: such a row
// never breaks a unique index.
bool allKeyColumnsNull(const TableDefinition& table, const RealIndex& index,
                       const std::vector<Value>& values) {
    for (const IndexColumn& indexColumn : index.columns) {
        for (std::size_t i = 0; i < table.columns.size() && i < values.size(); ++i) {
            if (table.columns[i].number != indexColumn.columnNumber)
                continue;
            if (!values[i].isNull() || table.columns[i].type == ColumnType::Boolean)
                return false;
        }
    }
    return true;
}

// Calls `use` with the 12-byte reference of each memo and OLE value of a
// stored row that is not Null.
template <typename Use>
void forEachLongValue(const TableDefinition& table, ByteView row, Use use) {
    const std::size_t rowColumns = row.u16(0);
    const std::size_t maskSize = (rowColumns + 7) / 8;
    if (row.size() < 2 + maskSize) throw Error("a row is too short for its null mask");
    const std::size_t offsetTableEnd = row.size() - maskSize;
    const std::size_t rowVariableColumns =
        table.variableColumnCount > 0 ? row.u16(offsetTableEnd - 2) : 0;
    const ByteView nullMask = row.sub(offsetTableEnd, maskSize);
    for (const Column& column : table.columns) {
        if (!column.isLongValue() || column.number >= rowColumns ||
            (nullMask.u8(column.number / 8) & (1u << (column.number % 8))) == 0 ||
            column.variableIndex >= rowVariableColumns) {
            continue;
        }
        const std::size_t start = row.u16(offsetTableEnd - 4 - 2 * column.variableIndex);
        use(row.sub(start, l::kReferenceSize));
    }
}

const Value* valueOfColumn(const TableDefinition& table, const std::vector<Value>& values,
                           std::uint16_t number, const Column** column) {
    for (std::size_t i = 0; i < table.columns.size() && i < values.size(); ++i) {
        if (table.columns[i].number == number) {
            *column = &table.columns[i];
            return &values[i];
        }
    }
    return nullptr;
}

}  // namespace

TableWriter::TableWriter(WriteStatement& statement, const TableDefinition& table)
    : statement_(statement), table_(table) {
    for (std::size_t i = 0; i < table.realIndexes.size(); ++i) {
        for (const IndexColumn& indexColumn : table.realIndexes[i].columns) {
            const Column* column = table.columnByNumber(indexColumn.columnNumber);
            if (column == nullptr) {
                throw Error("index " + indexName(i) + " of table " + toUtf8(table.name) +
                            " names column " + std::to_string(indexColumn.columnNumber) +
                            ", which the table does not have");
            }
            try {
                checkKeyableColumn(*column);
            } catch (const Error& error) {
                throw Error("table " + toUtf8(table.name) + " cannot be written: its index " +
                            indexName(i) + " has keys this engine cannot write: " + error.what());
            }
        }
        indexes_.push_back(std::make_unique<IndexWriter>(statement, table, i));
    }
}

TableWriter::~TableWriter() = default;

std::string TableWriter::indexName(std::size_t realIndex) const {
    std::string names;
    for (const LogicalIndex& index : table_.indexes) {
        if (index.realIndex != realIndex)
            continue;
        if (!names.empty())
            names += ", ";
        names += toUtf8(index.name);
    }
    return names.empty() ? "number " + std::to_string(realIndex) : names;
}

TableWriter::IndexKeys TableWriter::indexKeys(const std::vector<Value>& values) const {
    IndexKeys keys(table_.realIndexes.size());
    for (std::size_t i = 0; i < table_.realIndexes.size(); ++i) {
        const RealIndex& index = table_.realIndexes[i];
        bool primaryKey = false;
        for (const LogicalIndex& logical : table_.indexes) {
            if (logical.realIndex == i && logical.isPrimaryKey())
                primaryKey = true;
        }
        if (primaryKey || (index.flags & format::kIndexRequired) != 0) {
            for (const IndexColumn& indexColumn : index.columns) {
                const Column* column = nullptr;
                const Value* value =
                    valueOfColumn(table_, values, indexColumn.columnNumber, &column);
                if (value != nullptr && value->isNull() && column->type != ColumnType::Boolean) {
                    throw Error("column " + toUtf8(column->name) + " of table " +
                                toUtf8(table_.name) + " may not be Null: it is in the " +
                                (primaryKey ? "primary key " : "required index ") + indexName(i));
                }
            }
        }
        if (!isRowIndexed(table_, index, values))
            continue;
        try {
            keys[i] = encodeIndexKey(table_, index, values);
        } catch (const Error& error) {
            throw Error("a row of table " + toUtf8(table_.name) + " cannot be keyed in its index " +
                        indexName(i) + ": " + error.what());
        }
    }
    return keys;
}

void TableWriter::checkUnique(const IndexKeys& keys, const std::vector<Value>& values, RowId except,
                              const IndexKeys* old) {
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RealIndex& index = table_.realIndexes[i];
        if (!index.isUnique() || !keys[i])
            continue;
        if (old != nullptr && (*old)[i] == keys[i])
            continue;
        if (allKeyColumnsNull(table_, index, values))
            continue;
        // Two rows of one statement may share a key no more than with rows before it.
        if (indexes_[i]->holdsKey(*keys[i], except)) {
            throw Error("table " + toUtf8(table_.name) + " already has a row with the same " +
                        "values in its unique index " + indexName(i) + ": nothing was written");
        }
    }
}

// The table's highest data pages, at most `count`, highest first.
std::vector<std::uint32_t> TableWriter::lastDataPages(std::size_t count) {
    const std::vector<std::uint32_t> pages = readUsageMap(statement_, table_.usageMap);
    std::vector<std::uint32_t> last;
    Page page{};
    for (auto it = pages.rbegin(); it != pages.rend() && last.size() < count; ++it) {
        statement_.read(*it, page);
        if (page[0] == format::kPageData && readU32(page, d::kOwnerOffset) == table_.page)
            last.push_back(*it);
    }
    return last;
}

// The table's highest data page, 0 when it has none: every live row of the
// table lies on it or before it.
std::uint32_t TableWriter::lastDataPage() {
    if (!lastPage_) {
        const std::vector<std::uint32_t> last = lastDataPages(1);
        lastPage_ = last.empty() ? 0 : last.front();
    }
    return *lastPage_;
}

RowId TableWriter::placeRow(const Bytes& row, std::uint16_t flags) {
    const std::uint32_t last = lastDataPage();
    if (last != 0) {
        Page& page = statement_.change(last);
        if (dataPageFits(page, row.size()) ||
            row.size() <= dataPageRoom(page, NewSlot::AfterLast)) {
            return RowId{last, addRow(page, row, flags, NewSlot::AfterLast)};
        }
        // The full page leaves the map of pages with free space.
        removeFromUsageMap(statement_, table_.freeSpaceMap, last);
    }
    // A page before the last would put the row before others in a scan.
    const std::uint32_t number = allocatePage(statement_, last);
    initDataPage(statement_.change(number), table_.page);
    addToUsageMap(statement_, table_.usageMap, number);
    addToUsageMap(statement_, table_.freeSpaceMap, number);
    lastPage_ = number;
    return RowId{number, appendRow(statement_.change(number), row, flags)};
}

// A data page of the table whose rows are all deleted leaves the table's
// maps and goes back to the free pages. A page that holds a moved row's data
// stays: that data is live.
void TableWriter::releaseIfEmpty(std::uint32_t dataPage) {
    if (!dataPageEmpty(statement_.change(dataPage))) return;
    removeFromUsageMap(statement_, table_.usageMap, dataPage);
    removeFromUsageMap(statement_, table_.freeSpaceMap, dataPage);
    releasePage(statement_, dataPage);
    if (lastPage_ == dataPage) lastPage_.reset();
    searchedDataPages_.erase(dataPage);
}

Bytes TableWriter::storeLongValue(const Bytes& stored, std::uint32_t nearPage) {
    const auto length = static_cast<std::uint32_t>(stored.size());
    if (stored.size() > l::kLengthMask) throw Error("a memo or OLE value is too long");
    if (stored.size() <= kMaxInlineLongValue) {
        Bytes field = reference(length | l::kInline, 0);
        field.insert(field.end(), stored.begin(), stored.end());
        return field;
    }
    if (!searchedLastPages_) {
        searchedLastPages_ = true;
        for (const std::uint32_t page : lastDataPages(kLastPagesSearched))
            noteLongValuePagesOf(page);
    }
    if (nearPage != 0) noteLongValuePagesOf(nearPage);
    const auto put = [&](const Bytes& row) {
        const std::uint32_t page = longValuePageFor(row.size());
        const std::uint16_t slot = addRow(statement_.change(page), row, 0, NewSlot::FirstFree);
        noteLongValuePage(page);
        return pointerTo({page, slot});
    };
    if (stored.size() <= kMaxLongValueRow) {
        return reference(length | l::kSinglePage, put(stored));
    }
    // A chain: written from its end, so that each part knows the next.
    constexpr std::size_t kPart = kMaxLongValueRow - 4;
    std::uint32_t next = 0;
    std::size_t end = stored.size();
    while (end > 0) {
        const std::size_t begin = end > kPart ? ((end - 1) / kPart) * kPart : 0;
        Bytes part(4);
        putU32(part, 0, next);
        part.insert(part.end(), stored.begin() + static_cast<std::ptrdiff_t>(begin),
                    stored.begin() + static_cast<std::ptrdiff_t>(end));
        next = put(part);
        end = begin;
    }
    return reference(length, next);
}

// The first long value page known to take a row of that size, else a new
// one: a free page or one at the end of the file.
std::uint32_t TableWriter::longValuePageFor(std::size_t size) {
    for (const auto& [number, room] : longValuePages_) {
        if (room >= size) return number;
    }
    const std::uint32_t number = allocatePage(statement_);
    initDataPage(statement_.change(number), kLongValueOwner);
    return number;
}

// Looks at the long value pages that the rows of one of the table's data
// pages refer to. The file keeps no list of a table's long value pages that
// could be trusted (Access keeps maps per memo column in some files, tables
// made here have none), and a search of the whole table would cost a scan
// for each statement. A page that a live row of the table names is the
// table's and in use, so writing to it is safe; the table's last pages and
// the page of the row being written name the values written last, whose
// pages are the likeliest to have room. One data page costs one read, and
// a writer reads each only once.
void TableWriter::noteLongValuePagesOf(std::uint32_t dataPage) {
    if (!searchedDataPages_.insert(dataPage).second) return;
    Page page{};
    statement_.read(dataPage, page);
    if (page[0] != format::kPageData || readU32(page, d::kOwnerOffset) != table_.page) return;
    std::set<std::uint32_t> named;
    try {
        const DataPage rows(page, dataPage);
        for (std::uint16_t row = 0; row < rows.rowCount(); ++row) {
            const RowSlot slot = rows.slot(row);
            // Deleted rows and moved rows' pointers hold no values.
            if (slot.overflow) continue;
            forEachLongValue(table_, rows.rowBytes(slot), [&](ByteView field) {
                if ((field.u32(0) & l::kInline) == 0) named.insert(pointerPage(field.u32(4)));
            });
        }
    } catch (const Error&) {
        // A row that does not read is left to the integrity check; the
        // values found before it still count.
    }
    for (const std::uint32_t number : named) {
        if (longValuePages_.count(number) != 0 || unfitLongValuePages_.count(number) != 0)
            continue;
        // A page the map of free pages calls free (a damaged file) could be
        // handed out again: it is not written.
        if (number >= statement_.pageCount() || isPageFree(statement_, number)) {
            unfitLongValuePages_.insert(number);
            continue;
        }
        noteLongValuePage(number);
    }
}

// Records whether a long value page of the table takes more values, and how
// large; a page that takes none but inline ones is left out.
void TableWriter::noteLongValuePage(std::uint32_t number) {
    longValuePages_.erase(number);
    unfitLongValuePages_.insert(number);
    Page page{};
    statement_.read(number, page);
    if (page[0] != format::kPageData || readU32(page, d::kOwnerOffset) != kLongValueOwner) return;
    std::size_t room = 0;
    try {
        room = dataPageRoom(page, NewSlot::FirstFree);
    } catch (const Error&) {
        return;  // a damaged page is not written
    }
    if (room <= kMaxInlineLongValue) return;
    unfitLongValuePages_.erase(number);
    longValuePages_[number] = room;
}

// Marks the long value rows of a row's memo and OLE values deleted and frees
// the pages they leave empty.
void TableWriter::freeLongValues(ByteView row) {
    forEachLongValue(table_, row, [&](ByteView field) {
        const std::uint32_t header = field.u32(0);
        if ((header & l::kInline) != 0) return;
        std::uint32_t pointer = field.u32(4);
        std::set<std::uint32_t> seen;
        while (pointer != 0 && seen.insert(pointer).second) {
            const std::uint32_t number = pointerPage(pointer);
            Page& page = statement_.change(number);
            const DataPage dataPage(page, number);
            if (!dataPage.isLongValuePage()) {
                throw Error("a memo or OLE value points to page " + std::to_string(number) +
                            ", which is no long value page");
            }
            const RowSlot slot = dataPage.slot(pointerRow(pointer));
            const std::uint32_t next =
                (header & l::kSinglePage) != 0 ? 0 : dataPage.rowBytes(slot).u32(0);
            setRowFlags(page, pointerRow(pointer), d::kRowDeleted | d::kRowOverflow);
            if (dataPageEmpty(page)) {
                releasePage(statement_, number);
                longValuePages_.erase(number);
                unfitLongValuePages_.erase(number);
            } else {
                noteLongValuePage(number);
            }
            pointer = next;
        }
    });
}

void TableWriter::addToRowCount(int delta) {
    Page& page = statement_.change(table_.page);
    const std::uint32_t count = readU32(page, format::tdef::kRowCountOffset);
    const std::uint32_t updated = static_cast<std::uint32_t>(static_cast<std::int64_t>(count) + delta);
    std::memcpy(page.data() + format::tdef::kRowCountOffset, &updated, 4);
}

RowId TableWriter::insert(std::vector<Value> values) {
    // The AutoNumber is taken only once the row is known to be accepted.
    std::optional<std::uint32_t> autoNumber;
    for (std::size_t i = 0; i < table_.columns.size() && i < values.size(); ++i) {
        const Column& column = table_.columns[i];
        if ((column.flags & format::kColumnAutoLong) != 0 && values[i].isNull()) {
            Page definition{};
            statement_.read(table_.page, definition);
            autoNumber = readU32(definition, format::tdef::kAutoNumberOffset) + 1;
            values[i] = Value::integer(static_cast<std::int32_t>(*autoNumber));
        }
    }
    const IndexKeys keys = indexKeys(values);
    checkUnique(keys, values, RowId{}, nullptr);
    if (autoNumber) {
        Page& page = statement_.change(table_.page);
        std::memcpy(page.data() + format::tdef::kAutoNumberOffset, &*autoNumber, 4);
    }
    // The row's long values go near those of the rows before it.
    const std::uint32_t near = lastDataPage();
    const Bytes row = encodeRow(table_, values, [&](const Column&, const Bytes& stored) {
        return storeLongValue(stored, near);
    });
    const RowId placed = placeRow(row, 0);
    addToRowCount(1);
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i])
            indexes_[i]->insert(*keys[i], placed);
    }
    return placed;
}

void TableWriter::update(RowId row, const std::vector<Value>& values) {
    Page homePage{};
    statement_.read(row.page, homePage);
    const DataPage home(homePage, row.page);
    if (home.owner() != table_.page) {
        throw Error("page " + std::to_string(row.page) + " holds no rows of table " + toUtf8(table_.name));
    }
    const RowSlot homeSlot = home.slot(row.row);
    if (homeSlot.deleted) throw Error("the row was deleted meanwhile");

    // Where the row's data is now: in its slot, or where its pointer leads.
    RowId data = row;
    if (homeSlot.overflow) {
        const std::uint32_t pointer = home.rowBytes(homeSlot).u32(0);
        data = RowId{pointerPage(pointer), pointerRow(pointer)};
    }
    IndexKeys oldKeys;
    IndexKeys newKeys;
    {
        Page dataPage{};
        statement_.read(data.page, dataPage);
        const DataPage current(dataPage, data.page);
        if (current.owner() != table_.page) {
            throw Error("row " + std::to_string(row.row) + " of page " + std::to_string(row.page) +
                        " is moved to page " + std::to_string(data.page) + " of another table");
        }
        const ByteView bytes = current.rowBytes(current.slot(data.row));
        if (!indexes_.empty()) {
            std::vector<Value> oldValues;
            decodeRow(statement_, table_, bytes, oldValues);
            oldKeys = indexKeys(oldValues);
            newKeys = indexKeys(values);
            checkUnique(newKeys, values, row, &oldKeys);
        }
        freeLongValues(bytes);
    }
    for (std::size_t i = 0; i < indexes_.size(); ++i) {
        if (oldKeys[i] == newKeys[i])
            continue;
        if (oldKeys[i])
            indexes_[i]->remove(*oldKeys[i], row);
        if (newKeys[i])
            indexes_[i]->insert(*newKeys[i], row);
    }
    const Bytes encoded = encodeRow(table_, values, [&](const Column&, const Bytes& stored) {
        return storeLongValue(stored, row.page);
    });
    if (!homeSlot.overflow) {
        if (replaceRow(statement_.change(row.page), row.row, encoded, 0)) return;
    } else {
        if (replaceRow(statement_.change(data.page), data.row, encoded, d::kRowDeleted)) return;
        setRowFlags(statement_.change(data.page), data.row, d::kRowDeleted | d::kRowOverflow);
    }
    // The row no longer fits where it is: its data moves, its slot keeps a pointer.
    const RowId moved = placeRow(encoded, d::kRowDeleted);
    Bytes pointer(4);
    putU32(pointer, 0, pointerTo(moved));
    if (!replaceRow(statement_.change(row.page), row.row, pointer, d::kRowOverflow)) {
        throw Error("page " + std::to_string(row.page) + " has no room for a row's pointer");
    }
    if (data.page != row.page) releaseIfEmpty(data.page);
}

void TableWriter::remove(RowId row) {
    IndexKeys keys;
    if (!indexes_.empty()) {
        Page homePage{};
        statement_.read(row.page, homePage);
        const DataPage home(homePage, row.page);
        if (home.owner() != table_.page) {
            throw Error("page " + std::to_string(row.page) + " holds no rows of table " +
                        toUtf8(table_.name));
        }
        const RowSlot slot = home.slot(row.row);
        if (slot.deleted)
            throw Error("the row was deleted meanwhile");
        Page dataPage = homePage;
        ByteView bytes = home.rowBytes(slot);
        if (slot.overflow) {
            const std::uint32_t pointer = bytes.u32(0);
            statement_.read(pointerPage(pointer), dataPage);
            const DataPage target(dataPage, pointerPage(pointer));
            bytes = target.rowBytes(target.slot(pointerRow(pointer)));
        }
        std::vector<Value> values;
        decodeRow(statement_, table_, bytes, values);
        keys = indexKeys(values);
    }
    Page& page = statement_.change(row.page);
    const DataPage home(page, row.page);
    if (home.owner() != table_.page) {
        throw Error("page " + std::to_string(row.page) + " holds no rows of table " + toUtf8(table_.name));
    }
    const RowSlot slot = home.slot(row.row);
    if (slot.deleted) throw Error("the row was deleted meanwhile");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (keys[i])
            indexes_[i]->remove(*keys[i], row);
    }
    std::uint32_t dataPage = row.page;
    if (slot.overflow) {
        const std::uint32_t pointer = home.rowBytes(slot).u32(0);
        dataPage = pointerPage(pointer);
        Page& targetPage = statement_.change(dataPage);
        const DataPage target(targetPage, dataPage);
        if (target.owner() != table_.page) {
            throw Error("row " + std::to_string(row.row) + " of page " + std::to_string(row.page) +
                        " is moved to page " + std::to_string(dataPage) + " of another table");
        }
        freeLongValues(target.rowBytes(target.slot(pointerRow(pointer))));
        setRowFlags(targetPage, pointerRow(pointer), d::kRowDeleted | d::kRowOverflow);
    } else {
        freeLongValues(home.rowBytes(slot));
    }
    setRowFlags(statement_.change(row.page), row.row, d::kRowDeleted | d::kRowOverflow);
    addToRowCount(-1);
    releaseIfEmpty(row.page);
    if (dataPage != row.page) releaseIfEmpty(dataPage);
}

}  // namespace jet
