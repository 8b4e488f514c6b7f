#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "catalog.h"
#include "database_builder.h"
#include "header.h"
#include "page_file.h"
#include "table_cursor.h"
#include "table_definition.h"
#include "write_statement.h"

namespace jet {

// An open Jet 4 database file. Each call reads what it needs from the file
// afresh, so that it sees what another program wrote since. Each write is
// one statement: under the file's write lock, journaled, atomic on disk.
class Database {
public:
    // Opens the file and reads its header. Throws Error for a file that is
    // missing, unreadable, or not a Jet 4 database. Opened for writing, it
    // first rolls back a statement that a crashed writer left unfinished.
    explicit Database(const std::string& path, PageFile::Mode mode = PageFile::Mode::ReadOnly);

    const std::string& path() const { return file_.path(); }
    const DatabaseHeader& header() const { return header_; }
    const PageFile& file() const { return file_; }

    std::vector<CatalogEntry> catalog() const;
    // Names of the user tables (not system tables), in catalog order.
    std::vector<std::u16string> userTableNames() const;

    // The definition of the table of that name: the exact name, or else the
    // one name that differs only in the case of ASCII letters. Throws Error
    // when there is none.
    TableDefinition table(std::u16string_view name) const;

    // REQUIRES: `table` outlives the cursor.
    TableCursor scan(const TableDefinition& table) const { return TableCursor(file_, table); }
    // A cursor over a temporary definition would outlive it.
    TableCursor scan(TableDefinition&& table) const = delete;

    // Runs `work` as one write statement and commits it; an exception from
    // `work` leaves the file as it was. REQUIRES: opened ReadWrite.
    void write(const std::function<void(WriteStatement&)>& work);

    // One statement each: rows inserted (values in column order; a Null
    // AutoNumber is numbered), a row replaced, rows deleted.
    std::vector<RowId> insertRows(std::u16string_view table,
                                  const std::vector<std::vector<Value>>& rows);
    void updateRow(std::u16string_view table, RowId row, const std::vector<Value>& values);
    void deleteRows(std::u16string_view table, const std::vector<RowId>& rows);

    // Writes a new, empty database at `path` (see createDatabase).
    static void create(const std::string& path, const NewDatabaseOptions& options);
    // One statement each: a table made from a CREATE TABLE statement of Jet
    // SQL (see parseCreateTable) or from a description. A table of that name
    // existing, or a statement not understood, throws Error and changes nothing.
    void createTable(std::u16string_view sql);
    void createTable(const NewTable& table);

private:
    PageFile file_;
    DatabaseHeader header_;
};

}  // namespace jet
