#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "table_cursor.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

class IndexWriter;
class WriteStatement;

// Inserts, updates and deletes the rows of one table within a write
// statement, keeping the table definition's row count and AutoNumber, the
// table's usage maps and the database's page allocation right.
//
// A new row goes after the table's last row, on its last data page or on a
// new page at the end of the file, so that a scan returns rows in insertion
// order; the space of deleted rows is not reused. A row that grows beyond
// what its page holds moves to another page and leaves a pointer in its slot.
//
// Every real index of the table receives the keys of inserted rows and
// loses those of deleted ones; an update moves the entries whose key
// changed. A row is refused with Error, before anything is written for it,
// when a value cannot be keyed, when a unique index already holds its key
// (unless every key column is Null), or when a primary key or required index
// would get a Null.
class TableWriter {
public:
    // REQUIRES: `table` was read through `statement` and outlives the writer.
    // Throws Error when an index is on a column whose keys cannot be written.
    TableWriter(WriteStatement& statement, const TableDefinition& table);
    ~TableWriter();

    // Values in the order of the table's columns; a Null AutoNumber receives
    // the table's next number.
    RowId insert(std::vector<Value> values);
    void update(RowId row, const std::vector<Value>& values);
    void remove(RowId row);

private:
    using IndexKeys = std::vector<std::optional<Bytes>>;  // per real index; none: not indexed

    IndexKeys indexKeys(const std::vector<Value>& values) const;
    void checkUnique(const IndexKeys& keys, const std::vector<Value>& values, RowId except,
                     const IndexKeys* old);
    std::string indexName(std::size_t realIndex) const;
    Bytes storeLongValue(const Bytes& stored);
    void freeLongValues(ByteView row);
    void releaseIfEmpty(std::uint32_t longValuePage);
    std::uint32_t lastDataPage();
    std::uint32_t newDataPage(std::uint32_t owner);
    RowId placeRow(const Bytes& row, std::uint16_t flags);
    void addToRowCount(int delta);

    WriteStatement& statement_;
    const TableDefinition& table_;
    std::uint32_t lastPage_ = 0;                         // the table's last data page, once known
    std::uint32_t longValuePage_ = 0;                    // the long value page this writer fills
    std::vector<std::unique_ptr<IndexWriter>> indexes_;  // one per real index
};

}  // namespace jet
