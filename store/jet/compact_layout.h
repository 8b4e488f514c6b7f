#pragma once

#include <cstddef>
#include <vector>

#include "table_definition.h"

namespace jet {

// The definition of a table as compaction rebuilds it from `source`: the same
// columns in the same order with their types, lengths, flags and collations,
// numbered from 0 without the gaps of deleted columns and laid out afresh in
// rows (fixed columns packed in that order, variable ones numbered in it);
// the same indexes, sharing real indexes as they did, without those that
// serve relationships. Pages, usage maps and counts are left 0 for
// createTable; the next AutoNumber is kept.
struct CompactedTable {
    TableDefinition definition;
    // Per real index of the definition: its position among the source's.
    std::vector<std::size_t> sourceRealIndexes;
};
CompactedTable compactedDefinition(const TableDefinition& source);

}  // namespace jet
