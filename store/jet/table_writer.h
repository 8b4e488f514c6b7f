#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
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
// A scan returns a table's rows in insertion order, and writing keeps it so:
// a new row goes after the last slot of the table's last data page, or onto
// a page past every page of the table (a free page or a new one at the end
// of the file). The bytes of deleted rows are dropped from a page when it
// needs the room, their slots stay, so that no live row changes its RowId. A
// data page whose rows are all deleted leaves the table and goes back to the
// database's free pages. A row that grows beyond what its page holds moves
// to another page and leaves a pointer in its slot.
//
// Memo and OLE values longer than 64 bytes go onto long value pages of the
// table with room: pages found through the table's own rows (those of its
// last data pages and of the page being written, and the values this writer
// frees or writes), which are certainly the table's and in use. A long value
// page left without values goes back to the free pages.
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
    Bytes storeLongValue(const Bytes& stored, std::uint32_t nearPage);
    std::uint32_t longValuePageFor(std::size_t size);
    void noteLongValuePagesOf(std::uint32_t dataPage);
    void noteLongValuePage(std::uint32_t number);
    void freeLongValues(ByteView row);
    std::vector<std::uint32_t> lastDataPages(std::size_t count);
    std::uint32_t lastDataPage();
    RowId placeRow(const Bytes& row, std::uint16_t flags);
    void releaseIfEmpty(std::uint32_t dataPage);
    void addToRowCount(int delta);

    WriteStatement& statement_;
    const TableDefinition& table_;
    std::optional<std::uint32_t> lastPage_;  // the table's last data page (0: none), once known
    // Long value pages of the table that may take more values, with the size
    // of the largest row each takes; pages looked at and found unfit for that.
    std::map<std::uint32_t, std::size_t> longValuePages_;
    std::set<std::uint32_t> unfitLongValuePages_;
    std::set<std::uint32_t> searchedDataPages_;          // data pages whose values were looked at
    bool searchedLastPages_ = false;                     // the table's last data pages among them
    std::vector<std::unique_ptr<IndexWriter>> indexes_;  // one per real index
};

}  // namespace jet
