#include "connection.h"

#include <algorithm>
#include <string>

#include "store/connection_string.h"
#include "store/data_error.h"
#include "store/jet/text.h"
#include "store/sql/collation.h"

namespace store {
namespace {

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) {
        return false;
    }
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
        if (lower(text[i]) != lower(prefix[i])) {
            return false;
        }
    }
    return true;
}

}  // namespace

void Connection::Open(std::string_view connectionString) {
    if (isOpen()) {
        throw DataError("the connection is already open");
    }
    const ConnectionString parsed = parseConnectionString(connectionString);
    const std::string provider = parsed.provider();
    if (!provider.empty() && !startsWithIgnoringCase(provider, "Microsoft.Jet.OLEDB.") &&
        !startsWithIgnoringCase(provider, "Microsoft.ACE.OLEDB.")) {
        throw DataError("provider " + provider + " is not supported");
    }
    const std::filesystem::path path = resolveDataSource(parsed.dataSource());
    const bool readOnly = startsWithIgnoringCase(parsed.value("Mode").value_or(""), "Read") &&
                          !startsWithIgnoringCase(parsed.value("Mode").value_or(""), "ReadWrite");
    source_ =
        std::make_shared<JetSource>(path.string(), jet::fromUtf8(parsed.password()), readOnly);
}

void Connection::Close() {
    requireOpen("Close");
    source_.reset();
}

sql::ExecuteResult Connection::Execute(std::u16string_view statement) {
    requireOpen("Execute");
    return asDataError([&] { return source_->execute(statement); });
}

sql::QueryResult Connection::OpenSchema(int schema) const {
    requireOpen("OpenSchema");
    if (schema != kSchemaTables) {
        throw DataError("OpenSchema: schema " + std::to_string(schema) +
                        " is not supported; only the tables (20)");
    }
    std::vector<Source::Table> tables;
    try {
        tables = source_->tables();
    } catch (const jet::Error& error) {
        throw DataError(error.what());
    }
    // "SYSTEM TABLE" sorts before "TABLE".
    std::stable_sort(tables.begin(), tables.end(),
                     [](const Source::Table& a, const Source::Table& b) {
                         if (a.system != b.system) {
                             return a.system;
                         }
                         return sql::compareText(a.name, b.name) < 0;
                     });
    sql::QueryResult result;
    result.columnNames = {u"TABLE_CATALOG", u"TABLE_SCHEMA", u"TABLE_NAME", u"TABLE_TYPE"};
    for (const Source::Table& table : tables) {
        result.rows.push_back({jet::Value(), jet::Value(), jet::Value::text(table.name),
                               jet::Value::text(table.system ? u"SYSTEM TABLE" : u"TABLE")});
    }
    return result;
}

void Connection::requireOpen(const char* operation) const {
    if (!isOpen()) {
        throw DataError(std::string(operation) + ": the connection is not open");
    }
}

}  // namespace store
