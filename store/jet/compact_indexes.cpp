#include "compact_indexes.h"

#include <algorithm>

#include "error.h"
#include "format.h"
#include "index_key.h"
#include "index_page.h"
#include "index_writer.h"
#include "text.h"

namespace jet {
namespace {

std::uint64_t rowNumber(RowId row) {
    return (std::uint64_t{row.page} << 16) | row.row;
}

bool rowBefore(RowId a, RowId b) {
    return rowNumber(a) < rowNumber(b);
}

}  // namespace

CompactedIndexes::CompactedIndexes(const PageSource& original, const TableDefinition& source,
                                   const TableDefinition& table,
                                   const std::vector<std::size_t>& sourceRealIndexes)
    : original_(original),
      source_(source),
      table_(table),
      sourceRealIndexes_(sourceRealIndexes),
      entries_(table.realIndexes.size()) {}

std::string CompactedIndexes::indexName(std::size_t realIndex) const {
    for (const LogicalIndex& logical : table_.indexes) {
        if (logical.realIndex == realIndex)
            return toUtf8(logical.name);
    }
    return std::to_string(realIndex);
}

void CompactedIndexes::add(const std::vector<Value>& values, RowId sourceRow, RowId row) {
    for (std::size_t i = 0; i < table_.realIndexes.size(); ++i) {
        const RealIndex& index = table_.realIndexes[i];
        bool primaryKey = false;
        for (const LogicalIndex& logical : table_.indexes)
            primaryKey = primaryKey || (logical.realIndex == i && logical.isPrimaryKey());
        bool allNull = true;
        for (const IndexColumn& indexColumn : index.columns) {
            for (std::size_t c = 0; c < table_.columns.size(); ++c) {
                const Column& column = table_.columns[c];
                if (column.number != indexColumn.columnNumber)
                    continue;
                const bool null = values[c].isNull() && column.type != ColumnType::Boolean;
                allNull = allNull && null;
                if (null && (primaryKey || (index.flags & format::kIndexRequired) != 0)) {
                    throw Error("column " + toUtf8(column.name) + " of table " +
                                toUtf8(table_.name) + " holds a Null in the " +
                                (primaryKey ? "primary key " : "required index ") + indexName(i));
                }
            }
        }
        if (!isRowIndexed(table_, index, values))
            continue;
        Entry entry{{}, row, allNull};
        try {
            entry.key = encodeIndexKey(table_, index, values);
        } catch (const Error&) {
            entry.key = originalKey(i, sourceRow);
        }
        entries_[i].push_back(std::move(entry));
    }
}

const Bytes& CompactedIndexes::originalKey(std::size_t realIndex, RowId sourceRow) {
    auto [keys, isNew] = originalKeys_.try_emplace(realIndex);
    if (isNew) {
        const RealIndex& index = source_.realIndexes.at(sourceRealIndexes_.at(realIndex));
        for (IndexEntry& entry : readIndexEntries(original_, index))
            keys->second[rowNumber(entry.row)] = std::move(entry.key);
    }
    const auto found = keys->second.find(rowNumber(sourceRow));
    if (found == keys->second.end()) {
        throw Error("a row of table " + toUtf8(table_.name) + " cannot be keyed in its index " +
                    indexName(realIndex) + ", and the original index lacks its entry");
    }
    return found->second;
}

void CompactedIndexes::write(WriteStatement& statement) {
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        std::vector<Entry>& entries = entries_[i];
        std::sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
            return a.key != b.key ? a.key < b.key : rowBefore(a.row, b.row);
        });
        if (table_.realIndexes[i].isUnique()) {
            for (std::size_t e = 1; e < entries.size(); ++e) {
                if (entries[e].key == entries[e - 1].key && !entries[e].allNull) {
                    throw Error("table " + toUtf8(table_.name) + " has two rows with the same " +
                                "values in its unique index " + indexName(i));
                }
            }
        }
        IndexWriter writer(statement, table_, i);
        for (const Entry& entry : entries)
            writer.insert(entry.key, entry.row);
        entries = {};
    }
}

}  // namespace jet
