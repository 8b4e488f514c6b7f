#include "connection.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <string>

#include "store/connection_string.h"
#include "store/data_error.h"
#include "store/jet/os_file.h"
#include "store/jet/text.h"
#include "store/sql/collation.h"
#include "store/workbook_source.h"

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

bool containsIgnoringCase(std::string_view text, std::string_view part) {
    for (std::size_t i = 0; i + part.size() <= text.size(); ++i) {
        if (startsWithIgnoringCase(text.substr(i), part))
            return true;
    }
    return false;
}

// The workbook that an ODBC string names through the Excel driver:
// "Provider=MSDASQL.1;...;Extended Properties=DBQ=<path>;...;Driver={Microsoft
// Excel Driver (*.xls)};...". The first row names the columns.
std::shared_ptr<Source> openOdbcWorkbook(const ConnectionString& parsed) {
    const std::string driver = parsed.value("Driver").value_or("");
    if (!containsIgnoringCase(driver, "Excel")) {
        throw DataError("the ODBC driver " + (driver.empty() ? "(none)" : driver) +
                        " is not supported; only the Excel driver");
    }
    std::string file = parsed.value("DBQ").value_or("");
    const std::string extended = parsed.value("Extended Properties").value_or("");
    if (startsWithIgnoringCase(extended, "DBQ="))
        file = extended.substr(4);
    if (file.empty())
        throw DataError("the connection string names no workbook (DBQ)");
    return std::make_shared<WorkbookSource>(resolveDataSource(file), true);
}

// The Extended Properties of a Jet string, such as "Excel 8.0;HDR=NO;", when
// they name a workbook: whether its first row names the columns.
std::optional<bool> workbookHeaderRow(const ConnectionString& parsed) {
    const std::string extended = parsed.value("Extended Properties").value_or("");
    if (!startsWithIgnoringCase(extended, "Excel"))
        return std::nullopt;
    const ConnectionString properties = parseConnectionString(extended);
    return !startsWithIgnoringCase(properties.value("HDR").value_or("YES"), "NO");
}

}  // namespace

void Connection::Open(std::string_view connectionString) {
    if (isOpen()) {
        throw DataError("the connection is already open");
    }
    const ConnectionString parsed = parseConnectionString(connectionString);
    const std::string provider = parsed.provider();
    if (startsWithIgnoringCase(provider, "MSDASQL")) {
        source_ = openOdbcWorkbook(parsed);
        return;
    }
    if (!provider.empty() && !startsWithIgnoringCase(provider, "Microsoft.Jet.OLEDB.") &&
        !startsWithIgnoringCase(provider, "Microsoft.ACE.OLEDB.")) {
        throw DataError("provider " + provider + " is not supported");
    }
    const std::filesystem::path path = resolveDataSource(parsed.dataSource());
    if (const std::optional<bool> headerRow = workbookHeaderRow(parsed)) {
        source_ = std::make_shared<WorkbookSource>(path, *headerRow);
        return;
    }
    const bool readOnly = startsWithIgnoringCase(parsed.value("Mode").value_or(""), "Read") &&
                          !startsWithIgnoringCase(parsed.value("Mode").value_or(""), "ReadWrite");
    source_ = std::make_shared<JetSource>(jet::os::utf8Text(path), jet::fromUtf8(parsed.password()),
                                          readOnly);
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
