// jetsql FILE "STATEMENT"   runs one statement of the system's SQL on an
// Access file: a query prints its rows as CSV in jetdump's format, any other
// statement the number of rows it affected.

#include <cstdio>
#include <string>
#include <variant>
#include <vector>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/text.h"
#include "store/sql/collation.h"
#include "store/sql/executor.h"
#include "store/sql/parser.h"
#include "tools/mdb_export_format.h"
#include "tools/utf8_args.h"

namespace {

// The database passwords of the system's own file and of the roll-call
// program's file; a file without a password is accepted too.
constexpr std::u16string_view kPasswords[] = {u"HtRvZpQsD2019", u"HtRvZpSw2019"};

jet::ColumnType typeOfValue(const jet::Value& value) {
    switch (value.kind()) {
        case jet::Value::Kind::Boolean:
            return jet::ColumnType::Boolean;
        case jet::Value::Kind::Integer:
            return jet::ColumnType::LongInteger;
        case jet::Value::Kind::Double:
            return jet::ColumnType::Double;
        case jet::Value::Kind::Currency:
            return jet::ColumnType::Currency;
        case jet::Value::Kind::Date:
            return jet::ColumnType::DateTime;
        case jet::Value::Kind::Decimal:
            return jet::ColumnType::Decimal;
        case jet::Value::Kind::Bytes:
            return jet::ColumnType::Binary;
        default:
            return jet::ColumnType::Text;
    }
}

// The columns the result prints as: the table's own column where the result
// column is one (formatting follows its type), else one of the type of the
// column's first value that is not Null.
jet::TableDefinition resultLayout(const jet::Database& database, const sql::QueryResult& result,
                                  const std::u16string& tableName) {
    jet::TableDefinition table = database.table(tableName);
    jet::TableDefinition layout;
    for (std::size_t c = 0; c < result.columnNames.size(); ++c) {
        jet::Column column;
        column.name = result.columnNames[c];
        if (!result.baseTable.empty()) {
            column = table.columns[result.tableColumn[c]];
            column.name = result.columnNames[c];
            layout.columns.push_back(column);
            continue;
        }
        bool found = false;
        for (const jet::Column& tableColumn : table.columns) {
            if (sql::sameName(tableColumn.name, column.name)) {
                column = tableColumn;
                found = true;
            }
        }
        if (!found) {
            for (const auto& row : result.rows) {
                if (!row[c].isNull()) {
                    column.type = typeOfValue(row[c]);
                    break;
                }
            }
        }
        layout.columns.push_back(column);
    }
    return layout;
}

}  // namespace

int main(int argc, char** argv) {
    const tools::Utf8Arguments arguments(argc, argv);
    argc = arguments.count();
    argv = arguments.values();
    if (argc != 3) {
        std::fprintf(stderr, "usage: jetsql FILE \"STATEMENT\"\n");
        return 2;
    }
    try {
        const std::u16string text = jet::fromUtf8(argv[2]);
        const sql::Statement statement = sql::parse(text);
        const bool query = std::holds_alternative<sql::SelectStatement>(statement);
        jet::Database database(
            argv[1], query ? jet::PageFile::Mode::ReadOnly : jet::PageFile::Mode::ReadWrite);
        const std::u16string& password = database.header().password;
        bool known = password.empty();
        for (std::u16string_view p : kPasswords)
            known = known || password == p;
        if (!known) {
            std::fprintf(stderr, "jetsql: %s has a database password that is not the system's\n",
                         argv[1]);
            return 1;
        }
        const sql::ExecuteResult result = sql::execute(database, statement);
        std::string out;
        if (result.isQuery) {
            const auto& select = std::get<sql::SelectStatement>(statement);
            const jet::TableDefinition layout =
                resultLayout(database, result.query, sql::findTableName(database, select.table));
            jet::appendMdbExportHeader(out, layout);
            for (const auto& row : result.query.rows) {
                jet::appendMdbExportRow(out, layout, row);
                if (out.size() > (1u << 16)) {
                    std::fwrite(out.data(), 1, out.size(), stdout);
                    out.clear();
                }
            }
        } else {
            out = std::to_string(result.rowsAffected) + "\n";
        }
        std::fwrite(out.data(), 1, out.size(), stdout);
    } catch (const std::exception& error) {
        // jet::Error for the file and the statement; anything else (memory) too.
        std::fflush(stdout);
        std::fprintf(stderr, "jetsql: %s\n", error.what());
        return 1;
    }
    return std::fflush(stdout) == 0 ? 0 : 1;
}
