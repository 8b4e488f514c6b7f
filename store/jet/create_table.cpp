#include "create_table.h"

#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "catalog.h"
#include "data_page_builder.h"
#include "database_builder.h"
#include "error.h"
#include "format.h"
#include "index_page_builder.h"
#include "table_writer.h"
#include "text.h"
#include "usage_map_writer.h"
#include "write_statement.h"

namespace jet {
namespace {

struct Token {
    enum class Kind { Word, Name, Number, Symbol, End };
    Kind kind = Kind::End;
    std::u16string text;  // a Name without its brackets
};

bool isNameCharacter(char16_t c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'_' || c >= 0x80;
}

std::vector<Token> tokenize(std::u16string_view sql) {
    std::vector<Token> tokens;
    std::size_t i = 0;
    while (i < sql.size()) {
        const char16_t c = sql[i];
        if (c == u' ' || c == u'\t' || c == u'\r' || c == u'\n') {
            ++i;
        } else if (c == u'[') {
            const std::size_t end = sql.find(u']', i + 1);
            if (end == std::u16string_view::npos) {
                throw Error("CREATE TABLE: the name at " + toUtf8(sql.substr(i, 20)) +
                            " lacks its closing bracket");
            }
            tokens.push_back({Token::Kind::Name, std::u16string(sql.substr(i + 1, end - i - 1))});
            i = end + 1;
        } else if (c >= u'0' && c <= u'9') {
            std::size_t end = i;
            while (end < sql.size() && sql[end] >= u'0' && sql[end] <= u'9')
                ++end;
            tokens.push_back({Token::Kind::Number, std::u16string(sql.substr(i, end - i))});
            i = end;
        } else if (isNameCharacter(c)) {
            std::size_t end = i;
            while (end < sql.size() && isNameCharacter(sql[end]))
                ++end;
            tokens.push_back({Token::Kind::Word, std::u16string(sql.substr(i, end - i))});
            i = end;
        } else {
            tokens.push_back({Token::Kind::Symbol, std::u16string(1, c)});
            ++i;
        }
    }
    tokens.push_back({Token::Kind::End, u""});
    return tokens;
}

bool isKeyword(const Token& token, std::string_view keyword) {
    if (token.kind != Token::Kind::Word || token.text.size() != keyword.size())
        return false;
    for (std::size_t i = 0; i < keyword.size(); ++i) {
        char16_t c = token.text[i];
        if (c >= u'a' && c <= u'z')
            c = static_cast<char16_t>(c - 32);
        if (c != static_cast<char16_t>(keyword[i]))
            return false;
    }
    return true;
}

class Parser {
public:
    explicit Parser(std::u16string_view sql) : tokens_(tokenize(sql)) {}

    NewTable createTable() {
        expect("CREATE");
        expect("TABLE");
        NewTable table;
        table.name = name("a table name");
        expectSymbol(u'(');
        do {
            element(table);
        } while (acceptSymbol(u','));
        expectSymbol(u')');
        acceptSymbol(u';');
        if (peek().kind != Token::Kind::End)
            fail("the end of the statement");
        nameUnnamedIndexes(table);
        return table;
    }

private:
    const Token& peek() const { return tokens_[position_]; }
    const Token& next() {
        return tokens_[position_ < tokens_.size() - 1 ? position_++ : position_];
    }

    [[noreturn]] void fail(const std::string& expected) const {
        const Token& token = peek();
        const std::string found = token.kind == Token::Kind::End ? "the end of the statement"
                                                                 : "\"" + toUtf8(token.text) + "\"";
        throw Error("CREATE TABLE: " + found + " is not understood here (token " +
                    std::to_string(position_ + 1) + "): " + expected + " was expected");
    }

    bool accept(std::string_view keyword) {
        if (!isKeyword(peek(), keyword))
            return false;
        next();
        return true;
    }
    void expect(std::string_view keyword) {
        if (!accept(keyword))
            fail(std::string(keyword));
    }
    bool acceptSymbol(char16_t symbol) {
        if (peek().kind != Token::Kind::Symbol || peek().text[0] != symbol)
            return false;
        next();
        return true;
    }
    void expectSymbol(char16_t symbol) {
        if (!acceptSymbol(symbol))
            fail(std::string("\"") + static_cast<char>(symbol) + "\"");
    }
    std::u16string name(const std::string& what) {
        if (peek().kind != Token::Kind::Word && peek().kind != Token::Kind::Name)
            fail(what);
        return next().text;
    }
    std::uint16_t number() {
        if (peek().kind != Token::Kind::Number || peek().text.size() > 4)
            fail("a size");
        return static_cast<std::uint16_t>(std::stoi(toUtf8(next().text)));
    }

    std::vector<std::u16string> columnList() {
        std::vector<std::u16string> columns;
        expectSymbol(u'(');
        do {
            columns.push_back(name("a column name"));
        } while (acceptSymbol(u','));
        expectSymbol(u')');
        return columns;
    }

    // PRIMARY KEY or UNIQUE, after an optional CONSTRAINT name.
    bool constraintKind(NewIndex& index) {
        if (accept("PRIMARY")) {
            expect("KEY");
            index.primaryKey = true;
            return true;
        }
        if (accept("UNIQUE")) {
            index.unique = true;
            return true;
        }
        return false;
    }

    void element(NewTable& table) {
        NewIndex index;
        if (accept("CONSTRAINT")) {
            index.name = name("a constraint name");
            if (!constraintKind(index))
                fail("PRIMARY KEY or UNIQUE");
            index.columns = columnList();
            table.indexes.push_back(std::move(index));
            return;
        }
        if (constraintKind(index)) {
            index.columns = columnList();
            table.indexes.push_back(std::move(index));
            return;
        }
        table.columns.push_back(column(table));
    }

    void type(NewColumn& column) {
        using T = ColumnType;
        const auto sized = [&](T type, std::uint16_t fallback) {
            column.type = type;
            column.length = fallback;
            if (acceptSymbol(u'(')) {
                column.length = number();
                expectSymbol(u')');
            }
        };
        if (accept("TEXT") || accept("VARCHAR") || accept("ALPHANUMERIC") || accept("STRING") ||
            accept("NVARCHAR")) {
            sized(T::Text, 255);
        } else if (accept("CHAR") || accept("CHARACTER") || accept("NCHAR")) {
            sized(T::Text, 255);
            column.fixedLength = true;
        } else if (accept("MEMO") || accept("LONGTEXT") || accept("LONGCHAR") || accept("NOTE") ||
                   accept("NTEXT")) {
            column.type = T::Memo;
        } else if (accept("LONG") || accept("INTEGER") || accept("INT") || accept("INTEGER4")) {
            column.type = T::LongInteger;
        } else if (accept("SHORT") || accept("SMALLINT") || accept("INTEGER2")) {
            column.type = T::Integer;
        } else if (accept("BYTE") || accept("TINYINT") || accept("INTEGER1")) {
            column.type = T::Byte;
        } else if (accept("DOUBLE") || accept("FLOAT") || accept("FLOAT8") || accept("NUMBER")) {
            column.type = T::Double;
        } else if (accept("SINGLE") || accept("REAL") || accept("FLOAT4")) {
            column.type = T::Single;
        } else if (accept("CURRENCY") || accept("MONEY")) {
            column.type = T::Currency;
        } else if (accept("DATETIME") || accept("DATE") || accept("TIME") || accept("TIMESTAMP")) {
            column.type = T::DateTime;
        } else if (accept("YESNO") || accept("BIT") || accept("LOGICAL") || accept("BOOLEAN")) {
            column.type = T::Boolean;
        } else if (accept("COUNTER") || accept("AUTOINCREMENT") || accept("IDENTITY")) {
            column.type = T::LongInteger;
            column.autoNumber = true;
        } else if (accept("BINARY") || accept("VARBINARY")) {
            sized(T::Binary, 510);
        } else if (accept("LONGBINARY") || accept("OLEOBJECT") || accept("IMAGE") ||
                   accept("GENERAL")) {
            column.type = T::Ole;
        } else if (accept("GUID") || accept("UNIQUEIDENTIFIER")) {
            column.type = T::ReplicationId;
        } else {
            fail("a data type");
        }
    }

    NewColumn column(NewTable& table) {
        NewColumn column;
        column.name = name("a column name or constraint");
        type(column);
        while (true) {
            NewIndex index;
            if (accept("NOT")) {
                expect("NULL");
                throw Error("CREATE TABLE: NOT NULL on column " + toUtf8(column.name) +
                            " is not supported: the Required property cannot be written yet");
            } else if (accept("NULL")) {
                continue;
            } else if (accept("WITH")) {
                if (!accept("COMPRESSION") && !accept("COMP"))
                    fail("COMPRESSION");
                column.compressedUnicode = true;
            } else if (accept("CONSTRAINT")) {
                index.name = name("a constraint name");
                if (!constraintKind(index))
                    fail("PRIMARY KEY or UNIQUE");
                index.columns = {column.name};
                table.indexes.push_back(std::move(index));
            } else if (constraintKind(index)) {
                index.columns = {column.name};
                table.indexes.push_back(std::move(index));
            } else {
                return column;
            }
        }
    }

    // Access names a primary key PrimaryKey and another index after its
    // first column, adding a number when the name is taken.
    static void nameUnnamedIndexes(NewTable& table) {
        const auto taken = [&](const std::u16string& name) {
            for (const NewIndex& index : table.indexes) {
                if (sameName(index.name, name))
                    return true;
            }
            return false;
        };
        for (NewIndex& index : table.indexes) {
            if (!index.name.empty())
                continue;
            const std::u16string base = index.primaryKey ? u"PrimaryKey" : index.columns.front();
            std::u16string candidate = base;
            for (int n = 1; taken(candidate); ++n)
                candidate = base + fromUtf8(std::to_string(n));
            index.name = candidate;
        }
    }

    std::vector<Token> tokens_;
    std::size_t position_ = 0;
};

std::uint32_t pointer(RowId row) {
    return (row.page << 8) | row.row;
}

}  // namespace

NewTable parseCreateTable(std::u16string_view sql) {
    return Parser(sql).createTable();
}

TableDefinition createTable(WriteStatement& statement, const NewTable& wanted) {
    return createTable(statement, layOutTable(wanted), 0, {});
}

TableDefinition createTable(WriteStatement& statement, TableDefinition table,
                            std::uint32_t catalogFlags, const Bytes& properties) {
    for (const CatalogEntry& entry : readCatalog(statement)) {
        if (entry.parentId == format::kTablesContainerId && sameName(entry.name, table.name)) {
            throw Error("table " + toUtf8(table.name) +
                        " cannot be made: " + (entry.isTable() ? "table " : "an object named ") +
                        toUtf8(entry.name) + " exists");
        }
    }
    table.rowCount = 0;
    for (RealIndex& index : table.realIndexes)
        index.rowCount = 0;
    const TableDefinition objects = findTable(statement, u"MSysObjects");

    // Pages: the definition, one for the usage maps, one root per index.
    table.pages.resize(tableDefinitionPageCount(table));
    for (std::uint32_t& page : table.pages)
        page = allocatePage(statement);
    table.page = table.pages.front();
    const std::uint32_t mapPage = allocatePage(statement);
    initDataPage(statement.change(mapPage), 0);
    // Each map's window begins at the definition, near the pages to come.
    const std::uint32_t windowStart = table.page & ~7u;
    const auto newMap = [&]() {
        const std::uint16_t slot = appendRow(statement.change(mapPage), emptyUsageMap(windowStart));
        return pointer(RowId{mapPage, slot});
    };
    table.usageMap = newMap();
    table.freeSpaceMap = newMap();
    for (RealIndex& index : table.realIndexes) {
        index.usageMap = newMap();
        index.firstPage = allocatePage(statement);
        IndexPageContents emptyRoot;
        emptyRoot.owner = table.page;
        buildIndexPage(statement.change(index.firstPage), emptyRoot);
        addToUsageMap(statement, index.usageMap, index.firstPage);
    }
    const std::vector<Page> definition = buildTableDefinition(table);
    for (std::size_t i = 0; i < definition.size(); ++i)
        statement.change(table.pages[i]) = definition[i];

    const CatalogEntry entry{table.name, static_cast<std::int32_t>(table.page),
                             format::kTablesContainerId, format::kObjectTypeTable, catalogFlags};
    std::vector<Value> row = catalogRow(objects, entry, currentDate());
    if (!properties.empty()) {
        for (std::size_t i = 0; i < objects.columns.size(); ++i) {
            if (objects.columns[i].name == u"LvProp")
                row[i] = Value::bytes(properties);
        }
    }
    TableWriter(statement, objects).insert(std::move(row));
    return table;
}

}  // namespace jet
