#include "reports/tally.h"

#include <optional>
#include <string>
#include <vector>

#include "shell/kit/failure_modes.h"
#include "store/data_error.h"
#include "store/jet/text.h"
#include "store/number_text.h"
#include "store/sql/collation.h"
#include "store/sql/executor.h"
#include "store/write_scope.h"

namespace reports {
namespace {

using Kind = jet::Value::Kind;

// A number column's value as the grouped query compares it with a number
// literal; nothing for Null, which is never equal, and for kinds that are
// no number (there the query fails, which counts nothing as well).
std::optional<double> numberOf(const jet::Value& value) {
    switch (value.kind()) {
        case Kind::Integer:
            return value.asInteger();
        case Kind::Double:
            return value.asDouble();
        case Kind::Boolean:
            return value.asBoolean() ? -1.0 : 0.0;
        case Kind::Currency:
            return static_cast<double>(value.asCurrency().tenThousandths) / 10000.0;
        case Kind::Date:
            return value.asDate().oleDays;
        default:
            return std::nullopt;
    }
}

// The pass whose meal the text is, or nothing.
std::optional<std::size_t> passOf(const jet::Value& ogun) {
    if (ogun.kind() != Kind::Text)
        return std::nullopt;
    for (std::size_t pass = 0; pass < kTallyPasses.size(); ++pass) {
        if (sql::equalText(ogun.asText(), kTallyPasses[pass].meal))
            return pass;
    }
    return std::nullopt;
}

}  // namespace

TallyCounts countMeals(const jet::Database& database, int month) {
    TallyCounts counts{};
    // Whole statements of other writers only, as each query reads them.
    const jet::LockFile::Hold lock = database.holdForReading();
    const jet::TableDefinition table = database.table(sql::findTableName(database, u"yemek"));
    const std::size_t gun = table.columnPosition(u"gun");
    const std::size_t ay = table.columnPosition(u"ay");
    const std::size_t gunduzlu = table.columnPosition(u"gunduzlu");
    const std::size_t ogun = table.columnPosition(u"ogun");

    // The numbers of every row first; the meal's text only for the rows of
    // the month's day students.
    jet::ColumnSelection numbers(table.columns.size(), false);
    numbers[gun] = numbers[ay] = numbers[gunduzlu] = true;
    jet::ColumnSelection meal(table.columns.size(), false);
    meal[ogun] = true;
    std::vector<jet::Value> values;
    std::vector<jet::Value> mealValues;
    jet::TableCursor cursor = database.scan(table);
    while (cursor.next()) {
        cursor.values(values, numbers);
        if (numberOf(values[ay]) != month || numberOf(values[gunduzlu]) != 1.0)
            continue;
        const std::optional<double> day = numberOf(values[gun]);
        if (!day || !(*day >= 1 && *day <= kTallyDays) || *day != static_cast<int>(*day))
            continue;
        cursor.values(mealValues, meal);
        if (const std::optional<std::size_t> pass = passOf(mealValues[ogun]))
            ++counts[static_cast<std::size_t>(*day) - 1][*pass];
    }
    return counts;
}

void writeTally(store::Recordset& tmp, const TallyCounts& counts) {
    std::optional<store::WriteScope> scope;
    kit::skip([&] { scope.emplace(tmp); });
    for (int day = 1; day <= kTallyDays; ++day) {
        const std::array<std::int32_t, kTallyPasses.size()>& dayCounts = counts[day - 1];
        kit::skip([&] { tmp.setFilter(u"tarih=" + jet::fromUtf8(std::to_string(day))); });
        for (std::size_t pass = 0; pass < kTallyPasses.size(); ++pass) {
            kit::skip([&] {
                tmp.setField(kTallyPasses[pass].column, jet::Value::integer(dayCounts[pass]));
            });
        }
        kit::skip([&] { tmp.update(); });
        // A failed update (the row deleted or changed by another program)
        // leaves its row as it was; the next day goes on.
        kit::skip([&] {
            if (tmp.editing())
                tmp.cancelUpdate();
        });
    }
    kit::skip([&] {
        if (scope)
            scope->commit();
    });
}

std::u16string firstRowTotal(const store::Recordset& tmp) {
    double sum = 0;
    for (std::size_t ordinal = 0; ordinal < 3; ++ordinal) {
        const jet::Value value = tmp.field(ordinal);
        if (value.isNull())
            return {};
        const std::optional<double> number = numberOf(value);
        if (!number)
            throw store::DataError("type mismatch");
        sum += *number;
    }
    return store::numberText(sum);
}

}  // namespace reports
