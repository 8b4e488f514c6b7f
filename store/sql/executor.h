#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "statement.h"
#include "store/jet/database.h"

namespace sql {

struct QueryResult {
    std::vector<std::u16string>
        columnNames;  // as the query names them: alias, or the table's spelling
    std::vector<std::vector<jet::Value>> rows;
    std::u16string baseTable;        // the table, when rows map 1:1 to table rows (no GROUP BY,
                                     // DISTINCT or aggregates); else empty
    std::vector<jet::RowId> rowIds;  // with baseTable: each row's identity in the file
    std::vector<int> tableColumn;  // with baseTable: result column -> index in the table's columns
};

struct ExecuteResult {
    bool isQuery = false;  // a SELECT: `query` holds its rows
    QueryResult query;
    long rowsAffected = 0;  // DELETE: rows deleted
};

// Runs one statement of the system's SQL (see parse) on the database.
// Names of tables and columns match by sameName. A WHERE, and the terms of a
// HAVING on grouped columns, keep the rows for which the condition is true;
// a comparison with Null is never true, and texts compare by equalText and
// compareText. An equality of a column that leads an index with a literal
// reads only the rows the index holds for it. Rows of a SELECT come in
// stored order; GROUP BY and DISTINCT give their rows in the order of their
// values; ORDER BY sorts by compareValues, stably. DELETE removes its rows
// in one write statement. Throws sql::Error for a statement not understood
// or not fitting the table, jet::Error for what the engine refuses.
// REQUIRES: opened ReadWrite for DELETE and CREATE TABLE.
ExecuteResult execute(jet::Database& database, std::u16string_view sql);
ExecuteResult execute(jet::Database& database, const Statement& statement);

// Forgets the grouped tables kept for statements that differ in their HAVING
// only, so that the next such statement reads its table again.
void clearResultCache();

// The name of the table that sameName finds among the user tables. Throws
// sql::Error when there is none.
std::u16string findTableName(const jet::Database& database, std::u16string_view name);

}  // namespace sql
