#include "table_definition_builder.h"

#include <algorithm>
#include <cstring>

#include "error.h"
#include "format.h"
#include "text.h"

namespace jet {
namespace {

namespace t = format::tdef;

constexpr std::size_t kMaxColumns = 255;
constexpr std::size_t kMaxTextCharacters = 255;
constexpr std::size_t kMaxNameLength = 64;  // characters, as Access allows

char16_t foldCase(char16_t c) {
    if (c >= u'a' && c <= u'z')
        return static_cast<char16_t>(c - 32);
    if (c >= 0xe0 && c <= 0xfe && c != 0xf7)
        return static_cast<char16_t>(c - 32);
    switch (c) {
        case u'\u0131':  // dotless i
        case u'\u0130':  // dotted capital I
            return u'I';
        case u'\u011f':
            return u'\u011e';
        case u'\u015f':
            return u'\u015e';
        default:
            return c;
    }
}

void put16(Bytes& out, std::size_t at, std::uint16_t value) {
    std::memcpy(out.data() + at, &value, 2);
}
void put32(Bytes& out, std::size_t at, std::uint32_t value) {
    std::memcpy(out.data() + at, &value, 4);
}

void append16(Bytes& out, std::uint16_t value) {
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}
void append32(Bytes& out, std::uint32_t value) {
    append16(out, static_cast<std::uint16_t>(value));
    append16(out, static_cast<std::uint16_t>(value >> 16));
}

void appendName(Bytes& out, const std::u16string& name) {
    append16(out, static_cast<std::uint16_t>(name.size() * 2));
    for (const char16_t c : name)
        append16(out, c);
}

// The definition's bytes as the reader joins them: the first page's header
// included, the following pages' headers left out.
Bytes encodeDefinition(const TableDefinition& table) {
    Bytes out(t::kHeaderSize, 0);
    out[0] = format::kPageTableDefinition;
    out[1] = 0x01;
    put32(out, t::kMagicOffset, t::kTableMagic);
    put32(out, t::kRowCountOffset, table.rowCount);
    put32(out, t::kAutoNumberOffset, table.nextAutoNumber);
    out[t::kAutoNumberFlagOffset] = 0x01;
    out[t::kTableTypeOffset] = table.tableType;
    put16(out, t::kMaxColumnsOffset, table.maxColumns);
    put16(out, t::kVarColumnCountOffset, table.variableColumnCount);
    put16(out, t::kColumnCountOffset, static_cast<std::uint16_t>(table.columns.size()));
    put32(out, t::kLogicalIndexCountOffset, static_cast<std::uint32_t>(table.indexes.size()));
    put32(out, t::kRealIndexCountOffset, static_cast<std::uint32_t>(table.realIndexes.size()));
    put32(out, t::kUsageMapOffset, table.usageMap);
    put32(out, t::kFreeSpaceMapOffset, table.freeSpaceMap);

    for (const RealIndex& index : table.realIndexes) {
        append32(out, 0);
        append32(out, index.rowCount);
        append32(out, 0);
    }
    for (const Column& column : table.columns) {
        const std::size_t at = out.size();
        out.resize(at + t::kColumnEntrySize, 0);
        out[at + t::kColumnTypeOffset] = static_cast<std::uint8_t>(column.type);
        put32(out, at + t::kColumnMagicOffset, t::kTableMagic);
        put16(out, at + t::kColumnNumberOffset, column.number);
        put16(out, at + t::kColumnVarIndexOffset, column.variableIndex);
        put16(out, at + t::kColumnRowIndexOffset, column.number);
        if (column.type == ColumnType::Text || column.type == ColumnType::Memo) {
            put16(out, at + t::kColumnSortOrderOffset, column.sortOrder);
            out[at + t::kColumnSortVersionOffset] = column.sortVersion;
            if (column.compressedUnicode) {
                out[at + t::kColumnExtraFlagsOffset] = format::kColumnCompressedUnicode;
            }
        }
        if (column.type == ColumnType::Decimal) {
            out[at + t::kColumnPrecisionOffset] = column.precision;
            out[at + t::kColumnScaleOffset] = column.scale;
        }
        out[at + t::kColumnFlagsOffset] = column.flags;
        put16(out, at + t::kColumnFixedOffsetOffset, column.fixedOffset);
        put16(out, at + t::kColumnLengthOffset, column.length);
    }
    for (const Column& column : table.columns)
        appendName(out, column.name);

    for (const RealIndex& index : table.realIndexes) {
        const std::size_t at = out.size();
        out.resize(at + t::kRealIndexEntrySize, 0);
        put32(out, at + t::kRealIndexMagicOffset, t::kRealIndexMagic);
        for (std::size_t k = 0; k < t::kRealIndexMaxColumns; ++k) {
            const std::size_t slot = at + t::kRealIndexColumnsOffset + 3 * k;
            if (k < index.columns.size()) {
                put16(out, slot, index.columns[k].columnNumber);
                out[slot + 2] =
                    index.columns[k].ascending ? t::kRealIndexAscending : t::kRealIndexDescending;
            } else {
                put16(out, slot, t::kRealIndexNoColumn);
            }
        }
        put32(out, at + t::kRealIndexUsageMapOffset, index.usageMap);
        put32(out, at + t::kRealIndexFirstPageOffset, index.firstPage);
        out[at + t::kRealIndexFlagsOffset] = index.flags;
    }
    for (const LogicalIndex& index : table.indexes) {
        const std::size_t at = out.size();
        out.resize(at + t::kLogicalIndexEntrySize, 0);
        put32(out, at + t::kLogicalIndexMagicOffset, t::kTableMagic);
        put32(out, at + t::kLogicalIndexNumberOffset, index.number);
        put32(out, at + t::kLogicalIndexRealIndexOffset, index.realIndex);
        put32(out, at + t::kLogicalIndexRelatedIndexOffset, 0xffffffff);
        out[at + t::kLogicalIndexCascadeOffset] = t::kLogicalIndexNoCascade;
        out[at + t::kLogicalIndexCascadeOffset + 1] = t::kLogicalIndexNoCascade;
        out[at + t::kLogicalIndexTypeOffset] = index.type;
    }
    for (const LogicalIndex& index : table.indexes)
        appendName(out, index.name);
    append16(out, t::kColumnMapsEnd);
    put32(out, t::kLengthOffset, static_cast<std::uint32_t>(out.size()));
    return out;
}

void refuse(const NewTable& table, const std::string& what) {
    throw Error("table " + toUtf8(table.name) + " cannot be made: " + what);
}

}  // namespace

bool sameName(std::u16string_view a, std::u16string_view b) {
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [](char16_t x, char16_t y) { return foldCase(x) == foldCase(y); });
}

TableDefinition layOutTable(const NewTable& wanted) {
    if (wanted.name.empty() || wanted.name.size() > kMaxNameLength) {
        refuse(wanted, "a name has 1 to 64 characters");
    }
    if (wanted.columns.empty())
        refuse(wanted, "it has no columns");
    if (wanted.columns.size() > kMaxColumns)
        refuse(wanted, "it has more than 255 columns");

    TableDefinition table;
    table.name = wanted.name;
    table.tableType = wanted.system ? t::kTableTypeSystem : t::kTableTypeUser;
    std::uint16_t fixedOffset = 0;
    std::uint16_t variableIndex = 0;
    for (const NewColumn& source : wanted.columns) {
        if (source.name.empty() || source.name.size() > kMaxNameLength) {
            refuse(wanted, "a column name has 1 to 64 characters");
        }
        for (const Column& earlier : table.columns) {
            if (sameName(earlier.name, source.name)) {
                refuse(wanted, "column " + toUtf8(source.name) + " is named twice");
            }
        }
        Column column;
        column.name = source.name;
        column.type = source.type;
        column.number = static_cast<std::uint16_t>(table.columns.size());
        column.flags = format::kColumnNullable;
        if (source.systemFlag)
            column.flags |= format::kColumnReplication;
        switch (source.type) {
            case ColumnType::Text:
                if (source.length == 0 || source.length > kMaxTextCharacters) {
                    refuse(wanted,
                           "text column " + toUtf8(source.name) + " must hold 1 to 255 characters");
                }
                column.length = static_cast<std::uint16_t>(source.length * 2);
                column.sortOrder = format::kSortGeneral;
                column.compressedUnicode = source.compressedUnicode && !source.fixedLength;
                break;
            case ColumnType::Binary:
                if (source.length == 0 || source.length > 2 * kMaxTextCharacters) {
                    refuse(wanted,
                           "binary column " + toUtf8(source.name) + " must hold 1 to 510 bytes");
                }
                column.length = source.length;
                break;
            case ColumnType::Memo:
                column.sortOrder = format::kSortGeneral;
                column.compressedUnicode = source.compressedUnicode;
                break;
            case ColumnType::Ole:
                break;
            default:
                column.length = fixedValueSize(source.type);
                if (column.length == 0)
                    refuse(wanted, "column " + toUtf8(source.name) + " has an unknown type");
                break;
        }
        if (source.autoNumber) {
            if (source.type != ColumnType::LongInteger) {
                refuse(wanted,
                       "AutoNumber column " + toUtf8(source.name) + " must be a Long Integer");
            }
            column.flags |= format::kColumnAutoLong;
        }
        const bool fixed =
            fixedValueSize(source.type) != 0 ||
            ((source.type == ColumnType::Text || source.type == ColumnType::Binary) &&
             source.fixedLength);
        if (fixed) {
            column.flags |= format::kColumnFixed;
            if (source.type != ColumnType::Boolean) {
                column.fixedOffset = fixedOffset;
                fixedOffset = static_cast<std::uint16_t>(fixedOffset + column.length);
            }
        } else {
            column.variableIndex = variableIndex++;
        }
        table.columns.push_back(std::move(column));
    }
    table.maxColumns = static_cast<std::uint16_t>(table.columns.size());
    table.variableColumnCount = variableIndex;

    bool hasPrimaryKey = false;
    for (const NewIndex& source : wanted.indexes) {
        if (source.name.empty() || source.name.size() > kMaxNameLength) {
            refuse(wanted, "an index name has 1 to 64 characters");
        }
        for (const LogicalIndex& earlier : table.indexes) {
            if (sameName(earlier.name, source.name)) {
                refuse(wanted, "index " + toUtf8(source.name) + " is named twice");
            }
        }
        if (source.columns.empty() || source.columns.size() > t::kRealIndexMaxColumns) {
            refuse(wanted, "index " + toUtf8(source.name) + " must have 1 to 10 columns");
        }
        if (source.primaryKey) {
            if (hasPrimaryKey)
                refuse(wanted, "it has more than one primary key");
            hasPrimaryKey = true;
        }
        RealIndex real;
        for (std::size_t k = 0; k < source.columns.size(); ++k) {
            const auto found =
                std::find_if(table.columns.begin(), table.columns.end(),
                             [&](const Column& c) { return sameName(c.name, source.columns[k]); });
            if (found == table.columns.end()) {
                refuse(wanted, "index " + toUtf8(source.name) + " names column " +
                                 toUtf8(source.columns[k]) + ", which the table lacks");
            }
            for (const IndexColumn& earlier : real.columns) {
                if (earlier.columnNumber == found->number) {
                    refuse(wanted, "index " + toUtf8(source.name) + " names column " +
                                     toUtf8(found->name) + " twice");
                }
            }
            const bool descending = k < source.descending.size() && source.descending[k];
            real.columns.push_back(IndexColumn{found->number, !descending});
        }
        real.flags = format::kIndexAccessFlag;
        if (source.unique || source.primaryKey)
            real.flags |= format::kIndexUnique;
        if (source.required || source.primaryKey)
            real.flags |= format::kIndexRequired;
        if (source.ignoreNulls)
            real.flags |= format::kIndexIgnoreNulls;
        LogicalIndex logical;
        logical.name = source.name;
        logical.number = static_cast<std::uint32_t>(table.indexes.size());
        logical.realIndex = static_cast<std::uint32_t>(table.realIndexes.size());
        logical.type = source.primaryKey ? format::kIndexTypePrimaryKey : 0;
        table.realIndexes.push_back(std::move(real));
        table.indexes.push_back(std::move(logical));
    }
    return table;
}

std::size_t tableDefinitionPageCount(const TableDefinition& table) {
    const std::size_t size = encodeDefinition(table).size();
    if (size <= format::kPageSize)
        return 1;
    const std::size_t perPage = format::kPageSize - t::kPageHeaderSize;
    return 1 + (size - format::kPageSize + perPage - 1) / perPage;
}

std::vector<Page> buildTableDefinition(const TableDefinition& table) {
    const Bytes bytes = encodeDefinition(table);
    std::vector<Page> pages(tableDefinitionPageCount(table));
    if (table.pages.size() != pages.size()) {
        throw Error("the definition of table " + toUtf8(table.name) + " takes " +
                    std::to_string(pages.size()) + " pages, not " +
                    std::to_string(table.pages.size()));
    }
    std::size_t from = 0;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        Page& page = pages[i];
        page.fill(0);
        const std::size_t header = i == 0 ? 0 : t::kPageHeaderSize;
        const std::size_t take = std::min(bytes.size() - from, format::kPageSize - header);
        std::memcpy(page.data() + header, bytes.data() + from, take);
        from += take;
        page[0] = format::kPageTableDefinition;
        page[1] = 0x01;
        const std::size_t used = header + take;
        const auto free =
            static_cast<std::uint16_t>(used + t::kPageHeaderSize <= format::kPageSize
                                           ? format::kPageSize - used - t::kPageHeaderSize
                                           : 0);
        std::memcpy(page.data() + t::kFreeSpaceOffset, &free, 2);
        const std::uint32_t next = i + 1 < pages.size() ? table.pages[i + 1] : 0;
        std::memcpy(page.data() + t::kNextPageOffset, &next, 4);
    }
    return pages;
}

}  // namespace jet
