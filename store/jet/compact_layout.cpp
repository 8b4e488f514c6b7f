#include "compact_layout.h"

#include <map>

#include "error.h"
#include "format.h"
#include "text.h"

namespace jet {

CompactedTable compactedDefinition(const TableDefinition& source) {
    CompactedTable compacted;
    TableDefinition& table = compacted.definition;
    table.name = source.name;
    table.tableType = source.tableType;
    table.nextAutoNumber = source.nextAutoNumber;

    std::map<std::uint16_t, std::uint16_t> newNumbers;  // by the source's column number
    std::uint16_t fixedOffset = 0;
    std::uint16_t variableIndex = 0;
    for (const Column& from : source.columns) {
        Column column = from;
        column.number = static_cast<std::uint16_t>(table.columns.size());
        column.fixedOffset = 0;
        column.variableIndex = 0;
        if ((column.flags & format::kColumnFixed) != 0) {
            // Booleans live in the null mask and take no room in the row.
            if (column.type != ColumnType::Boolean) {
                column.fixedOffset = fixedOffset;
                fixedOffset = static_cast<std::uint16_t>(fixedOffset + column.length);
            }
        } else {
            column.variableIndex = variableIndex++;
        }
        newNumbers[from.number] = column.number;
        table.columns.push_back(std::move(column));
    }
    table.maxColumns = static_cast<std::uint16_t>(table.columns.size());
    table.variableColumnCount = variableIndex;

    std::map<std::uint32_t, std::uint32_t> newRealIndexes;  // by the source's position
    for (const LogicalIndex& from : source.indexes) {
        if (from.type == format::kIndexTypeForeignKey)
            continue;
        if (from.realIndex >= source.realIndexes.size()) {
            throw Error("index " + toUtf8(from.name) + " of table " + toUtf8(source.name) +
                        " names a real index that is not there");
        }
        auto [place, isNew] = newRealIndexes.try_emplace(
            from.realIndex, static_cast<std::uint32_t>(table.realIndexes.size()));
        if (isNew) {
            RealIndex real;
            real.flags = source.realIndexes[from.realIndex].flags;
            for (IndexColumn column : source.realIndexes[from.realIndex].columns) {
                const auto number = newNumbers.find(column.columnNumber);
                if (number == newNumbers.end())
                    throw Error("index " + toUtf8(from.name) + " of table " + toUtf8(source.name) +
                                " is on a column that is not there");
                column.columnNumber = number->second;
                real.columns.push_back(column);
            }
            table.realIndexes.push_back(std::move(real));
            compacted.sourceRealIndexes.push_back(from.realIndex);
        }
        LogicalIndex logical = from;
        logical.number = static_cast<std::uint32_t>(table.indexes.size());
        logical.realIndex = place->second;
        table.indexes.push_back(std::move(logical));
    }
    return compacted;
}

}  // namespace jet
