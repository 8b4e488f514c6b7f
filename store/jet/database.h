#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalog.h"
#include "database_builder.h"
#include "header.h"
#include "lock_file.h"
#include "page_file.h"
#include "table_cursor.h"
#include "table_definition.h"
#include "write_statement.h"

namespace jet {

// An open Jet 4 database file. Each call reads what it needs from the file
// afresh, so that it sees what another program wrote since. Each write is
// one statement: under the lock file's write lock, journaled, atomic on
// disk; a write scope makes several statements one.
//
// Reads that must see whole statements only hold the lock for reading for
// their time (holdForReading); catalog() and table() do it themselves.
class Database {
public:
    // Opens the file and reads its header. Throws Error for a file that is
    // missing, unreadable, or not a Jet 4 database. Opened for writing, it
    // first rolls back a statement that a crashed writer left unfinished.
    explicit Database(const std::string& path, PageFile::Mode mode = PageFile::Mode::ReadOnly);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const std::string& path() const { return file_.path(); }
    const DatabaseHeader& header() const { return header_; }
    const PageFile& file() const { return file_; }
    // Where reads go: inside a write scope the scope's statement, which
    // shows what the scope changed so far; otherwise the file.
    const PageSource& pages() const;

    // Keeps writers of other copies of the program out until it goes, so
    // that what is read meanwhile is whole statements only. Waits for a
    // writer at most the statement time-out, then throws Error.
    LockFile::Hold holdForReading() const;
    // The lock file's commit counter: it changes with every commit of a
    // copy of this program (not with those of other programs). 0 without
    // a lock file.
    std::uint64_t commitCount() const;

    std::vector<CatalogEntry> catalog() const;
    // Names of the user tables (not system tables), in catalog order.
    std::vector<std::u16string> userTableNames() const;

    // The definition of the table of that name: the exact name, or else the
    // one name that differs only in the case of ASCII letters. Throws Error
    // when there is none.
    TableDefinition table(std::u16string_view name) const;

    // REQUIRES: `table` outlives the cursor, and so does the write scope
    // or the hold for reading it runs in.
    TableCursor scan(const TableDefinition& table) const { return TableCursor(pages(), table); }
    // A cursor over a temporary definition would outlive it.
    TableCursor scan(TableDefinition&& table) const = delete;

    // Runs `work` as one write statement and commits it; an exception from
    // `work` leaves the file as it was. Inside a write scope it becomes a
    // part of the scope, and an exception undoes that part alone.
    // REQUIRES: opened ReadWrite.
    void write(const std::function<void(WriteStatement&)>& work);

    // Makes the statements run while it lives one write: one journal, one
    // set of flushes, all or nothing on a crash. A statement that fails in
    // it is undone alone, and the scope keeps what succeeded, as separate
    // statements would. Scopes nest: the outermost one commits. It holds the
    // lock for writing throughout, so it spans no waiting for the user.
    class WriteScope {
    public:
        // REQUIRES: opened ReadWrite. Throws Error as a write would.
        explicit WriteScope(Database& database);
        // Commits what it holds, as commit() does; a failure then is lost
        // with the scope (nothing of it reaches the file).
        ~WriteScope();
        WriteScope(const WriteScope&) = delete;
        WriteScope& operator=(const WriteScope&) = delete;

        // Makes the scope's work durable and ends it. Throws Error when the
        // file cannot be written; the file then stays as before the scope.
        void commit();

    private:
        Database& database_;
        bool outermost_;
    };

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
    mutable PageFile file_;  // mutable: a reader may undo a dead writer's unfinished commit
    DatabaseHeader header_;
    std::shared_ptr<LockFile> locks_;       // null: nobody can write beside the file
    std::unique_ptr<WriteStatement> scope_;  // the write scope's statement, while one is open
    WriteStatement* writing_ = nullptr;      // the statement of the write that runs: one inside it joins it
};

}  // namespace jet
