#include "executor.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "collation.h"
#include "parser.h"
#include "store/jet/index_key.h"
#include "store/jet/index_page.h"
#include "store/jet/os_file.h"
#include "store/jet/text.h"
#include "store/jet/usage_map.h"

namespace sql {
namespace {

using jet::Value;
using Row = std::vector<Value>;

// More rows than a data page of 4096 bytes can hold, for bounding what a
// table definition claims.
constexpr std::size_t kMaxRowsPerPage = 1024;

std::string utf8(std::u16string_view text) {
    return jet::toUtf8(text);
}

// The outcome of a condition: a comparison with Null is Unknown, never true.
enum class Truth { False, True, Unknown };

Truth negate(Truth t) {
    return t == Truth::Unknown ? t : (t == Truth::True ? Truth::False : Truth::True);
}

bool isNumeric(Value::Kind kind) {
    using K = Value::Kind;
    return kind == K::Boolean || kind == K::Integer || kind == K::Double || kind == K::Currency ||
           kind == K::Decimal || kind == K::Date;
}

// A date compares as its number with numbers.
Value asNumber(const Value& v) {
    return v.kind() == Value::Kind::Date ? Value::real(v.asDate().oleDays) : v;
}

// -1, 0, 1 for two values of comparable kinds. Throws Error for a text
// against a number or date, as Jet refuses to compare them.
int compareForCondition(const Value& a, const Value& b, bool& equalOnly) {
    Value::Kind ka = a.kind(), kb = b.kind();
    if (ka == Value::Kind::Text && kb == Value::Kind::Text) {
        if (equalOnly)
            return equalText(a.asText(), b.asText()) ? 0 : 1;
        return compareText(a.asText(), b.asText());
    }
    equalOnly = false;
    if (isNumeric(ka) && isNumeric(kb)) {
        if (ka == kb)
            return compareValues(a, b);
        return compareValues(asNumber(a), asNumber(b));
    }
    if (ka == kb)
        return compareValues(a, b);
    throw Error("data type mismatch in a condition: a text compared with a number or date");
}

// LIKE as Jet's OLE DB provider reads it: % or * any run of characters, _
// or ? one character, # one digit, [abc], [a-z] and [!abc] one character
// of a set; letters compare by equalText.
class LikePattern {
public:
    explicit LikePattern(std::u16string_view pattern) : pattern_(pattern) {}

    bool matches(std::u16string_view text) const { return match(0, text, 0); }

private:
    bool same(char16_t a, char16_t b) const {
        return equalText(std::u16string_view(&a, 1), std::u16string_view(&b, 1));
    }

    // Whether the set starting at pattern_[p] ('[') holds c; `end` receives
    // the index after its ']'.
    bool inSet(std::size_t p, char16_t c, std::size_t& end) const {
        std::size_t close = pattern_.find(u']', p + 1);
        if (close == std::u16string_view::npos) {
            throw Error("a [ in a LIKE pattern is not closed: " + utf8(pattern_));
        }
        end = close + 1;
        std::size_t i = p + 1;
        bool negated = i < close && pattern_[i] == u'!';
        if (negated)
            ++i;
        bool found = false;
        for (; i < close; ++i) {
            if (i + 2 < close && pattern_[i + 1] == u'-') {
                if (compareText(std::u16string_view(&c, 1), pattern_.substr(i, 1)) >= 0 &&
                    compareText(std::u16string_view(&c, 1), pattern_.substr(i + 2, 1)) <= 0) {
                    found = true;
                }
                i += 2;
            } else if (same(pattern_[i], c)) {
                found = true;
            }
        }
        return found != negated;
    }

    bool match(std::size_t p, std::u16string_view text, std::size_t t) const {
        while (p < pattern_.size()) {
            char16_t c = pattern_[p];
            if (c == u'%' || c == u'*') {
                for (std::size_t k = t; k <= text.size(); ++k) {
                    if (match(p + 1, text, k))
                        return true;
                }
                return false;
            }
            if (t >= text.size())
                return false;
            if (c == u'_' || c == u'?') {
                ++p;
            } else if (c == u'#') {
                if (text[t] < u'0' || text[t] > u'9')
                    return false;
                ++p;
            } else if (c == u'[') {
                std::size_t end = 0;
                if (!inSet(p, text[t], end))
                    return false;
                p = end;
            } else {
                if (!same(c, text[t]))
                    return false;
                ++p;
            }
            ++t;
        }
        return t == text.size();
    }

    std::u16string_view pattern_;
};

std::u16string textOf(const Value& v) {
    switch (v.kind()) {
        case Value::Kind::Text:
            return v.asText();
        case Value::Kind::Integer:
            return jet::fromUtf8(std::to_string(v.asInteger()));
        default:
            throw Error("LIKE compares texts only");
    }
}

// Running value of one aggregate over a group.
struct Accumulator {
    std::int64_t count = 0;  // values that are not Null (rows, for Count(*))
    double sum = 0;
    bool allIntegers = true;
    Value extreme;  // Min or Max so far
};

// A group of rows: the first row's values of the grouped columns, and the
// aggregates.
struct Group {
    Row first;
    std::vector<Accumulator> accumulators;
};

// An expression with its names resolved against the table.
struct Node {
    Expression::Kind kind = Expression::Kind::Literal;
    int column = -1;     // Column, Aggregate: index in the table's columns (-1 for *)
    int aggregate = -1;  // Aggregate: index into Group::accumulators
    Aggregate function = Aggregate::Count;
    Value literal;
    Comparison comparison = Comparison::Equal;
    bool negated = false;
    std::vector<Node> operands;
};

class Query {
public:
    Query(const jet::Database& database, const jet::TableDefinition& table)
        : database_(database), table_(table) {}

    int column(const ColumnName& name) const {
        if (!name.table.empty() && !sameName(name.table, table_.name)) {
            throw Error("the statement names table " + utf8(name.table) + " in " +
                        utf8(name.table) + "." + utf8(name.name) + ", but reads table " +
                        utf8(table_.name));
        }
        for (std::size_t i = 0; i < table_.columns.size(); ++i) {
            if (sameName(table_.columns[i].name, name.name))
                return static_cast<int>(i);
        }
        throw Error("table " + utf8(table_.name) + " has no column " + utf8(name.name));
    }

    // Resolves names; aggregates get a slot when `aggregates` allows them.
    Node resolve(const Expression& e, std::vector<Node>* aggregates) const {
        Node n;
        n.kind = e.kind;
        n.literal = e.literal;
        n.comparison = e.comparison;
        n.negated = e.negated;
        switch (e.kind) {
            case Expression::Kind::Column:
                n.column = column(e.column);
                break;
            case Expression::Kind::Aggregate:
                if (aggregates == nullptr) {
                    throw Error(
                        "an aggregate such as Count stands in a WHERE; it belongs in HAVING");
                }
                n.function = e.aggregate;
                n.column = e.star ? -1 : column(e.column);
                n.aggregate = static_cast<int>(aggregates->size());
                aggregates->push_back(n);
                break;
            default:
                break;
        }
        for (const Expression& operand : e.operands) {
            n.operands.push_back(resolve(operand, aggregates));
        }
        return n;
    }

    const jet::TableDefinition& table() const { return table_; }
    const jet::Database& database() const { return database_; }

private:
    const jet::Database& database_;
    const jet::TableDefinition& table_;
};

// Evaluates nodes on one row, or on a group (columns from its first row,
// aggregates from its accumulators).
struct Scope {
    const Row* row = nullptr;
    const Group* group = nullptr;
    const std::vector<Node>* aggregates = nullptr;
};

Value aggregateValue(const Node& aggregate, const Accumulator& a) {
    switch (aggregate.function) {
        case Aggregate::Count:
            return Value::integer(
                static_cast<std::int32_t>(std::min<std::int64_t>(a.count, INT32_MAX)));
        case Aggregate::Sum:
            if (a.count == 0)
                return Value();
            if (a.allIntegers && a.sum >= INT32_MIN && a.sum <= INT32_MAX) {
                return Value::integer(static_cast<std::int32_t>(a.sum));
            }
            return Value::real(a.sum);
        case Aggregate::Avg:
            return a.count == 0 ? Value() : Value::real(a.sum / static_cast<double>(a.count));
        case Aggregate::Min:
        case Aggregate::Max:
            return a.extreme;
    }
    return Value();
}

double numberForSum(const Value& v) {
    Value n = asNumber(v);
    switch (n.kind()) {
        case Value::Kind::Boolean:
            return n.asBoolean() ? -1 : 0;
        case Value::Kind::Integer:
            return n.asInteger();
        case Value::Kind::Double:
            return n.asDouble();
        case Value::Kind::Currency:
            return static_cast<double>(n.asCurrency().tenThousandths) / 1e4;
        default:
            throw Error("Sum and Avg add numbers only");
    }
}

void accumulate(const Node& aggregate, const Row& row, Accumulator& a) {
    if (aggregate.column < 0) {
        ++a.count;
        return;
    }
    const Value& v = row[aggregate.column];
    if (v.isNull())
        return;
    ++a.count;
    switch (aggregate.function) {
        case Aggregate::Count:
            break;
        case Aggregate::Sum:
        case Aggregate::Avg:
            a.sum += numberForSum(v);
            a.allIntegers = a.allIntegers && v.kind() == Value::Kind::Integer;
            break;
        case Aggregate::Min:
            if (a.extreme.isNull() || compareValues(v, a.extreme) < 0)
                a.extreme = v;
            break;
        case Aggregate::Max:
            if (a.extreme.isNull() || compareValues(v, a.extreme) > 0)
                a.extreme = v;
            break;
    }
}

const Value& valueOf(const Node& n, const Scope& scope, Value& scratch) {
    switch (n.kind) {
        case Expression::Kind::Column:
            return scope.group != nullptr ? scope.group->first[n.column] : (*scope.row)[n.column];
        case Expression::Kind::Aggregate:
            scratch = aggregateValue(n, scope.group->accumulators[n.aggregate]);
            return scratch;
        default:
            return n.literal;
    }
}

Truth evaluate(const Node& n, const Scope& scope) {
    switch (n.kind) {
        case Expression::Kind::And: {
            Truth a = evaluate(n.operands[0], scope);
            if (a == Truth::False)
                return a;
            Truth b = evaluate(n.operands[1], scope);
            if (b == Truth::False)
                return b;
            return a == Truth::True && b == Truth::True ? Truth::True : Truth::Unknown;
        }
        case Expression::Kind::Or: {
            Truth a = evaluate(n.operands[0], scope);
            if (a == Truth::True)
                return a;
            Truth b = evaluate(n.operands[1], scope);
            if (b == Truth::True)
                return b;
            return a == Truth::False && b == Truth::False ? Truth::False : Truth::Unknown;
        }
        case Expression::Kind::Not:
            return negate(evaluate(n.operands[0], scope));
        case Expression::Kind::IsNull: {
            Value scratch;
            bool null = valueOf(n.operands[0], scope, scratch).isNull();
            return null != n.negated ? Truth::True : Truth::False;
        }
        case Expression::Kind::Like: {
            Value s1, s2;
            const Value& text = valueOf(n.operands[0], scope, s1);
            const Value& pattern = valueOf(n.operands[1], scope, s2);
            if (text.isNull() || pattern.isNull())
                return Truth::Unknown;
            std::u16string p = textOf(pattern);
            bool match = LikePattern(p).matches(textOf(text));
            return match != n.negated ? Truth::True : Truth::False;
        }
        case Expression::Kind::Compare: {
            Value s1, s2;
            const Value& a = valueOf(n.operands[0], scope, s1);
            const Value& b = valueOf(n.operands[1], scope, s2);
            if (a.isNull() || b.isNull())
                return Truth::Unknown;
            bool equalOnly =
                n.comparison == Comparison::Equal || n.comparison == Comparison::NotEqual;
            int c = compareForCondition(a, b, equalOnly);
            bool result = false;
            switch (n.comparison) {
                case Comparison::Equal:
                    result = c == 0;
                    break;
                case Comparison::NotEqual:
                    result = c != 0;
                    break;
                case Comparison::Less:
                    result = c < 0;
                    break;
                case Comparison::LessOrEqual:
                    result = c <= 0;
                    break;
                case Comparison::Greater:
                    result = c > 0;
                    break;
                case Comparison::GreaterOrEqual:
                    result = c >= 0;
                    break;
            }
            return result ? Truth::True : Truth::False;
        }
        default: {
            // A bare value as a condition: true when a non-zero number.
            Value scratch;
            const Value& v = valueOf(n, scope, scratch);
            if (v.isNull())
                return Truth::Unknown;
            if (!isNumeric(v.kind()))
                throw Error("a condition is a text, not a comparison");
            return compareValues(asNumber(v), Value::integer(0)) != 0 ? Truth::True : Truth::False;
        }
    }
}

void conjuncts(Node node, std::vector<Node>& out) {
    if (node.kind == Expression::Kind::And) {
        conjuncts(std::move(node.operands[0]), out);
        conjuncts(std::move(node.operands[1]), out);
    } else {
        out.push_back(std::move(node));
    }
}

bool hasAggregate(const Node& n) {
    if (n.kind == Expression::Kind::Aggregate)
        return true;
    return std::any_of(n.operands.begin(), n.operands.end(), hasAggregate);
}

bool onlyColumns(const Node& n, const std::vector<int>& allowed) {
    if (n.kind == Expression::Kind::Column &&
        std::find(allowed.begin(), allowed.end(), n.column) == allowed.end()) {
        return false;
    }
    return std::all_of(n.operands.begin(), n.operands.end(),
                       [&](const Node& o) { return onlyColumns(o, allowed); });
}

// The literal as a value of the column's kind, for its index key; nullopt
// when it has none or its key might differ from what equalText finds.
std::optional<Value> keyValue(const jet::Column& column, const Value& literal) {
    using T = jet::ColumnType;
    Value::Kind kind = literal.kind();
    switch (column.type) {
        case T::Byte:
        case T::Integer:
        case T::LongInteger:
            if (kind == Value::Kind::Integer)
                return literal;
            return std::nullopt;
        case T::Double:
            if (kind == Value::Kind::Integer)
                return Value::real(literal.asInteger());
            if (kind == Value::Kind::Double)
                return literal;
            return std::nullopt;
        case T::DateTime:
            if (kind == Value::Kind::Date)
                return literal;
            return std::nullopt;
        case T::Text: {
            if (kind != Value::Kind::Text)
                return std::nullopt;
            // The index keys in Access's General order, where I is the
            // capital of i; equalText follows Turkish rules. They agree on
            // ASCII without i and I.
            for (char16_t c : literal.asText()) {
                if (c >= 0x80 || c == u'i' || c == u'I')
                    return std::nullopt;
            }
            return literal;
        }
        default:
            return std::nullopt;
    }
}

// The rows that an index gives for the first term of `where` that is an
// equality of an indexed column's leading column with a literal, in stored
// order; nullopt when there is none.
std::optional<std::vector<jet::RowId>> indexedRows(const jet::Database& database,
                                                   const jet::TableDefinition& table,
                                                   const std::vector<Node>& terms) {
    for (const Node& term : terms) {
        if (term.kind != Expression::Kind::Compare || term.comparison != Comparison::Equal) {
            continue;
        }
        const Node* columnNode = &term.operands[0];
        const Node* literalNode = &term.operands[1];
        if (columnNode->kind != Expression::Kind::Column)
            std::swap(columnNode, literalNode);
        if (columnNode->kind != Expression::Kind::Column ||
            literalNode->kind != Expression::Kind::Literal || literalNode->literal.isNull()) {
            continue;
        }
        const jet::Column& column = table.columns[columnNode->column];
        std::optional<Value> value = keyValue(column, literalNode->literal);
        if (!value)
            continue;
        for (const jet::RealIndex& index : table.realIndexes) {
            if (index.columns.empty() || index.columns[0].columnNumber != column.number)
                continue;
            jet::Bytes prefix;
            try {
                jet::checkKeyableColumn(column);
                jet::appendColumnKey(prefix, column, index.columns[0].ascending, *value);
            } catch (const jet::Error&) {
                continue;  // no key the engine can vouch for: scan instead
            }
            std::vector<jet::RowId> rows;
            for (const jet::IndexEntry& entry :
                 jet::findIndexEntries(database.pages(), index, prefix)) {
                rows.push_back(entry.row);
            }
            auto before = [](const jet::RowId& a, const jet::RowId& b) {
                return a.page != b.page ? a.page < b.page : a.row < b.row;
            };
            std::sort(rows.begin(), rows.end(), before);
            rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
            return rows;
        }
    }
    return std::nullopt;
}

// Marks the table columns that the node reads.
void markColumns(const Node& n, jet::ColumnSelection& columns) {
    if (n.column >= 0)
        columns[n.column] = true;
    for (const Node& operand : n.operands)
        markColumns(operand, columns);
}

// Calls `visit(rowId, values)` for each row of the table that `where` keeps,
// in stored order, through an index when a term allows it. The visitor may
// take the values away. Only the selected columns, and those `where` reads,
// are decoded; the others are Null. An empty selection decodes them all.
template <typename Visit>
void forEachRow(const jet::Database& database, const jet::TableDefinition& table,
                const std::optional<Node>& where, jet::ColumnSelection columns, Visit visit) {
    std::vector<Node> terms;
    if (where)
        conjuncts(*where, terms);
    if (!columns.empty() && where)
        markColumns(*where, columns);
    Row values;
    auto keep = [&] {
        Scope scope;
        scope.row = &values;
        return std::all_of(terms.begin(), terms.end(),
                           [&](const Node& t) { return evaluate(t, scope) == Truth::True; });
    };
    if (std::optional<std::vector<jet::RowId>> rows = indexedRows(database, table, terms)) {
        jet::RowReader reader(database.pages(), table);
        for (const jet::RowId& id : *rows) {
            // A row the index names but that is gone: deleted meanwhile.
            if (reader.read(id, values, columns) && keep())
                visit(id, values);
        }
        return;
    }
    jet::TableCursor cursor = database.scan(table);
    while (cursor.next()) {
        cursor.values(values, columns);
        if (keep())
            visit(cursor.rowId(), values);
    }
}

std::optional<Node> andOf(std::vector<Node> terms) {
    if (terms.empty())
        return std::nullopt;
    Node result = std::move(terms[0]);
    for (std::size_t i = 1; i < terms.size(); ++i) {
        Node both;
        both.kind = Expression::Kind::And;
        both.operands.push_back(std::move(result));
        both.operands.push_back(std::move(terms[i]));
        result = std::move(both);
    }
    return result;
}

std::u16string expressionName(int& counter) {
    return jet::fromUtf8("Expr" + std::to_string(1000 + counter++));
}

// Sorts the rows stably by keys[i], the sort values of row i (ascending,
// or descending where `descending` says so), row identities along.
void sortRows(QueryResult& result, std::vector<Row>& keys, const std::vector<bool>& descending) {
    std::vector<std::size_t> order(result.rows.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        for (std::size_t k = 0; k < descending.size(); ++k) {
            int c = compareValues(keys[a][k], keys[b][k]);
            if (c != 0)
                return descending[k] ? c > 0 : c < 0;
        }
        return false;
    });
    std::vector<Row> rows;
    std::vector<jet::RowId> ids;
    for (std::size_t i : order) {
        rows.push_back(std::move(result.rows[i]));
        if (!result.rowIds.empty())
            ids.push_back(result.rowIds[i]);
    }
    result.rows = std::move(rows);
    result.rowIds = std::move(ids);
}

bool sameRow(const Row& a, const Row& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (compareValues(a[i], b[i]) != 0)
            return false;
    }
    return true;
}

struct KeyLess {
    bool operator()(const Row& a, const Row& b) const {
        for (std::size_t i = 0; i < a.size(); ++i) {
            int c = compareValues(a[i], b[i]);
            if (c != 0)
                return c < 0;
        }
        return false;
    }
};

// Groups by the values of the grouped columns, in their order; texts that
// differ in case only fall into one group, as in Jet.
using GroupMap = std::map<Row, Group, KeyLess>;

GroupMap groupRows(const jet::Database& database, const jet::TableDefinition& table,
                   const std::optional<Node>& where, const std::vector<int>& groupColumns,
                   const std::vector<Node>& aggregates) {
    GroupMap groups;
    Row key;
    // Rows of one group tend to come close together (the meal log is written
    // day by day, meal by meal): the groups met last are tried first, by
    // plain equality of values, before the map and its collation.
    constexpr std::size_t kRecentGroups = 16;
    std::vector<GroupMap::iterator> recent;
    jet::ColumnSelection columns(table.columns.size(), false);
    for (int c : groupColumns)
        columns[c] = true;
    for (const Node& a : aggregates)
        markColumns(a, columns);
    forEachRow(database, table, where, columns, [&](jet::RowId, Row& values) {
        const auto holdsRow = [&](GroupMap::iterator group) {
            for (std::size_t i = 0; i < groupColumns.size(); ++i) {
                if (!(values[groupColumns[i]] == group->first[i]))
                    return false;
            }
            return true;
        };
        GroupMap::iterator group;
        if (auto hit = std::find_if(recent.begin(), recent.end(), holdsRow); hit != recent.end()) {
            group = *hit;
            std::rotate(recent.begin(), hit, hit + 1);
        } else {
            key.clear();
            for (int c : groupColumns)
                key.push_back(values[c]);
            group = groups.find(key);
            if (group == groups.end()) {
                Group g;
                g.first = values;
                g.accumulators.resize(aggregates.size());
                group = groups.emplace(key, std::move(g)).first;
            }
            if (std::find(recent.begin(), recent.end(), group) == recent.end()) {
                recent.insert(recent.begin(), group);
                if (recent.size() > kRecentGroups)
                    recent.pop_back();
            }
        }
        for (std::size_t a = 0; a < aggregates.size(); ++a) {
            accumulate(aggregates[a], values, group->second.accumulators[a]);
        }
    });
    return groups;
}

// What tells that a table is unchanged: a commit of a copy of this program
// raises the commit counter, and an insert or delete by any program changes
// the table's row count or the pages its maps mark. The file's size and time
// stamp would not do: a row that fits into a page leaves the size, and two
// writes within one tick of the clock leave the time.
struct TableStamp {
    std::uint64_t commits = 0;
    std::uint32_t rowCount = 0;
    std::vector<std::uint32_t> pages;           // the table's data pages
    std::vector<std::uint32_t> pagesWithSpace;  // those with free space
    friend bool operator==(const TableStamp&, const TableStamp&) = default;
};

// REQUIRES: `table` was read under the same hold for reading.
TableStamp stampOf(const jet::Database& database, const jet::TableDefinition& table) {
    return TableStamp{database.commitCount(), table.rowCount,
                      jet::readUsageMap(database.pages(), table.usageMap),
                      jet::readUsageMap(database.pages(), table.freeSpaceMap)};
}

std::string groupCacheKey(const jet::Database& database, const jet::TableDefinition& table,
                          const std::vector<int>& groupColumns,
                          const std::vector<Node>& aggregates) {
    std::string key =
        jet::os::utf8Text(std::filesystem::absolute(jet::os::utf8Path(database.path())));
    key += '\0' + std::to_string(table.page);
    for (int c : groupColumns)
        key += ' ' + std::to_string(c);
    key += " /";
    for (const Node& a : aggregates) {
        key += ' ' + std::to_string(static_cast<int>(a.function)) + ':' + std::to_string(a.column);
    }
    return key;
}

// Whole tables grouped, from the stamp of their table taken before the scan:
// a write during the scan changes the stamp, so the entry is never found.
class GroupCache {
public:
    void clear() {
        std::lock_guard<std::mutex> lock(mutex_);
        entries_.clear();
    }

    std::shared_ptr<const GroupMap> find(const std::string& key, const TableStamp& stamp) {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const Entry& entry : entries_) {
            if (entry.key == key && entry.stamp == stamp)
                return entry.groups;
        }
        return nullptr;
    }

    void put(const std::string& key, const TableStamp& stamp,
             std::shared_ptr<const GroupMap> groups) {
        if (groups->size() > kMaxGroups)
            return;
        std::lock_guard<std::mutex> lock(mutex_);
        std::erase_if(entries_, [&](const Entry& entry) { return entry.key == key; });
        entries_.push_front(Entry{key, stamp, std::move(groups)});
        if (entries_.size() > kMaxEntries)
            entries_.pop_back();
    }

private:
    static constexpr std::size_t kMaxEntries = 4;
    static constexpr std::size_t kMaxGroups = 50000;  // bounds the memory an entry holds

    struct Entry {
        std::string key;  // file, table, grouped columns and aggregates
        TableStamp stamp;
        std::shared_ptr<const GroupMap> groups;
    };
    std::mutex mutex_;
    std::deque<Entry> entries_;  // newest first
};

GroupCache& groupCache() {
    static GroupCache cache;
    return cache;
}

QueryResult runSelect(const jet::Database& database, const SelectStatement& s) {
    const jet::TableDefinition table = database.table(findTableName(database, s.table));
    Query query(database, table);
    QueryResult result;

    if (s.items.size() > 1 &&
        std::any_of(s.items.begin(), s.items.end(), [](const SelectItem& i) { return i.star; })) {
        throw Error("* must stand alone in the select list");
    }
    std::vector<Node> aggregates;
    std::vector<Node> items;  // Column or Aggregate, one per result column
    int unnamed = 0;
    for (const SelectItem& item : s.items) {
        if (item.star) {
            for (std::size_t i = 0; i < table.columns.size(); ++i) {
                Node n;
                n.kind = Expression::Kind::Column;
                n.column = static_cast<int>(i);
                items.push_back(n);
                result.columnNames.push_back(table.columns[i].name);
            }
            continue;
        }
        items.push_back(query.resolve(item.value, &aggregates));
        if (!item.alias.empty()) {
            result.columnNames.push_back(item.alias);
        } else if (items.back().kind == Expression::Kind::Column) {
            result.columnNames.push_back(table.columns[items.back().column].name);
        } else {
            result.columnNames.push_back(expressionName(unnamed));
        }
    }

    std::optional<Node> where;
    if (s.where)
        where = query.resolve(*s.where, nullptr);
    std::vector<int> groupColumns;
    for (const ColumnName& name : s.groupBy)
        groupColumns.push_back(query.column(name));
    std::optional<Node> having;
    if (s.having)
        having = query.resolve(*s.having, &aggregates);

    const bool grouped = !groupColumns.empty() || !aggregates.empty();
    if (having && !grouped)
        throw Error("HAVING without GROUP BY or an aggregate");

    std::vector<int> orderResultColumn;  // per ORDER BY item: result column, or -1
    std::vector<int> orderTableColumn;   // per ORDER BY item with -1: table column
    for (const OrderItem& order : s.orderBy) {
        int found = -1;
        if (order.column.table.empty()) {
            for (std::size_t i = 0; i < result.columnNames.size(); ++i) {
                if (sameName(result.columnNames[i], order.column.name)) {
                    found = static_cast<int>(i);
                    break;
                }
            }
        }
        int tableColumn = -1;
        if (found < 0) {
            tableColumn = query.column(order.column);
            for (std::size_t i = 0; i < items.size(); ++i) {
                if (items[i].kind == Expression::Kind::Column && items[i].column == tableColumn) {
                    found = static_cast<int>(i);
                    break;
                }
            }
        }
        if (found < 0 && (grouped || s.distinct)) {
            throw Error("ORDER BY " + utf8(order.column.name) +
                        " is not among the selected columns of a DISTINCT or grouped query");
        }
        orderResultColumn.push_back(found);
        orderTableColumn.push_back(tableColumn);
    }

    if (!grouped) {
        for (const Node& n : items) {
            if (n.kind != Expression::Kind::Column)
                throw Error("an aggregate needs GROUP BY");
        }
        // select*: the decoded rows are the result rows and are taken over.
        bool wholeRows = items.size() == table.columns.size();
        for (std::size_t i = 0; wholeRows && i < items.size(); ++i)
            wholeRows = items[i].column == static_cast<int>(i);
        if (!where) {
            // The count the table records, bounded for a damaged one.
            const std::size_t expected = std::min<std::size_t>(
                table.rowCount, std::size_t{database.pages().pageCount()} * kMaxRowsPerPage);
            result.rows.reserve(expected);
            result.rowIds.reserve(expected);
        }
        jet::ColumnSelection columns;  // all of them for select*
        if (!wholeRows) {
            columns.assign(table.columns.size(), false);
            for (const Node& n : items)
                columns[n.column] = true;
            for (int c : orderTableColumn) {
                if (c >= 0)
                    columns[c] = true;
            }
        }
        std::vector<Row> keys;
        forEachRow(database, table, where, columns, [&](jet::RowId id, Row& values) {
            if (!s.orderBy.empty()) {
                Row key;
                for (std::size_t k = 0; k < s.orderBy.size(); ++k) {
                    key.push_back(
                        values[orderResultColumn[k] >= 0 ? items[orderResultColumn[k]].column
                                                         : orderTableColumn[k]]);
                }
                keys.push_back(std::move(key));
            }
            Row out;
            if (wholeRows) {
                out = std::move(values);
            } else {
                out.reserve(items.size());
                for (const Node& n : items)
                    out.push_back(values[n.column]);
            }
            result.rows.push_back(std::move(out));
            result.rowIds.push_back(id);
        });
        if (s.distinct) {
            // Jet sorts to find duplicates: DISTINCT rows come in value order.
            std::vector<Row> all = result.rows;
            result.rowIds.clear();
            sortRows(result, all, std::vector<bool>(items.size(), false));
            std::vector<Row> unique;
            for (Row& row : result.rows) {
                if (unique.empty() || !sameRow(unique.back(), row))
                    unique.push_back(std::move(row));
            }
            result.rows = std::move(unique);
            keys.clear();
            for (const Row& row : result.rows) {
                Row key;
                for (int c : orderResultColumn)
                    key.push_back(row[c]);
                keys.push_back(std::move(key));
            }
        } else {
            result.baseTable = table.name;
            for (const Node& n : items)
                result.tableColumn.push_back(n.column);
        }
        if (!s.orderBy.empty()) {
            std::vector<bool> descending;
            for (const OrderItem& o : s.orderBy)
                descending.push_back(o.descending);
            sortRows(result, keys, descending);
        }
        return result;
    }

    for (const Node& n : items) {
        if (n.kind == Expression::Kind::Column &&
            std::find(groupColumns.begin(), groupColumns.end(), n.column) == groupColumns.end()) {
            throw Error("column " + utf8(table.columns[n.column].name) +
                        " is selected but neither grouped nor inside an aggregate");
        }
    }
    std::vector<Node> havingTerms;
    if (having)
        conjuncts(std::move(*having), havingTerms);
    for (const Node& term : havingTerms) {
        if (!onlyColumns(term, groupColumns) && !hasAggregate(term)) {
            throw Error("HAVING names a column that is neither grouped nor inside an aggregate");
        }
    }

    std::shared_ptr<const GroupMap> groups;
    std::vector<Node> kept;
    std::optional<TableStamp> stamp;
    if (!where)
        stamp = stampOf(database, table);
    if (stamp) {
        // The whole table grouped, kept for statements that differ in their
        // HAVING only, as the tally issues them day after day.
        const std::string key = groupCacheKey(database, table, groupColumns, aggregates);
        groups = groupCache().find(key, *stamp);
        if (!groups) {
            groups = std::make_shared<const GroupMap>(
                groupRows(database, table, std::nullopt, groupColumns, aggregates));
            groupCache().put(key, *stamp, groups);
        }
        kept = std::move(havingTerms);
    } else {
        // Terms of HAVING on grouped columns alone hold for every row of a
        // group or for none: they filter rows before grouping, where an
        // index can serve them.
        std::vector<Node> pushed;
        for (Node& term : havingTerms) {
            if (!hasAggregate(term)) {
                pushed.push_back(std::move(term));
            } else {
                kept.push_back(std::move(term));
            }
        }
        if (!pushed.empty()) {
            if (where)
                pushed.push_back(std::move(*where));
            where = andOf(std::move(pushed));
        }
        groups = std::make_shared<const GroupMap>(
            groupRows(database, table, where, groupColumns, aggregates));
    }
    // Aggregates without GROUP BY give one row, also over no rows.
    if (groupColumns.empty() && groups->empty()) {
        GroupMap one;
        Group g;
        g.first.resize(table.columns.size());
        g.accumulators.resize(aggregates.size());
        one.emplace(Row{}, std::move(g));
        groups = std::make_shared<const GroupMap>(std::move(one));
    }
    std::optional<Node> filter = andOf(std::move(kept));
    std::vector<Row> keys;
    for (const auto& [groupKey, group] : *groups) {
        Scope scope;
        scope.group = &group;
        if (filter && evaluate(*filter, scope) != Truth::True)
            continue;
        Row out;
        Value scratch;
        for (const Node& n : items)
            out.push_back(valueOf(n, scope, scratch));
        if (s.distinct && std::any_of(result.rows.begin(), result.rows.end(),
                                      [&](const Row& r) { return sameRow(r, out); })) {
            continue;
        }
        Row sortKey;
        for (int c : orderResultColumn)
            sortKey.push_back(out[c]);
        keys.push_back(std::move(sortKey));
        result.rows.push_back(std::move(out));
    }
    if (!s.orderBy.empty()) {
        std::vector<bool> descending;
        for (const OrderItem& o : s.orderBy)
            descending.push_back(o.descending);
        sortRows(result, keys, descending);
    }
    return result;
}

long runDelete(jet::Database& database, const DeleteStatement& s) {
    long deleted = 0;
    // The rows are found and deleted in one write: no other writer comes between.
    database.write([&](jet::WriteStatement&) {
        const std::u16string name = findTableName(database, s.table);
        const jet::TableDefinition table = database.table(name);
        Query query(database, table);
        std::optional<Node> where;
        if (s.where)
            where = query.resolve(*s.where, nullptr);
        std::vector<jet::RowId> rows;
        forEachRow(database, table, where, jet::ColumnSelection(table.columns.size(), false),
                   [&](jet::RowId id, Row&) { rows.push_back(id); });
        if (!rows.empty())
            database.deleteRows(name, rows);
        deleted = static_cast<long>(rows.size());
    });
    return deleted;
}

}  // namespace

void clearResultCache() {
    groupCache().clear();
}

std::u16string findTableName(const jet::Database& database, std::u16string_view name) {
    for (const std::u16string& table : database.userTableNames()) {
        if (sameName(table, name))
            return table;
    }
    throw Error("no table named " + utf8(name) + " in " + database.path());
}

ExecuteResult execute(jet::Database& database, const Statement& statement) {
    ExecuteResult result;
    if (const auto* select = std::get_if<SelectStatement>(&statement)) {
        // Whole statements of other writers only, from the first page read to the last.
        const jet::LockFile::Hold lock = database.holdForReading();
        result.isQuery = true;
        result.query = runSelect(database, *select);
    } else if (const auto* remove = std::get_if<DeleteStatement>(&statement)) {
        result.rowsAffected = runDelete(database, *remove);
    } else {
        database.createTable(std::get<CreateTableStatement>(statement).text);
    }
    return result;
}

ExecuteResult execute(jet::Database& database, std::u16string_view sql) {
    return execute(database, parse(sql));
}

}  // namespace sql
