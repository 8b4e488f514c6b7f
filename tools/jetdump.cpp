// jetdump FILE          lists the user tables of an Access file, one per line
// jetdump FILE TABLE    prints the table as CSV, byte for byte as mdb-export does
// jetdump BOOK.xls      lists the workbook's tables as the sheet picker gets them
// jetdump BOOK.xls T    prints the sheet or named range T as CSV in the same form
//
// A workbook (known by its compound-file signature, or by the extension .xls)
// is read through a connection and a record set, as the windows read it.

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <string>
#include <vector>

#include "store/connection.h"
#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/os_file.h"
#include "store/jet/text.h"
#include "store/recordset.h"
#include "tools/mdb_export_format.h"
#include "tools/utf8_args.h"

namespace {

void flush(std::string& out) {
    std::fwrite(out.data(), 1, out.size(), stdout);
    out.clear();
}

void listTables(const jet::Database& database) {
    std::string out;
    for (const std::u16string& name : database.userTableNames()) {
        jet::appendUtf8(out, name);
        out.push_back('\n');
    }
    flush(out);
}

void dumpTable(const jet::Database& database, const std::string& tableName) {
    // Whole statements of the program's writers only.
    const jet::LockFile::Hold lock = database.holdForReading();
    const jet::TableDefinition table = database.table(jet::fromUtf8(tableName));
    std::string out;
    jet::appendMdbExportHeader(out, table);
    jet::TableCursor cursor = database.scan(table);
    std::vector<jet::Value> values;
    while (cursor.next()) {
        cursor.values(values);
        jet::appendMdbExportRow(out, table, values);
        if (out.size() > (1u << 16))
            flush(out);
    }
    flush(out);
}

// By content: the compound-file signature of an .xls, or the ZIP of an .xlsx
// (refused with its own message); else by the extension.
bool isWorkbook(const std::string& path) {
    static constexpr unsigned char kCompoundFile[8] = {0xD0, 0xCF, 0x11, 0xE0,
                                                       0xA1, 0xB1, 0x1A, 0xE1};
    unsigned char start[8] = {};
    const jet::os::File in = jet::os::File::open(path, jet::os::File::Mode::Read);
    if (in.isOpen() && in.readAll(start, sizeof start, 0) == sizeof start &&
        (std::equal(start, start + 8, kCompoundFile) || (start[0] == 'P' && start[1] == 'K'))) {
        return true;
    }
    // The name's last dot, if after the last folder separator of either system.
    const std::size_t dot = path.find_last_of("./\\");
    std::string extension = dot != std::string::npos && path[dot] == '.' ? path.substr(dot) : "";
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == ".xls" || extension == ".xlsx";
}

void listWorkbookTables(const store::Connection& connection) {
    const sql::QueryResult schema = connection.OpenSchema(store::Connection::kSchemaTables);
    std::string out;
    for (const std::vector<jet::Value>& row : schema.rows) {
        jet::appendUtf8(out, row[2].asText());
        out.push_back('\n');
    }
    flush(out);
}

void dumpWorkbookTable(store::Connection& connection, const std::string& tableName) {
    store::Recordset records;
    std::u16string sql = u"select* from `";
    sql += jet::fromUtf8(tableName);
    sql += u"`";
    records.open(sql, connection);
    jet::TableDefinition table;
    for (std::size_t c = 0; c < records.fieldNames().size(); ++c) {
        jet::Column column;
        column.name = records.fieldNames()[c];
        column.type = records.fieldTypes()[c];
        table.columns.push_back(std::move(column));
    }
    std::string out;
    jet::appendMdbExportHeader(out, table);
    std::vector<jet::Value> values(table.columns.size());
    for (long position = 1; position <= records.recordCount(); ++position) {
        for (std::size_t c = 0; c < values.size(); ++c)
            values[c] = records.valueAt(position, c);
        jet::appendMdbExportRow(out, table, values);
        if (out.size() > (1u << 16))
            flush(out);
    }
    flush(out);
}

// A workbook goes through a connection of the ODBC kind the menu import uses.
void dumpWorkbook(const std::string& path, const char* tableName) {
    store::Connection connection;
    connection.Open(
        "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=" + path +
        ";Driver={Microsoft Excel Driver (*.xls)};DriverId=790;FIL=excel 8.0;"
        "MaxScanRows=8;ReadOnly=1;");
    if (tableName == nullptr) {
        listWorkbookTables(connection);
    } else {
        dumpWorkbookTable(connection, tableName);
    }
}

}  // namespace

int main(int argc, char** argv) {
    const tools::Utf8Arguments arguments(argc, argv);
    argc = arguments.count();
    argv = arguments.values();
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: jetdump FILE [TABLE]\n");
        return 2;
    }
    try {
        if (isWorkbook(argv[1])) {
            try {
                dumpWorkbook(argv[1], argc == 3 ? argv[2] : nullptr);
            } catch (const jet::Error& error) {
                std::fflush(stdout);
                std::fprintf(stderr, "jetdump: %s\n", error.what());
                return 2;
            }
            return std::fflush(stdout) == 0 ? 0 : 1;
        }
        const jet::Database database(argv[1]);
        if (argc == 2) {
            listTables(database);
        } else {
            dumpTable(database, argv[2]);
        }
    } catch (const jet::Error& error) {
        std::fflush(stdout);
        std::fprintf(stderr, "jetdump: %s\n", error.what());
        return 1;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
