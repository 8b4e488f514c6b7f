#include "workbook_source.h"

#include <variant>

#include "store/jet/text.h"
#include "store/sql/collation.h"
#include "store/sql/parser.h"
#include "store/workbook/table_names.h"

namespace store {
namespace {

[[noreturn]] void refuse(const std::string& what, std::u16string_view statement) {
    throw sql::Error("a workbook is read with a plain SELECT only: " + what +
                     "; statement: " + jet::toUtf8(statement));
}

}  // namespace

WorkbookSource::WorkbookSource(const std::filesystem::path& path, bool headerRow)
    : book_(workbook::readWorkbookFile(path)), headerRow_(headerRow) {}

std::vector<Source::Table> WorkbookSource::tables() const {
    std::vector<Table> tables;
    for (std::u16string& name : workbook::tableNames(book_))
        tables.push_back({std::move(name)});
    return tables;
}

sql::ExecuteResult WorkbookSource::execute(std::u16string_view statement) {
    const sql::Statement parsed = sql::parse(statement);
    const auto* select = std::get_if<sql::SelectStatement>(&parsed);
    if (select == nullptr)
        refuse("nothing is deleted or created", statement);
    if (select->distinct || select->where || !select->groupBy.empty() || select->having ||
        !select->orderBy.empty()) {
        refuse("no DISTINCT, WHERE, GROUP BY, HAVING or ORDER BY", statement);
    }
    workbook::SheetTable table = workbook::readTable(book_, select->table, headerRow_);

    sql::ExecuteResult result;
    result.isQuery = true;
    sql::QueryResult& query = result.query;
    std::vector<std::size_t> picked;
    for (const sql::SelectItem& item : select->items) {
        if (item.star) {
            for (std::size_t c = 0; c < table.columnNames.size(); ++c) {
                picked.push_back(c);
                query.columnNames.push_back(table.columnNames[c]);
            }
            continue;
        }
        if (item.value.kind != sql::Expression::Kind::Column)
            refuse("no aggregates", statement);
        const std::u16string& name = item.value.column.name;
        std::size_t c = 0;
        while (c < table.columnNames.size() && !sql::sameName(table.columnNames[c], name))
            ++c;
        if (c == table.columnNames.size()) {
            throw sql::Error("the table " + jet::toUtf8(select->table) + " has no column " +
                             jet::toUtf8(name));
        }
        picked.push_back(c);
        query.columnNames.push_back(item.alias.empty() ? table.columnNames[c] : item.alias);
    }
    query.rows.reserve(table.rows.size());
    for (std::vector<jet::Value>& row : table.rows) {
        std::vector<jet::Value>& out = query.rows.emplace_back();
        out.reserve(picked.size());
        for (const std::size_t c : picked)
            out.push_back(row[c]);
    }
    return result;
}

}  // namespace store
