#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "store/jet/error.h"
#include "store/jet/value.h"

namespace sql {

// A statement that is not understood, or that does not fit the table it
// names. The message says what and where; a jet::Error, so that callers of
// the store catch one kind of failure.
class Error : public jet::Error {
public:
    using jet::Error::Error;
};

// A column as the statement names it: `gun` or `yemek.gun`.
struct ColumnName {
    std::u16string table;  // the qualifier; empty when the name stands alone
    std::u16string name;
};

enum class Comparison { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };
enum class Aggregate { Count, Sum, Min, Max, Avg };

// A node of a condition or a selected value.
struct Expression {
    enum class Kind {
        Column,     // column
        Literal,    // literal
        Aggregate,  // aggregate over column, or over every row when star
        Compare,    // operands[0] comparison operands[1]
        Like,       // operands[0] LIKE operands[1]; negated for NOT LIKE
        IsNull,     // operands[0] IS NULL; negated for IS NOT NULL
        And,
        Or,
        Not,  // operands[0]
    };
    Kind kind = Kind::Literal;
    ColumnName column;
    jet::Value literal;
    Aggregate aggregate = Aggregate::Count;
    bool star = false;
    Comparison comparison = Comparison::Equal;
    bool negated = false;
    std::vector<Expression> operands;
};

struct SelectItem {
    bool star = false;  // `*`: every column of the table
    Expression value;   // a Column or an Aggregate
    std::u16string alias;
};

struct OrderItem {
    ColumnName column;  // a column of the table, or an alias of the select list
    bool descending = false;
};

struct SelectStatement {
    bool distinct = false;
    std::vector<SelectItem> items;
    std::u16string table;
    std::optional<Expression> where;
    std::vector<ColumnName> groupBy;
    std::optional<Expression> having;
    std::vector<OrderItem> orderBy;
};

struct DeleteStatement {
    std::u16string table;
    std::optional<Expression> where;
};

// Handed whole to the engine, which parses its own CREATE TABLE.
struct CreateTableStatement {
    std::u16string text;
};

using Statement = std::variant<SelectStatement, DeleteStatement, CreateTableStatement>;

}  // namespace sql
