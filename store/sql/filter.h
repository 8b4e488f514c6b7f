#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "store/jet/table_definition.h"
#include "store/jet/value.h"

namespace sql {

// A condition set as the filter of an open record set, such as
// " Adi like 'AL%'", "TCKimlikno=12345678901 And yıl=2026 And ay=11" or
// " A_Ogr_Oda_No =12  and  CINSIYET= 'K'". It narrows rows already read;
// it never runs a query.
//
// The language: terms `column operator value`, joined by `and` / `or` in any
// case (and binds closer than or), grouped by parentheses. A column is a
// name, or a name in brackets; it is found among the record set's columns
// by sameName. Operators: = < > <= >= <> and `like`. Values: text in single
// quotes ('' stands for one quote), a bare number (sign, digits, point,
// exponent), a date between # (#month/day/year#, an optional time h:mm or
// h:mm:ss, or #year-month-day#).
//
// Meaning of a term, on the kind of the column:
// - A comparison with a Null value is never true, <> included.
// - Text column: texts compare by equalText (= and <>) and compareText
//   (order): case ignored under Turkish rules, accents respected. A bare
//   number compares as text, spelled as the filter writes it.
// - Number column (integers, floating point, currency, decimal, boolean):
//   numerically; a quoted text must read as a number.
// - Date column: a date literal compares by its day number.
// - `like 'x%'` (or 'x*') is a prefix match, `like '%x%'` a match anywhere,
//   `like 'x'` an equality; `like` with a bare number is an equality (as
//   text on a text column, numerically on a number column).
// Anything else (a quote left open, a quote inside a quoted text, a word
// after the value, a wildcard at the front only or in the middle, a date
// against a text column) is an error.
class Filter {
public:
    enum class Operator { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual, Like };

    struct Literal {
        enum class Kind { Text, Number, Date };
        Kind kind = Kind::Text;
        std::u16string text;  // Text: the unquoted text; Number: the digits as written
        double number = 0.0;  // Number: its value; Date: the day number (jet::Date)
    };

    // What a `like` pattern asks for, its wildcards taken off.
    enum class Match { Whole, Prefix, Anywhere };

    struct Term {
        std::u16string column;  // as the filter spells it
        Operator op = Operator::Equal;
        Literal value;
        Match match = Match::Whole;  // Like: how value.text is to be found
    };

    // A node: a term, or and/or over nodes.
    struct Node {
        enum class Kind { Term, And, Or };
        Kind kind = Kind::Term;
        std::size_t term = 0;  // Term: index into terms_
        std::vector<Node> operands;
    };

    // The columns of a record set that a filter is checked against once, so
    // that matching each row needs no name lookup.
    struct Binding {
        std::vector<std::size_t> column;  // per term: position of its column in the row
        std::vector<bool> asText;         // per term: compared as text (else as a number)
        std::vector<double> number;       // per term, compared as a number: the filter's value
    };

    // True for a filter of blank text: it lets every row through.
    bool empty() const { return terms_.empty(); }
    const std::vector<Term>& terms() const { return terms_; }

    // Checks the filter against a record set's columns: every name there,
    // every value fit for its column. Throws sql::Error naming the column
    // otherwise. A record set calls this before it replaces its filter, so
    // that a filter that fails leaves the old one in place.
    Binding bind(const std::vector<std::u16string>& columnNames,
                 const std::vector<jet::ColumnType>& columnTypes) const;

    // REQUIRES: `binding` came from bind() on this filter with the columns
    // that `row` has.
    bool matches(const Binding& binding, const std::vector<jet::Value>& row) const;

    // bind() and matches() in one; for a single row.
    bool matches(const std::vector<std::u16string>& columnNames,
                 const std::vector<jet::ColumnType>& columnTypes,
                 const std::vector<jet::Value>& row) const;

private:
    friend Filter parseFilter(std::u16string_view text);

    bool evaluate(const Node& node, const Binding& binding,
                  const std::vector<jet::Value>& row) const;
    bool termMatches(std::size_t index, const Binding& binding,
                     const std::vector<jet::Value>& row) const;

    std::vector<Term> terms_;
    Node root_;  // unused when terms_ is empty
};

// Parses a filter text (see Filter). A text of blanks alone gives the empty
// filter. Throws sql::Error saying what was not understood and where.
Filter parseFilter(std::u16string_view text);

}  // namespace sql
