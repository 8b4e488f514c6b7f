#pragma once

#include <cstdint>
#include <vector>

#include "bytes.h"
#include "page_file.h"
#include "row_decoder.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

// A row's identity in the file: the data page and the row's slot on it.
// Stable while the row lives; an update that moves the row's data keeps it.
struct RowId {
    std::uint32_t page = 0;
    std::uint16_t row = 0;
    friend bool operator==(const RowId&, const RowId&) = default;
};

// Walks a table's live rows in stored order: its data pages in ascending page
// order and, on each page, the rows in slot order. Deleted rows are skipped;
// a row moved to another page is read where its pointer sends it but keeps
// its place in the order.
class TableCursor {
public:
    // Reads the table's usage map; pages it names that belong to another
    // table are passed over, as Jet leaves stale bits in such maps.
    TableCursor(const PageSource& file, const TableDefinition& table);
    TableCursor(TableCursor&&) = default;
    TableCursor(const TableCursor&) = delete;
    TableCursor& operator=(const TableCursor&) = delete;

    // Moves to the next live row; false when there is none.
    bool next();

    // REQUIRES: next() returned true.
    RowId rowId() const { return current_; }
    // Whether the row's data was moved to another page (the row keeps its place).
    bool rowMoved() const { return currentMoved_; }
    // The row's values; with `columns`, those it selects (see decodeRow).
    void values(std::vector<Value>& out, const ColumnSelection& columns = {}) const;

private:
    bool loadPage(std::size_t index);

    // Pages that follow each other in the file are read together, this
    // many at most.
    static constexpr std::size_t kPagesReadTogether = 16;

    const PageSource& file_;
    const TableDefinition& table_;
    std::vector<std::uint32_t> pages_;  // data pages from the usage map
    std::size_t pageIndex_ = 0;         // the page in page_, as index into pages_
    std::vector<Page> readPages_;       // pages_[readFrom_] and those read with it
    std::size_t readFrom_ = 0;
    std::size_t readCount_ = 0;
    const Page* page_ = nullptr;  // in readPages_
    Page overflowPage_{};
    std::uint16_t rowCount_ = 0;  // rows on page_
    std::uint16_t nextRow_ = 0;
    bool started_ = false;
    RowId current_;
    bool currentMoved_ = false;
    ByteView currentBytes_;
    mutable TextValues texts_;  // shared by the rows of the scan
};

// Reads rows by their identity, as an index gives them. Keeps the last data
// page read, so that rows asked for in page order cost one read per page.
class RowReader {
public:
    RowReader(const PageSource& file, const TableDefinition& table);

    // The values of the row. False when it is not a live row of the table:
    // the page is no data page of the table, the slot lies beyond its rows,
    // or the row is deleted. Throws Error when the row's bytes are damaged.
    // With `columns`, only those it selects are decoded (see decodeRow).
    bool read(RowId row, std::vector<Value>& out, const ColumnSelection& columns = {});

private:
    const PageSource& file_;
    const TableDefinition& table_;
    Page page_{};
    Page overflowPage_{};
    std::uint32_t pageNumber_ = 0;  // the page in page_; 0 for none
    bool pageIsTable_ = false;      // page_ is a data page of the table
    TextValues texts_;              // shared by the rows read
};

// One row by its identity; see RowReader::read.
bool readRow(const PageSource& file, const TableDefinition& table, RowId row,
             std::vector<Value>& out);

}  // namespace jet
