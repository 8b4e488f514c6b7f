#include "table_definition.h"

#include <algorithm>
#include <set>

#include "bytes.h"
#include "error.h"
#include "format.h"
#include "page_file.h"
#include "table_definition_builder.h"
#include "text.h"

namespace jet {
namespace {

namespace t = format::tdef;

// The definition's pages joined: the first page whole, then each following
// page without its 8-byte header, as Jet lays a long definition out.
std::vector<std::uint8_t> readDefinitionBytes(const PageSource& file, std::uint32_t first,
                                              std::vector<std::uint32_t>& pages) {
    std::vector<std::uint8_t> bytes;
    std::set<std::uint32_t> seen;
    Page page{};
    std::uint32_t number = first;
    while (number != 0) {
        if (!seen.insert(number).second) {
            throw Error("the definition of the table on page " + std::to_string(first) +
                        " loops back to page " + std::to_string(number));
        }
        file.read(number, page);
        if (page[0] != format::kPageTableDefinition) {
            throw Error("page " + std::to_string(number) + " should hold a table definition " +
                        "but is of type " + std::to_string(page[0]));
        }
        pages.push_back(number);
        const std::size_t skip = bytes.empty() ? 0 : t::kPageHeaderSize;
        bytes.insert(bytes.end(), page.begin() + static_cast<std::ptrdiff_t>(skip), page.end());
        number = ByteView(page.data(), page.size()).u32(t::kNextPageOffset);
    }
    return bytes;
}

std::u16string readName(ByteView bytes, std::size_t& cursor) {
    const std::uint16_t length = bytes.u16(cursor);
    cursor += 2;
    const ByteView stored = bytes.sub(cursor, length);
    cursor += length;
    std::u16string name(length / 2, u'\0');
    for (std::size_t i = 0; i < name.size(); ++i) name[i] = static_cast<char16_t>(stored.u16(2 * i));
    return name;
}

}  // namespace

std::uint16_t fixedValueSize(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Byte: return 1;
        case ColumnType::Integer: return 2;
        case ColumnType::LongInteger:
        case ColumnType::Single: return 4;
        case ColumnType::Currency:
        case ColumnType::Double:
        case ColumnType::DateTime: return 8;
        case ColumnType::ReplicationId: return 16;
        case ColumnType::Decimal: return 17;
        default: return 0;
    }
}

std::string columnTypeName(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean: return "Boolean";
        case ColumnType::Byte: return "Byte";
        case ColumnType::Integer: return "Integer";
        case ColumnType::LongInteger: return "Long Integer";
        case ColumnType::Currency: return "Currency";
        case ColumnType::Single: return "Single";
        case ColumnType::Double: return "Double";
        case ColumnType::DateTime: return "Date/Time";
        case ColumnType::Binary: return "Binary";
        case ColumnType::Text: return "Text";
        case ColumnType::Ole: return "OLE Object";
        case ColumnType::Memo: return "Memo";
        case ColumnType::ReplicationId: return "Replication ID";
        case ColumnType::Decimal: return "Decimal";
    }
    return "type " + std::to_string(static_cast<int>(type));
}

bool Column::isFixed() const { return (flags & format::kColumnFixed) != 0; }
bool Column::isAutoNumber() const {
    return (flags & (format::kColumnAutoLong | format::kColumnAutoGuid)) != 0;
}
bool RealIndex::isUnique() const { return (flags & format::kIndexUnique) != 0; }
bool LogicalIndex::isPrimaryKey() const { return type == format::kIndexTypePrimaryKey; }

std::vector<std::uint16_t> TableDefinition::deletedColumnNumbers() const {
    std::vector<std::uint16_t> deleted;
    for (std::uint16_t number = 0; number < maxColumns; ++number) {
        if (columnByNumber(number) == nullptr) deleted.push_back(number);
    }
    return deleted;
}

const Column* TableDefinition::columnByNumber(std::uint16_t number) const {
    for (const Column& column : columns) {
        if (column.number == number) return &column;
    }
    return nullptr;
}

std::optional<std::size_t> TableDefinition::findColumnPosition(
    std::u16string_view columnName) const {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (sameName(columns[i].name, columnName))
            return i;
    }
    return std::nullopt;
}

std::size_t TableDefinition::columnPosition(std::u16string_view columnName) const {
    if (const std::optional<std::size_t> found = findColumnPosition(columnName))
        return *found;
    throw Error("table " + toUtf8(name) + " has no column " + toUtf8(columnName));
}

TableDefinition readTableDefinition(const PageSource& file, std::uint32_t page) {
    TableDefinition table;
    table.page = page;
    const std::vector<std::uint8_t> storage = readDefinitionBytes(file, page, table.pages);
    const ByteView bytes(storage.data(), storage.size());
    try {
        table.rowCount = bytes.u32(t::kRowCountOffset);
        table.nextAutoNumber = bytes.u32(t::kAutoNumberOffset);
        table.tableType = bytes.u8(t::kTableTypeOffset);
        table.maxColumns = bytes.u16(t::kMaxColumnsOffset);
        table.variableColumnCount = bytes.u16(t::kVarColumnCountOffset);
        const std::uint16_t columnCount = bytes.u16(t::kColumnCountOffset);
        const std::uint32_t logicalCount = bytes.u32(t::kLogicalIndexCountOffset);
        const std::uint32_t realCount = bytes.u32(t::kRealIndexCountOffset);
        table.usageMap = bytes.u32(t::kUsageMapOffset);
        table.freeSpaceMap = bytes.u32(t::kFreeSpaceMapOffset);
        // Counts beyond what the bytes could hold are damage, not tables.
        if (realCount > bytes.size() / t::kRealIndexEntrySize ||
            logicalCount > bytes.size() / t::kLogicalIndexEntrySize) {
            throw Error("index counts " + std::to_string(realCount) + " and " +
                        std::to_string(logicalCount) + " do not fit the definition");
        }

        std::size_t cursor = t::kRealIndexCountsOffset;
        table.realIndexes.resize(realCount);
        for (RealIndex& index : table.realIndexes) {
            index.rowCount = bytes.u32(cursor + t::kRealIndexRowCountOffset);
            cursor += t::kRealIndexCountEntrySize;
        }

        table.columns.resize(columnCount);
        for (Column& column : table.columns) {
            const ByteView entry = bytes.sub(cursor, t::kColumnEntrySize);
            column.type = static_cast<ColumnType>(entry.u8(t::kColumnTypeOffset));
            column.number = entry.u16(t::kColumnNumberOffset);
            column.variableIndex = entry.u16(t::kColumnVarIndexOffset);
            column.flags = entry.u8(t::kColumnFlagsOffset);
            column.fixedOffset = entry.u16(t::kColumnFixedOffsetOffset);
            column.length = entry.u16(t::kColumnLengthOffset);
            if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
                column.sortOrder = entry.u16(t::kColumnSortOrderOffset);
                column.sortVersion = entry.u8(t::kColumnSortVersionOffset);
                column.compressedUnicode =
                    (entry.u8(t::kColumnExtraFlagsOffset) & format::kColumnCompressedUnicode) != 0;
            }
            if (column.type == ColumnType::Decimal) {
                column.precision = entry.u8(t::kColumnPrecisionOffset);
                column.scale = entry.u8(t::kColumnScaleOffset);
            }
            cursor += t::kColumnEntrySize;
        }
        for (Column& column : table.columns) column.name = readName(bytes, cursor);
        std::stable_sort(table.columns.begin(), table.columns.end(),
                         [](const Column& a, const Column& b) { return a.number < b.number; });

        for (RealIndex& index : table.realIndexes) {
            const ByteView entry = bytes.sub(cursor, t::kRealIndexEntrySize);
            for (std::size_t k = 0; k < t::kRealIndexMaxColumns; ++k) {
                const std::size_t at = t::kRealIndexColumnsOffset + 3 * k;
                const std::uint16_t number = entry.u16(at);
                if (number == 0xffff) continue;
                index.columns.push_back(IndexColumn{number, entry.u8(at + 2) == 0x01});
            }
            index.usageMap = entry.u32(t::kRealIndexUsageMapOffset);
            index.firstPage = entry.u32(t::kRealIndexFirstPageOffset);
            index.flags = entry.u8(t::kRealIndexFlagsOffset);
            cursor += t::kRealIndexEntrySize;
        }

        table.indexes.resize(logicalCount);
        for (LogicalIndex& index : table.indexes) {
            const ByteView entry = bytes.sub(cursor, t::kLogicalIndexEntrySize);
            index.number = entry.u32(t::kLogicalIndexNumberOffset);
            index.realIndex = entry.u32(t::kLogicalIndexRealIndexOffset);
            index.type = entry.u8(t::kLogicalIndexTypeOffset);
            if (index.realIndex >= realCount) {
                throw Error("index " + std::to_string(index.number) + " names real index " +
                            std::to_string(index.realIndex) + " of " + std::to_string(realCount));
            }
            cursor += t::kLogicalIndexEntrySize;
        }
        for (LogicalIndex& index : table.indexes) index.name = readName(bytes, cursor);
    } catch (const Error& error) {
        throw Error("the table definition on page " + std::to_string(page) + " is damaged: " +
                    error.what());
    }
    return table;
}

}  // namespace jet
