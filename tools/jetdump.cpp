// jetdump FILE          lists the user tables of an Access file, one per line
// jetdump FILE TABLE    prints the table as CSV, byte for byte as mdb-export does

#include <cstdio>
#include <string>
#include <vector>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/text.h"
#include "tools/mdb_export_format.h"

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
        if (out.size() > (1u << 16)) flush(out);
    }
    flush(out);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2 && argc != 3) {
        std::fprintf(stderr, "usage: jetdump FILE [TABLE]\n");
        return 2;
    }
    try {
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
