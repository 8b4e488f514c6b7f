#pragma once

#include <memory>
#include <string_view>

#include "store/source.h"
#include "store/sql/executor.h"

namespace store {

// A connection to a database, opened with a connection string (see
// ConnectionString and resolveDataSource). Every failure is a DataError.
class Connection {
public:
    // The schema that OpenSchema knows: the tables.
    static constexpr int kSchemaTables = 20;

    Connection() = default;
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Opens the data source with the password of "Jet OLEDB:Database
    // Password". The provider, when named, must be a Jet or ACE OLE DB
    // provider; "Mode=Read" opens for reading alone. Throws DataError when
    // the connection is already open (it stays open as it was), and for a
    // string not understood, a file missing or damaged, a wrong password.
    //
    // Two strings open an Excel 97-2003 workbook (a WorkbookSource, read
    // alone) instead: the ODBC one, "Provider=MSDASQL.1;Extended
    // Properties=DBQ=<file>;...;Driver={Microsoft Excel Driver (*.xls)};...",
    // its first row naming the columns; and the Jet one with "Extended
    // Properties=\"Excel 8.0;HDR=NO;\"" (HDR=YES, the default, names the
    // columns by the first row). A workbook that cannot be read throws
    // workbook::WorkbookError, a DataError with a kind.
    void Open(std::string_view connectionString);
    // Lets go of the source; record sets opened on the connection keep it.
    // Throws DataError when the connection is not open.
    void Close();
    bool isOpen() const { return source_ != nullptr; }

    // Runs one statement of the system's SQL (CREATE TABLE, DELETE, SELECT).
    sql::ExecuteResult Execute(std::u16string_view statement);

    // Schema 20: one row per table with the columns TABLE_CATALOG and
    // TABLE_SCHEMA (Null), TABLE_NAME, and TABLE_TYPE: "SYSTEM TABLE" for
    // the source's own tables, "TABLE" for the others. Rows ordered by
    // TABLE_TYPE, then by name in sql::compareText order, as the provider
    // orders its schema rows. Other schemas throw DataError.
    sql::QueryResult OpenSchema(int schema) const;

    // What the connection stands on, shared: a record set opened on the
    // connection keeps it for as long as it is used, after Close and after
    // the connection itself is gone. Null while closed.
    const std::shared_ptr<Source>& source() const { return source_; }

private:
    void requireOpen(const char* operation) const;

    std::shared_ptr<Source> source_;  // null while closed
};

}  // namespace store
