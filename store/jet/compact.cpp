#include "compact.h"

#include <cstring>
#include <filesystem>
#include <map>
#include <optional>
#include <vector>

#include "catalog.h"
#include "compact_indexes.h"
#include "compact_layout.h"
#include "create_table.h"
#include "database.h"
#include "error.h"
#include "format.h"
#include "header.h"
#include "in_use.h"
#include "journal.h"
#include "os_file.h"
#include "page_file.h"
#include "table_writer.h"
#include "text.h"

namespace fs = std::filesystem;

namespace jet {
namespace {

// The properties (LvProp) of the catalog's objects that compaction keeps:
// those of the user tables by name, and the database's own.
struct CatalogProperties {
    std::map<std::u16string, Bytes> tables;
    Bytes database;
};

CatalogProperties readProperties(const PageSource& file) {
    const TableDefinition objects = findTable(file, u"MSysObjects");
    const auto id = objects.findColumnPosition(u"Id");
    const auto parent = objects.findColumnPosition(u"ParentId");
    const auto name = objects.findColumnPosition(u"Name");
    const auto properties = objects.findColumnPosition(u"LvProp");
    CatalogProperties found;
    if (!id || !parent || !name || !properties)
        return found;
    TableCursor cursor(file, objects);
    std::vector<Value> row;
    while (cursor.next()) {
        cursor.values(row);
        const Value& value = row[*properties];
        if (value.kind() != Value::Kind::Bytes)
            continue;
        if (row[*id].kind() == Value::Kind::Integer &&
            row[*id].asInteger() == format::kDatabaseObjectId) {
            found.database = value.asBytes();
        } else if (row[*parent].kind() == Value::Kind::Integer &&
                   row[*parent].asInteger() == format::kTablesContainerId &&
                   row[*name].kind() == Value::Kind::Text) {
            found.tables[row[*name].asText()] = value.asBytes();
        }
    }
    return found;
}

// Makes the table in `copy` and writes the rows of `source` into it, in
// their order; its indexes are filled afterwards, each in key order.
void copyTable(const Database& original, const TableDefinition& source, const CatalogEntry& entry,
               const Bytes& properties, Database& copy) {
    const CompactedTable compacted = compactedDefinition(source);
    copy.write([&](WriteStatement& statement) {
        const TableDefinition table =
            createTable(statement, compacted.definition, entry.flags, properties);
        CompactedIndexes indexes(original.pages(), source, table, compacted.sourceRealIndexes);
        {
            // The rows alone: a writer that knows of no index leaves them to `indexes`.
            TableDefinition rowsOnly = table;
            rowsOnly.realIndexes.clear();
            rowsOnly.indexes.clear();
            TableWriter writer(statement, rowsOnly);
            TableCursor rows = original.scan(source);
            std::vector<Value> values;
            while (rows.next()) {
                rows.values(values);
                const RowId row = writer.insert(values);
                indexes.add(values, rows.rowId(), row);
            }
        }
        indexes.write(statement);
        // Rows were written with their own AutoNumbers: the next one stays
        // where the original left it, so that no number is given twice.
        Page& definition = statement.change(table.page);
        std::memcpy(definition.data() + format::tdef::kAutoNumberOffset, &source.nextAutoNumber, 4);
    });
}

// Gives the database's own catalog entry (MSysDb) its properties.
void copyDatabaseProperties(const Bytes& properties, Database& copy) {
    if (properties.empty())
        return;
    copy.write([&](WriteStatement& statement) {
        const TableDefinition objects = findTable(statement, u"MSysObjects");
        const auto id = objects.findColumnPosition(u"Id");
        const auto lvProp = objects.findColumnPosition(u"LvProp");
        if (!id || !lvProp)
            return;
        std::optional<RowId> found;
        std::vector<Value> values;
        {
            TableCursor cursor(statement, objects);
            while (cursor.next()) {
                cursor.values(values);
                if (values[*id].kind() == Value::Kind::Integer &&
                    values[*id].asInteger() == format::kDatabaseObjectId) {
                    found = cursor.rowId();
                    break;
                }
            }
        }
        if (!found)
            return;
        values[*lvProp] = Value::bytes(properties);
        TableWriter(statement, objects).update(*found, values);
    });
}

void checkPassword(const DatabaseHeader& header, std::u16string_view password,
                   const std::string& path) {
    if (!header.password.empty() && header.password != password)
        throw Error("not a valid password for the database " + path);
}

// Removes what the copy under construction left beside it.
void removeCopy(const std::string& path) {
    os::removeFile(path);
    os::removeFile(LockFile::lockPath(path));
    os::removeFile(RollbackJournal::journalPath(path));
}

void writeCopy(const std::string& in, const std::string& temporary, std::u16string_view password) {
    // A statement that a crashed writer left unfinished is undone first,
    // which takes the file open for writing.
    const bool unfinished = fs::exists(os::utf8Path(RollbackJournal::journalPath(in)));
    const Database original(in, unfinished ? PageFile::Mode::ReadWrite : PageFile::Mode::ReadOnly);
    const DatabaseHeader& header = original.header();
    checkPassword(header, password, in);
    if (header.codePage != format::header::kCodePageWestern ||
        header.sortOrder != format::kSortGeneral) {
        throw Error("cannot compact " + in +
                    ": only databases of code page 1252 in the General "
                    "sort order are written");
    }

    NewDatabaseOptions options;
    options.password = header.password;
    options.encodingKey = header.encodingKey;
    options.created = header.created;
    createDatabase(temporary, options);

    Database copy(temporary, PageFile::Mode::ReadWrite);
    const CatalogProperties properties = readProperties(original.file());
    for (const CatalogEntry& entry : original.catalog()) {
        if (!entry.isUserTable())
            continue;
        TableDefinition source = readTableDefinition(original.file(), entry.definitionPage());
        source.name = entry.name;  // the catalog names a table, not its definition
        const auto found = properties.tables.find(entry.name);
        copyTable(original, source, entry,
                  found != properties.tables.end() ? found->second : Bytes{}, copy);
    }
    copyDatabaseProperties(properties.database, copy);
}

}  // namespace

void compactDatabase(const std::string& in, const std::string& out, std::u16string_view password) {
    std::error_code error;
    if (fs::exists(os::utf8Path(out), error))
        throw Error("cannot write " + out + ": the file exists");
    if (error)
        throw Error("cannot write " + out + ": " + error.message());
    // Something that is no database gets no lock file beside it.
    readHeader(PageFile(in, PageFile::Mode::ReadOnly));
    const std::shared_ptr<LockFile> alone = ensureNotInUse(in);

    const std::string temporary = out + ".compacting";
    removeCopy(temporary);  // what an interrupted compaction left
    try {
        writeCopy(in, temporary, password);
        os::removeFile(LockFile::lockPath(temporary));
        // The copy takes its name last, never replacing a file of that name.
        if (!os::nameWithoutReplacing(temporary, out)) {
            const std::string why = os::lastError();
            throw Error(
                "cannot write " + out + ": " +
                (fs::exists(os::utf8Path(out), error) ? "the file appeared meanwhile" : why));
        }
    } catch (...) {
        removeCopy(temporary);
        throw;
    }
    os::removeFile(temporary);  // the copy's other name, where it was linked
}

}  // namespace jet
