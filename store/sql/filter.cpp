#include "filter.h"

#include <cmath>
#include <cstdlib>
#include <string>

#include "characters.h"
#include "collation.h"
#include "statement.h"
#include "store/jet/text.h"

namespace sql {
namespace {

char16_t asciiLower(char16_t c) {
    return c >= u'A' && c <= u'Z' ? c - u'A' + u'a' : c;
}

class Parser {
public:
    Parser(std::u16string_view text, std::vector<Filter::Term>& terms)
        : text_(text), terms_(terms) {}

    Filter::Node parseAll() {
        Filter::Node node = parseOr();
        skipBlanks();
        if (pos_ < text_.size()) {
            fail("expected \"and\" or \"or\"");
        }
        return node;
    }

    bool atEnd() {
        skipBlanks();
        return pos_ >= text_.size();
    }

private:
    Filter::Node parseOr() {
        Filter::Node first = parseAnd();
        if (!atWord(u"or")) {
            return first;
        }
        Filter::Node node;
        node.kind = Filter::Node::Kind::Or;
        node.operands.push_back(std::move(first));
        while (takeWord(u"or")) {
            node.operands.push_back(parseAnd());
        }
        return node;
    }

    Filter::Node parseAnd() {
        Filter::Node first = parsePrimary();
        if (!atWord(u"and")) {
            return first;
        }
        Filter::Node node;
        node.kind = Filter::Node::Kind::And;
        node.operands.push_back(std::move(first));
        while (takeWord(u"and")) {
            node.operands.push_back(parsePrimary());
        }
        return node;
    }

    Filter::Node parsePrimary() {
        skipBlanks();
        if (pos_ < text_.size() && text_[pos_] == u'(') {
            ++pos_;
            Filter::Node node = parseOr();
            skipBlanks();
            if (pos_ >= text_.size() || text_[pos_] != u')') {
                fail("expected \")\"");
            }
            ++pos_;
            return node;
        }
        Filter::Term term;
        term.column = parseColumn();
        term.op = parseOperator();
        term.value = parseValue();
        if (term.op == Filter::Operator::Like && term.value.kind == Filter::Literal::Kind::Text) {
            splitPattern(term);
        } else if (term.op == Filter::Operator::Like &&
                   term.value.kind == Filter::Literal::Kind::Date) {
            fail("like needs a text or a number, not a date");
        }
        Filter::Node node;
        node.kind = Filter::Node::Kind::Term;
        node.term = terms_.size();
        terms_.push_back(std::move(term));
        return node;
    }

    std::u16string parseColumn() {
        skipBlanks();
        std::size_t start = pos_;
        if (pos_ < text_.size() && text_[pos_] == u'[') {
            std::size_t close = text_.find(u']', pos_ + 1);
            if (close == std::u16string_view::npos || close == pos_ + 1) {
                fail("a column name in brackets is not closed");
            }
            pos_ = close + 1;
            return std::u16string(text_.substr(start + 1, close - start - 1));
        }
        while (pos_ < text_.size() && isNameChar(text_[pos_])) {
            ++pos_;
        }
        if (pos_ == start) {
            fail("expected a column name");
        }
        return std::u16string(text_.substr(start, pos_ - start));
    }

    Filter::Operator parseOperator() {
        skipBlanks();
        auto next = [&](std::size_t k) {
            return pos_ + k < text_.size() ? text_[pos_ + k] : char16_t{0};
        };
        using Op = Filter::Operator;
        if (next(0) == u'<' && next(1) == u'=') {
            pos_ += 2;
            return Op::LessOrEqual;
        }
        if (next(0) == u'>' && next(1) == u'=') {
            pos_ += 2;
            return Op::GreaterOrEqual;
        }
        if (next(0) == u'<' && next(1) == u'>') {
            pos_ += 2;
            return Op::NotEqual;
        }
        char16_t c = next(0);
        if (c == u'=' || c == u'<' || c == u'>') {
            ++pos_;
            return c == u'=' ? Op::Equal : c == u'<' ? Op::Less : Op::Greater;
        }
        if (takeWord(u"like")) {
            return Op::Like;
        }
        fail("expected an operator (=, <, >, <=, >=, <>, like)");
    }

    Filter::Literal parseValue() {
        skipBlanks();
        Filter::Literal value;
        if (pos_ >= text_.size()) {
            fail("expected a value");
        }
        char16_t c = text_[pos_];
        if (c == u'\'') {
            value.kind = Filter::Literal::Kind::Text;
            ++pos_;
            for (;;) {
                if (pos_ >= text_.size()) {
                    fail("a text in quotes is not closed");
                }
                if (text_[pos_] == u'\'') {
                    if (pos_ + 1 < text_.size() && text_[pos_ + 1] == u'\'') {
                        value.text.push_back(u'\'');
                        pos_ += 2;
                        continue;
                    }
                    ++pos_;
                    break;
                }
                value.text.push_back(text_[pos_++]);
            }
        } else if (c == u'#') {
            std::size_t close = text_.find(u'#', pos_ + 1);
            if (close == std::u16string_view::npos) {
                fail("a date between # is not closed");
            }
            value.kind = Filter::Literal::Kind::Date;
            value.text = std::u16string(text_.substr(pos_ + 1, close - pos_ - 1));
            value.number = parseDate(value.text);
            pos_ = close + 1;
        } else if (isDigit(c) || c == u'-' || c == u'+' || c == u'.') {
            value.kind = Filter::Literal::Kind::Number;
            value.text = parseNumberText();
            std::string ascii(value.text.begin(), value.text.end());
            value.number = std::strtod(ascii.c_str(), nullptr);
        } else {
            fail("expected a value: a text in quotes, a number or a date between #");
        }
        // A value ends at a blank, a parenthesis or the end; anything glued
        // to it (the rest of a text broken by a quote) is not understood.
        if (pos_ < text_.size() && !isBlank(text_[pos_]) && text_[pos_] != u')') {
            fail("unexpected text after the value");
        }
        return value;
    }

    std::u16string parseNumberText() {
        std::size_t start = pos_;
        if (text_[pos_] == u'-' || text_[pos_] == u'+') {
            ++pos_;
        }
        std::size_t digits = 0;
        while (pos_ < text_.size() && isDigit(text_[pos_])) {
            ++pos_;
            ++digits;
        }
        if (pos_ < text_.size() && text_[pos_] == u'.') {
            ++pos_;
            while (pos_ < text_.size() && isDigit(text_[pos_])) {
                ++pos_;
                ++digits;
            }
        }
        if (digits == 0) {
            fail("expected a number");
        }
        if (pos_ < text_.size() && (text_[pos_] == u'e' || text_[pos_] == u'E')) {
            std::size_t mark = pos_++;
            if (pos_ < text_.size() && (text_[pos_] == u'-' || text_[pos_] == u'+')) {
                ++pos_;
            }
            std::size_t exponentDigits = 0;
            while (pos_ < text_.size() && isDigit(text_[pos_])) {
                ++pos_;
                ++exponentDigits;
            }
            if (exponentDigits == 0) {
                pos_ = mark;
            }
        }
        return std::u16string(text_.substr(start, pos_ - start));
    }

    // Reads "month/day/year" or "year-month-day", each with an optional
    // time "h:mm" or "h:mm:ss" after a blank; gives the day number.
    double parseDate(std::u16string_view text) {
        std::size_t i = 0;
        auto number = [&](int maxDigits) {
            int n = 0;
            int count = 0;
            while (i < text.size() && isDigit(text[i]) && count < maxDigits) {
                n = n * 10 + (text[i] - u'0');
                ++i;
                ++count;
            }
            if (count == 0) {
                fail("a date is not month/day/year");
            }
            return n;
        };
        auto expect = [&](char16_t c) {
            if (i >= text.size() || text[i] != c) {
                fail("a date is not month/day/year");
            }
            ++i;
        };
        while (i < text.size() && isBlank(text[i])) {
            ++i;
        }
        jet::CivilDateTime civil;
        int first = number(4);
        if (i < text.size() && text[i] == u'-') {
            civil.year = first;
            expect(u'-');
            civil.month = number(2);
            expect(u'-');
            civil.day = number(2);
        } else {
            civil.month = first;
            expect(u'/');
            civil.day = number(2);
            expect(u'/');
            civil.year = number(4);
        }
        if (i < text.size() && isBlank(text[i])) {
            while (i < text.size() && isBlank(text[i])) {
                ++i;
            }
            if (i < text.size()) {
                civil.hour = number(2);
                expect(u':');
                civil.minute = number(2);
                if (i < text.size() && text[i] == u':') {
                    ++i;
                    civil.second = number(2);
                }
                while (i < text.size() && isBlank(text[i])) {
                    ++i;
                }
            }
        }
        if (i != text.size() || civil.month < 1 || civil.month > 12 || civil.day < 1 ||
            civil.day > daysInMonth(civil.year, civil.month) || civil.hour > 23 ||
            civil.minute > 59 || civil.second > 59 || civil.year < 100) {
            fail("not a valid date between #");
        }
        return jet::Date::fromCivil(civil).oleDays;
    }

    static int daysInMonth(int year, int month) {
        static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        return month == 2 && leap ? 29 : kDays[month - 1];
    }

    // Takes the wildcards off a like pattern: at the end for a prefix, at
    // both ends for a match anywhere.
    void splitPattern(Filter::Term& term) {
        std::u16string& p = term.value.text;
        auto wild = [](char16_t c) { return c == u'%' || c == u'*'; };
        bool front = !p.empty() && wild(p.front());
        bool back = p.size() > (front ? 1u : 0u) && wild(p.back());
        if (front && !back && p.size() > 1) {
            fail("like allows a wildcard at the end, or at both ends, not at the front alone");
        }
        std::u16string core = p.substr(front ? 1 : 0);
        if (back) {
            core.pop_back();
        }
        for (char16_t c : core) {
            if (wild(c)) {
                fail("like allows wildcards only at the ends of the pattern");
            }
        }
        term.match = front  ? Filter::Match::Anywhere
                     : back ? Filter::Match::Prefix
                            : Filter::Match::Whole;
        p = std::move(core);
    }

    void skipBlanks() {
        while (pos_ < text_.size() && isBlank(text_[pos_])) {
            ++pos_;
        }
    }

    // True when the next token is `word` (any case), not the start of a longer name.
    bool atWord(std::u16string_view word) {
        skipBlanks();
        if (text_.size() - pos_ < word.size()) {
            return false;
        }
        for (std::size_t k = 0; k < word.size(); ++k) {
            if (asciiLower(text_[pos_ + k]) != word[k]) {
                return false;
            }
        }
        std::size_t end = pos_ + word.size();
        return end >= text_.size() || !isNameChar(text_[end]);
    }

    bool takeWord(std::u16string_view word) {
        if (!atWord(word)) {
            return false;
        }
        pos_ += word.size();
        return true;
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw Error("filter \"" + jet::toUtf8(text_) + "\": " + what + " at character " +
                    std::to_string(pos_ + 1));
    }

    std::u16string_view text_;
    std::vector<Filter::Term>& terms_;
    std::size_t pos_ = 0;  // next code unit to read
};

bool isTextType(jet::ColumnType type) {
    return type == jet::ColumnType::Text || type == jet::ColumnType::Memo;
}

bool isNumberType(jet::ColumnType type) {
    switch (type) {
        case jet::ColumnType::Boolean:
        case jet::ColumnType::Byte:
        case jet::ColumnType::Integer:
        case jet::ColumnType::LongInteger:
        case jet::ColumnType::Currency:
        case jet::ColumnType::Single:
        case jet::ColumnType::Double:
        case jet::ColumnType::Decimal:
            return true;
        default:
            return false;
    }
}

// The value of a number or date column as a double; false for other kinds.
bool toNumber(const jet::Value& value, double& out) {
    using K = jet::Value::Kind;
    switch (value.kind()) {
        case K::Boolean:
            out = value.asBoolean() ? -1.0 : 0.0;  // Jet's True is -1
            return true;
        case K::Integer:
            out = value.asInteger();
            return true;
        case K::Double:
            out = value.asDouble();
            return true;
        case K::Currency:
            out = static_cast<double>(value.asCurrency().tenThousandths) / 10000.0;
            return true;
        case K::Decimal:
            out = std::strtod(value.asDecimal().toString().c_str(), nullptr);
            return true;
        case K::Date:
            out = value.asDate().oleDays;
            return true;
        default:
            return false;
    }
}

bool holds(int order, Filter::Operator op) {
    switch (op) {
        case Filter::Operator::Equal:
        case Filter::Operator::Like:
            return order == 0;
        case Filter::Operator::NotEqual:
            return order != 0;
        case Filter::Operator::Less:
            return order < 0;
        case Filter::Operator::LessOrEqual:
            return order <= 0;
        case Filter::Operator::Greater:
            return order > 0;
        case Filter::Operator::GreaterOrEqual:
            return order >= 0;
    }
    return false;
}

bool containsText(std::u16string_view haystack, std::u16string_view needle) {
    if (needle.size() > haystack.size()) {
        return false;
    }
    for (std::size_t at = 0; at + needle.size() <= haystack.size(); ++at) {
        if (equalText(haystack.substr(at, needle.size()), needle)) {
            return true;
        }
    }
    return false;
}

}  // namespace

Filter parseFilter(std::u16string_view text) {
    Filter filter;
    Parser parser(text, filter.terms_);
    if (parser.atEnd()) {
        return filter;
    }
    filter.root_ = parser.parseAll();
    return filter;
}

Filter::Binding Filter::bind(const std::vector<std::u16string>& columnNames,
                             const std::vector<jet::ColumnType>& columnTypes) const {
    Binding binding;
    for (const Term& term : terms_) {
        std::size_t found = columnNames.size();
        for (std::size_t i = 0; i < columnNames.size(); ++i) {
            if (sameName(columnNames[i], term.column)) {
                found = i;
                break;
            }
        }
        if (found == columnNames.size() || found >= columnTypes.size()) {
            throw Error("filter: the record set has no column " + jet::toUtf8(term.column));
        }
        jet::ColumnType type = columnTypes[found];
        auto refuse = [&](const std::string& why) {
            throw Error("filter: column " + jet::toUtf8(term.column) + " (" +
                        jet::columnTypeName(type) + ") " + why);
        };
        bool asText = false;
        double number = term.value.number;
        if (isTextType(type)) {
            if (term.value.kind == Literal::Kind::Date) {
                refuse("is a text, not a date");
            }
            asText = true;
        } else if (isNumberType(type) || type == jet::ColumnType::DateTime) {
            if (term.value.kind == Literal::Kind::Text) {
                if (term.op == Operator::Like && term.match != Match::Whole) {
                    refuse("is not a text: like with a wildcard needs a text column");
                }
                std::string ascii;
                for (char16_t c : term.value.text) {
                    ascii.push_back(c < 0x80 ? static_cast<char>(c) : '?');
                }
                char* end = nullptr;
                number = std::strtod(ascii.c_str(), &end);
                while (end != nullptr && *end == ' ') {
                    ++end;
                }
                if (ascii.empty() || end == nullptr || *end != '\0') {
                    refuse("is a number: '" + jet::toUtf8(term.value.text) + "' is not a number");
                }
            } else if (term.value.kind == Literal::Kind::Date &&
                       type != jet::ColumnType::DateTime) {
                refuse("is a number, not a date");
            }
            if (type == jet::ColumnType::Single) {
                // Compare at the column's own precision: 1.1 stored as a
                // Single is not the double 1.1.
                number = static_cast<double>(static_cast<float>(number));
            }
        } else {
            refuse("cannot be compared in a filter");
        }
        binding.column.push_back(found);
        binding.asText.push_back(asText);
        binding.number.push_back(number);
    }
    return binding;
}

bool Filter::matches(const Binding& binding, const std::vector<jet::Value>& row) const {
    if (terms_.empty()) {
        return true;
    }
    return evaluate(root_, binding, row);
}

bool Filter::matches(const std::vector<std::u16string>& columnNames,
                     const std::vector<jet::ColumnType>& columnTypes,
                     const std::vector<jet::Value>& row) const {
    return matches(bind(columnNames, columnTypes), row);
}

bool Filter::evaluate(const Node& node, const Binding& binding,
                      const std::vector<jet::Value>& row) const {
    switch (node.kind) {
        case Node::Kind::Term:
            return termMatches(node.term, binding, row);
        case Node::Kind::And:
            for (const Node& operand : node.operands) {
                if (!evaluate(operand, binding, row)) {
                    return false;
                }
            }
            return true;
        case Node::Kind::Or:
            for (const Node& operand : node.operands) {
                if (evaluate(operand, binding, row)) {
                    return true;
                }
            }
            return false;
    }
    return false;
}

bool Filter::termMatches(std::size_t index, const Binding& binding,
                         const std::vector<jet::Value>& row) const {
    const Term& term = terms_[index];
    std::size_t column = binding.column[index];
    if (column >= row.size()) {
        return false;
    }
    const jet::Value& value = row[column];
    if (value.isNull()) {
        return false;
    }
    if (binding.asText[index]) {
        if (value.kind() != jet::Value::Kind::Text) {
            return false;
        }
        std::u16string_view have = value.asText();
        const std::u16string& want = term.value.text;
        if (term.op == Operator::Like && term.match == Match::Prefix) {
            return have.size() >= want.size() && equalText(have.substr(0, want.size()), want);
        }
        if (term.op == Operator::Like && term.match == Match::Anywhere) {
            return containsText(have, want);
        }
        if (term.op == Operator::Equal || term.op == Operator::NotEqual ||
            term.op == Operator::Like) {
            return equalText(have, want) == (term.op != Operator::NotEqual);
        }
        return holds(compareText(have, want), term.op);
    }
    double have = 0.0;
    if (!toNumber(value, have)) {
        return false;
    }
    double want = binding.number[index];
    int order = have < want ? -1 : have > want ? 1 : 0;
    return holds(order, term.op);
}

}  // namespace sql
