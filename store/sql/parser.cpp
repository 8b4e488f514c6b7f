#include "parser.h"

#include <cmath>
#include <cstdint>
#include <string>

#include "characters.h"
#include "collation.h"
#include "store/jet/text.h"

namespace sql {
namespace {

struct Token {
    enum class Kind { End, Word, Number, Text, Date, Symbol };
    Kind kind = Kind::End;
    std::u16string text;       // Word: the name; Symbol: the symbol; Text: the value
    bool bracketed = false;    // Word written as [name] or `name`: never a keyword
    jet::Value value;          // Number, Date
    std::size_t position = 0;  // offset in the statement, for messages
};

class Parser {
public:
    explicit Parser(std::u16string_view text) : text_(text) { advance(); }

    Statement statement() {
        Statement result;
        if (isKeyword(u"SELECT")) {
            result = select();
        } else if (isKeyword(u"DELETE")) {
            result = remove();
        } else if (isKeyword(u"CREATE")) {
            advance();
            if (!isKeyword(u"TABLE"))
                fail("expected TABLE after CREATE");
            return CreateTableStatement{std::u16string(text_)};
        } else {
            fail("expected SELECT, DELETE or CREATE TABLE");
        }
        if (token_.kind == Token::Kind::Symbol && token_.text == u";") {
            advance();
        }
        if (token_.kind != Token::Kind::End) {
            fail("expected the end of the statement");
        }
        return result;
    }

private:
    [[noreturn]] void fail(const std::string& what) const {
        std::u16string near = std::u16string(text_.substr(token_.position, 30));
        for (char16_t& c : near) {
            if (c == u'\r' || c == u'\n')
                c = u' ';
        }
        throw Error("SQL statement not understood at character " +
                    std::to_string(token_.position + 1) +
                    (token_.kind == Token::Kind::End ? std::string(", at its end")
                                                     : " ('" + jet::toUtf8(near) + "')") +
                    ": " + what + "; statement: " + jet::toUtf8(text_));
    }

    // Tokens.

    void advance() {
        while (pos_ < text_.size() && isBlank(text_[pos_]))
            ++pos_;
        token_ = Token{};
        token_.position = pos_;
        if (pos_ >= text_.size()) {
            token_.kind = Token::Kind::End;
            return;
        }
        char16_t c = text_[pos_];
        if (isDigit(c) || (c == u'.' && pos_ + 1 < text_.size() && isDigit(text_[pos_ + 1]))) {
            number();
        } else if (isNameChar(c)) {
            std::size_t start = pos_;
            while (pos_ < text_.size() && isNameChar(text_[pos_]))
                ++pos_;
            token_.kind = Token::Kind::Word;
            token_.text = std::u16string(text_.substr(start, pos_ - start));
        } else if (c == u'[' || c == u'`') {
            // [name] and `name` (as the ODBC drivers write names) hold any character.
            const char16_t closing = c == u'[' ? u']' : u'`';
            std::size_t close = text_.find(closing, pos_ + 1);
            if (close == std::u16string_view::npos)
                fail(c == u'[' ? "a name in [ ] is not closed" : "a name in ` ` is not closed");
            token_.kind = Token::Kind::Word;
            token_.bracketed = true;
            token_.text = std::u16string(text_.substr(pos_ + 1, close - pos_ - 1));
            pos_ = close + 1;
        } else if (c == u'\'' || c == u'"') {
            quoted(c);
        } else if (c == u'#') {
            date();
        } else {
            token_.kind = Token::Kind::Symbol;
            std::u16string_view two = text_.substr(pos_, 2);
            if (two == u"<=" || two == u">=" || two == u"<>" || two == u"!=") {
                token_.text = two == u"!=" ? u"<>" : std::u16string(two);
                pos_ += 2;
            } else if (std::u16string_view(u"=<>(),.*;-+").find(c) != std::u16string_view::npos) {
                token_.text = std::u16string(1, c);
                ++pos_;
            } else {
                fail("unexpected character");
            }
        }
    }

    void number() {
        std::size_t start = pos_;
        bool integral = true;
        while (pos_ < text_.size() && isDigit(text_[pos_]))
            ++pos_;
        if (pos_ < text_.size() && text_[pos_] == u'.') {
            integral = false;
            ++pos_;
            while (pos_ < text_.size() && isDigit(text_[pos_]))
                ++pos_;
        }
        if (pos_ < text_.size() && (text_[pos_] == u'e' || text_[pos_] == u'E')) {
            std::size_t mark = pos_ + 1;
            if (mark < text_.size() && (text_[mark] == u'+' || text_[mark] == u'-'))
                ++mark;
            if (mark < text_.size() && isDigit(text_[mark])) {
                integral = false;
                pos_ = mark;
                while (pos_ < text_.size() && isDigit(text_[pos_]))
                    ++pos_;
            }
        }
        if (pos_ < text_.size() && isNameChar(text_[pos_]))
            fail("a number runs into a name");
        double d = 0;
        try {
            d = std::stod(jet::toUtf8(text_.substr(start, pos_ - start)));
        } catch (const std::exception&) {
            fail("a number out of range");
        }
        token_.kind = Token::Kind::Number;
        if (integral && d <= 2147483647.0) {
            token_.value = jet::Value::integer(static_cast<std::int32_t>(d));
        } else {
            token_.value = jet::Value::real(d);
        }
    }

    void quoted(char16_t quote) {
        std::u16string value;
        ++pos_;
        for (;;) {
            if (pos_ >= text_.size())
                fail("a text in quotes is not closed");
            if (text_[pos_] == quote) {
                if (pos_ + 1 < text_.size() && text_[pos_ + 1] == quote) {
                    value += quote;
                    pos_ += 2;
                    continue;
                }
                ++pos_;
                break;
            }
            value += text_[pos_++];
        }
        token_.kind = Token::Kind::Text;
        token_.text = std::move(value);
    }

    // #month/day/year [hour:minute[:second] [AM|PM]]#, month first as Jet reads it.
    void date() {
        std::size_t close = text_.find(u'#', pos_ + 1);
        if (close == std::u16string_view::npos)
            fail("a date between # is not closed");
        std::u16string_view body = text_.substr(pos_ + 1, close - pos_ - 1);
        std::size_t at = 0;
        auto skipBlanks = [&] {
            while (at < body.size() && isBlank(body[at]))
                ++at;
        };
        auto readInt = [&](int maxDigits) {
            int value = 0, digits = 0;
            while (at < body.size() && isDigit(body[at]) && digits < maxDigits) {
                value = value * 10 + (body[at++] - u'0');
                ++digits;
            }
            if (digits == 0)
                fail("a date between # is not month/day/year");
            return value;
        };
        auto expect = [&](char16_t c) {
            if (at >= body.size() || body[at] != c)
                fail("a date between # is not month/day/year");
            ++at;
        };
        jet::CivilDateTime civil;
        skipBlanks();
        civil.month = readInt(2);
        expect(u'/');
        civil.day = readInt(2);
        expect(u'/');
        std::size_t yearStart = at;
        civil.year = readInt(4);
        if (at - yearStart <= 2)
            civil.year += civil.year < 30 ? 2000 : 1900;
        civil.hour = civil.minute = civil.second = 0;
        skipBlanks();
        if (at < body.size() && isDigit(body[at])) {
            civil.hour = readInt(2);
            expect(u':');
            civil.minute = readInt(2);
            if (at < body.size() && body[at] == u':') {
                ++at;
                civil.second = readInt(2);
            }
            skipBlanks();
            std::u16string_view rest = body.substr(at);
            if (sameName(rest, u"PM") || sameName(rest, u"AM")) {
                if (civil.hour < 1 || civil.hour > 12)
                    fail("an hour with AM/PM is not 1 to 12");
                civil.hour = civil.hour % 12 + (sameName(rest, u"PM") ? 12 : 0);
                at = body.size();
            }
        }
        skipBlanks();
        static const int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        bool leap = (civil.year % 4 == 0 && civil.year % 100 != 0) || civil.year % 400 == 0;
        if (at != body.size() || civil.month < 1 || civil.month > 12 || civil.day < 1 ||
            civil.day > kDays[civil.month - 1] || (civil.month == 2 && civil.day == 29 && !leap) ||
            civil.year < 100 || civil.hour > 23 || civil.minute > 59 || civil.second > 59) {
            fail("not a valid date between #");
        }
        token_.kind = Token::Kind::Date;
        token_.value = jet::Value::date(jet::Date::fromCivil(civil));
        pos_ = close + 1;
    }

    // Grammar.

    bool isKeyword(std::u16string_view keyword) const {
        return token_.kind == Token::Kind::Word && !token_.bracketed &&
               sameName(token_.text, keyword);
    }
    bool acceptKeyword(std::u16string_view keyword) {
        if (!isKeyword(keyword))
            return false;
        advance();
        return true;
    }
    void expectKeyword(std::u16string_view keyword) {
        if (!acceptKeyword(keyword))
            fail("expected " + jet::toUtf8(keyword));
    }
    bool isSymbol(std::u16string_view symbol) const {
        return token_.kind == Token::Kind::Symbol && token_.text == symbol;
    }
    bool acceptSymbol(std::u16string_view symbol) {
        if (!isSymbol(symbol))
            return false;
        advance();
        return true;
    }
    void expectSymbol(std::u16string_view symbol) {
        if (!acceptSymbol(symbol))
            fail("expected '" + jet::toUtf8(symbol) + "'");
    }

    // Words that end a clause, never names.
    bool isReserved() const {
        for (std::u16string_view word :
             {u"SELECT", u"FROM", u"WHERE", u"GROUP", u"HAVING", u"ORDER", u"BY", u"AND", u"OR",
              u"NOT", u"LIKE", u"IS", u"NULL", u"AS", u"DISTINCT", u"ASC", u"DESC", u"DELETE"}) {
            if (isKeyword(word))
                return true;
        }
        return false;
    }

    std::u16string name(const char* what) {
        if (token_.kind != Token::Kind::Word || isReserved())
            fail(std::string("expected ") + what);
        std::u16string result = token_.text;
        advance();
        return result;
    }

    ColumnName columnName() {
        ColumnName column;
        column.name = name("a column name");
        if (acceptSymbol(u".")) {
            column.table = std::move(column.name);
            column.name = name("a column name after the '.'");
        }
        return column;
    }

    std::optional<Aggregate> aggregateWord() const {
        if (token_.kind != Token::Kind::Word || token_.bracketed)
            return std::nullopt;
        if (sameName(token_.text, u"Count"))
            return Aggregate::Count;
        if (sameName(token_.text, u"Sum"))
            return Aggregate::Sum;
        if (sameName(token_.text, u"Min"))
            return Aggregate::Min;
        if (sameName(token_.text, u"Max"))
            return Aggregate::Max;
        if (sameName(token_.text, u"Avg"))
            return Aggregate::Avg;
        return std::nullopt;
    }

    // A column, or an aggregate when a name of one is followed by '('.
    Expression columnOrAggregate() {
        Expression e;
        std::optional<Aggregate> aggregate = aggregateWord();
        std::size_t next = text_.find_first_not_of(u" \t\r\n", pos_);
        if (aggregate && next != std::u16string_view::npos && text_[next] == u'(') {
            advance();
            expectSymbol(u"(");
            e.kind = Expression::Kind::Aggregate;
            e.aggregate = *aggregate;
            if (acceptSymbol(u"*")) {
                if (*aggregate != Aggregate::Count)
                    fail("only Count takes *");
                e.star = true;
            } else {
                e.column = columnName();
            }
            expectSymbol(u")");
            return e;
        }
        e.kind = Expression::Kind::Column;
        e.column = columnName();
        return e;
    }

    SelectStatement select() {
        SelectStatement s;
        advance();
        if (acceptKeyword(u"DISTINCT")) {
            s.distinct = true;
        } else {
            acceptKeyword(u"ALL");
        }
        if (acceptSymbol(u"*")) {
            SelectItem item;
            item.star = true;
            s.items.push_back(std::move(item));
        } else {
            do {
                SelectItem item;
                item.value = columnOrAggregate();
                if (acceptKeyword(u"AS")) {
                    item.alias = name("a name after AS");
                } else if (token_.kind == Token::Kind::Word && !isReserved()) {
                    item.alias = name("a name");
                }
                s.items.push_back(std::move(item));
            } while (acceptSymbol(u","));
        }
        expectKeyword(u"FROM");
        s.table = name("a table name after FROM");
        if (acceptKeyword(u"WHERE"))
            s.where = condition();
        if (acceptKeyword(u"GROUP")) {
            expectKeyword(u"BY");
            do {
                s.groupBy.push_back(columnName());
            } while (acceptSymbol(u","));
        }
        if (acceptKeyword(u"HAVING"))
            s.having = condition();
        if (acceptKeyword(u"ORDER")) {
            expectKeyword(u"BY");
            do {
                OrderItem item;
                item.column = columnName();
                if (acceptKeyword(u"DESC")) {
                    item.descending = true;
                } else {
                    acceptKeyword(u"ASC");
                }
                s.orderBy.push_back(std::move(item));
            } while (acceptSymbol(u","));
        }
        return s;
    }

    DeleteStatement remove() {
        DeleteStatement s;
        advance();
        acceptSymbol(u"*");
        expectKeyword(u"FROM");
        s.table = name("a table name after FROM");
        if (acceptKeyword(u"WHERE"))
            s.where = condition();
        return s;
    }

    Expression condition() {
        Expression left = conjunction();
        while (acceptKeyword(u"OR")) {
            Expression e;
            e.kind = Expression::Kind::Or;
            e.operands.push_back(std::move(left));
            e.operands.push_back(conjunction());
            left = std::move(e);
        }
        return left;
    }

    Expression conjunction() {
        Expression left = negation();
        while (acceptKeyword(u"AND")) {
            Expression e;
            e.kind = Expression::Kind::And;
            e.operands.push_back(std::move(left));
            e.operands.push_back(negation());
            left = std::move(e);
        }
        return left;
    }

    Expression negation() {
        if (acceptKeyword(u"NOT")) {
            Expression e;
            e.kind = Expression::Kind::Not;
            e.operands.push_back(negation());
            return e;
        }
        if (acceptSymbol(u"(")) {
            Expression inner = condition();
            expectSymbol(u")");
            return inner;
        }
        return predicate();
    }

    Expression operand() {
        Expression e;
        bool minus = false;
        if (isSymbol(u"-") || isSymbol(u"+")) {
            minus = token_.text == u"-";
            advance();
            if (token_.kind != Token::Kind::Number)
                fail("expected a number after the sign");
        }
        switch (token_.kind) {
            case Token::Kind::Number:
                e.literal = token_.value;
                if (minus) {
                    e.literal = e.literal.kind() == jet::Value::Kind::Integer
                                    ? jet::Value::integer(-e.literal.asInteger())
                                    : jet::Value::real(-e.literal.asDouble());
                }
                advance();
                return e;
            case Token::Kind::Date:
                e.literal = token_.value;
                advance();
                return e;
            case Token::Kind::Text:
                e.literal = jet::Value::text(token_.text);
                advance();
                return e;
            case Token::Kind::Word:
                if (acceptKeyword(u"NULL"))
                    return e;
                if (acceptKeyword(u"TRUE")) {
                    e.literal = jet::Value::boolean(true);
                    return e;
                }
                if (acceptKeyword(u"FALSE")) {
                    e.literal = jet::Value::boolean(false);
                    return e;
                }
                return columnOrAggregate();
            default:
                fail("expected a column, a number, a text in quotes or a date");
        }
    }

    Expression predicate() {
        Expression left = operand();
        Expression e;
        e.operands.push_back(std::move(left));
        if (acceptKeyword(u"IS")) {
            e.kind = Expression::Kind::IsNull;
            e.negated = acceptKeyword(u"NOT");
            expectKeyword(u"NULL");
            return e;
        }
        if (acceptKeyword(u"NOT")) {
            e.negated = true;
            if (!isKeyword(u"LIKE"))
                fail("expected LIKE after NOT");
        }
        if (acceptKeyword(u"LIKE")) {
            e.kind = Expression::Kind::Like;
            e.operands.push_back(operand());
            return e;
        }
        e.kind = Expression::Kind::Compare;
        if (acceptSymbol(u"=")) {
            e.comparison = Comparison::Equal;
        } else if (acceptSymbol(u"<>")) {
            e.comparison = Comparison::NotEqual;
        } else if (acceptSymbol(u"<=")) {
            e.comparison = Comparison::LessOrEqual;
        } else if (acceptSymbol(u">=")) {
            e.comparison = Comparison::GreaterOrEqual;
        } else if (acceptSymbol(u"<")) {
            e.comparison = Comparison::Less;
        } else if (acceptSymbol(u">")) {
            e.comparison = Comparison::Greater;
        } else {
            fail("expected a comparison (=, <>, <, >, <=, >=, LIKE or IS NULL)");
        }
        e.operands.push_back(operand());
        return e;
    }

    std::u16string_view text_;
    std::size_t pos_ = 0;  // the character after token_
    Token token_;
};

}  // namespace

Statement parse(std::u16string_view text) {
    return Parser(text).statement();
}

}  // namespace sql
