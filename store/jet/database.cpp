#include "database.h"


#include "create_table.h"
#include "error.h"
#include "journal.h"
#include "table_writer.h"
#include "text.h"
#include "write_statement.h"

namespace jet {

Database::Database(const std::string& path, PageFile::Mode mode)
    : file_(path, mode), header_(readHeader(file_)) {
    file_.setEncodingKey(header_.encodingKey);
    if (mode == PageFile::Mode::ReadWrite) {
        // A statement a crashed writer left unfinished is undone first.
        const PageFile::WriteLock lock(file_);
        RollbackJournal::rollBack(file_);
    }
}

std::vector<CatalogEntry> Database::catalog() const { return readCatalog(file_); }

std::vector<std::u16string> Database::userTableNames() const {
    std::vector<std::u16string> names;
    for (const CatalogEntry& entry : catalog()) {
        if (entry.isUserTable()) names.push_back(entry.name);
    }
    return names;
}

TableDefinition Database::table(std::u16string_view name) const {
    try {
        return findTable(file_, name);
    } catch (const Error& error) {
        throw Error(std::string(error.what()) + " in " + file_.path());
    }
}

void Database::write(const std::function<void(WriteStatement&)>& work) {
    WriteStatement statement(file_);
    work(statement);
    statement.commit();
}

std::vector<RowId> Database::insertRows(std::u16string_view tableName,
                                        const std::vector<std::vector<Value>>& rows) {
    std::vector<RowId> placed;
    write([&](WriteStatement& statement) {
        const TableDefinition table = findTable(statement, tableName);
        TableWriter writer(statement, table);
        for (const std::vector<Value>& row : rows) placed.push_back(writer.insert(row));
    });
    return placed;
}

void Database::updateRow(std::u16string_view tableName, RowId row,
                         const std::vector<Value>& values) {
    write([&](WriteStatement& statement) {
        const TableDefinition table = findTable(statement, tableName);
        TableWriter(statement, table).update(row, values);
    });
}

void Database::deleteRows(std::u16string_view tableName, const std::vector<RowId>& rows) {
    write([&](WriteStatement& statement) {
        const TableDefinition table = findTable(statement, tableName);
        TableWriter writer(statement, table);
        for (const RowId row : rows) writer.remove(row);
    });
}

void Database::create(const std::string& path, const NewDatabaseOptions& options) {
    createDatabase(path, options);
}

void Database::createTable(std::u16string_view sql) { createTable(parseCreateTable(sql)); }

void Database::createTable(const NewTable& table) {
    write([&](WriteStatement& statement) { jet::createTable(statement, table); });
}

}  // namespace jet
