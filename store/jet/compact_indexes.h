#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include "page_file.h"
#include "table_cursor.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

class WriteStatement;

// The index entries of a table that compaction copies: collected row by row
// while the rows are written, then added to each index in key order, which
// fills its pages as a growing B-tree fills its last leaf. A key is computed
// from the row's values; where this engine cannot key a value (a character
// it knows no place of, a Replication ID), the original file's own entry
// for the row is taken, as Jet wrote it.
class CompactedIndexes {
public:
    // REQUIRES: all outlive this; sourceRealIndexes[i] is the real index of
    // `source` that real index i of `table` copies.
    CompactedIndexes(const PageSource& original, const TableDefinition& source,
                     const TableDefinition& table,
                     const std::vector<std::size_t>& sourceRealIndexes);

    // The entries of a row copied from `sourceRow` to `row`. Throws Error
    // for a Null in a primary key or required index, or a value that can be
    // keyed neither way.
    void add(const std::vector<Value>& values, RowId sourceRow, RowId row);

    // Writes every index's entries. Throws Error when a unique index would
    // hold one key twice.
    void write(WriteStatement& statement);

private:
    struct Entry {
        Bytes key;
        RowId row;
        bool allNull = false;  // every key column Null: exempt from uniqueness
    };

    const Bytes& originalKey(std::size_t realIndex, RowId sourceRow);
    std::string indexName(std::size_t realIndex) const;

    const PageSource& original_;
    const TableDefinition& source_;
    const TableDefinition& table_;
    const std::vector<std::size_t>& sourceRealIndexes_;
    std::vector<std::vector<Entry>> entries_;  // per real index
    // The original's entries of a real index, by row, once one was needed.
    std::map<std::size_t, std::map<std::uint64_t, Bytes>> originalKeys_;
};

}  // namespace jet
