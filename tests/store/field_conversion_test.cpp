// Values assigned to fields of each type, converted as on a Turkish Windows:
// halves rounded to even, "," before the decimals and "." between thousands,
// dates day first; and the values refused with the provider's number.

#include "store/field_conversion.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "store/data_error.h"

namespace store {
namespace {

using jet::ColumnType;
using jet::Value;

jet::Column columnOf(ColumnType type, std::uint16_t length = 0) {
    jet::Column column;
    column.type = type;
    column.length = length;
    return column;
}

Value date(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return Value::date(jet::Date::fromCivil({year, month, day, hour, minute, second}));
}

TEST(FieldConversion, ConvertsAsATurkishWindowsDoesOrRefuses) {
    jet::Column decimal = columnOf(ColumnType::Decimal, 17);
    decimal.precision = 5;
    decimal.scale = 2;
    const jet::Column longInteger = columnOf(ColumnType::LongInteger, 4);
    const jet::Column text = columnOf(ColumnType::Text, 510);  // Text 255
    const struct {
        jet::Column column;
        Value assigned;
        std::optional<Value> stored;  // none: refused
    } cases[] = {
        {longInteger, Value::real(2.5), Value::integer(2)},
        {longInteger, Value::real(3.5), Value::integer(4)},
        {longInteger, Value::real(-2.5), Value::integer(-2)},
        {longInteger, Value::text(u" 1.234,5 "), Value::integer(1234)},
        {longInteger, Value::text(u"1.235,5"), Value::integer(1236)},
        {longInteger, Value::text(u"(5)"), Value::integer(-5)},
        {longInteger, Value::text(u"2,5E3"), Value::integer(2500)},
        {longInteger, Value::boolean(true), Value::integer(-1)},
        {longInteger, Value::text(u"12a"), std::nullopt},
        {longInteger, Value::text(u""), std::nullopt},
        {longInteger, Value::real(2147483647.5), std::nullopt},
        {columnOf(ColumnType::Integer, 2), Value::integer(70000), std::nullopt},
        {columnOf(ColumnType::Integer, 2), Value::real(-32768.5), Value::integer(-32768)},
        {columnOf(ColumnType::Byte, 1), Value::real(254.5), Value::integer(254)},
        {columnOf(ColumnType::Byte, 1), Value::boolean(true), std::nullopt},
        {columnOf(ColumnType::Double, 8), Value::text(u"1,5"), Value::real(1.5)},
        {columnOf(ColumnType::Double, 8), Value::text(u"1.5"), Value::real(15)},
        {columnOf(ColumnType::Double, 8), Value::text(u"0,1"), Value::real(0.1)},
        {columnOf(ColumnType::Double, 8), Value::integer(3), Value::real(3)},
        {columnOf(ColumnType::Single, 4), Value::real(0.1), Value::real(static_cast<float>(0.1))},
        {columnOf(ColumnType::Currency, 8), Value::text(u"12,34565"), Value::currency({123456})},
        {columnOf(ColumnType::Currency, 8), Value::text(u"12,34575"), Value::currency({123458})},
        {decimal, Value::text(u"123,455"), Value::decimal({false, 2, 0, 12346})},
        {decimal, Value::integer(-3), Value::decimal({true, 2, 0, 300})},
        {decimal, Value::real(1000), std::nullopt},
        {columnOf(ColumnType::DateTime, 8), Value::text(u"5/11/2026"), date(2026, 11, 5)},
        {columnOf(ColumnType::DateTime, 8), Value::text(u" 05.11.2026 12:30:00"),
         date(2026, 11, 5, 12, 30)},
        {columnOf(ColumnType::DateTime, 8), Value::text(u"5-11-26 9:05"), date(2026, 11, 5, 9, 5)},
        {columnOf(ColumnType::DateTime, 8), Value::text(u"2026-11-05"), date(2026, 11, 5)},
        {columnOf(ColumnType::DateTime, 8), Value::text(u"12:30"), date(1899, 12, 30, 12, 30)},
        {columnOf(ColumnType::DateTime, 8), Value::text(u"11/25/2026"), std::nullopt},
        {columnOf(ColumnType::DateTime, 8), Value::text(u"29/2/2026"), std::nullopt},
        {columnOf(ColumnType::DateTime, 8), Value::integer(46000), Value::date({46000})},
        {columnOf(ColumnType::DateTime, 8), Value::real(1e7), std::nullopt},
        {text, Value::real(1.5), Value::text(u"1,5")},
        {text, Value::real(-0.25), Value::text(u"-0,25")},
        {text, Value::real(1.0 / 3), Value::text(u"0,333333333333333")},
        {text, Value::real(12345678901), Value::text(u"12345678901")},
        {text, Value::real(1e15), Value::text(u"1E+15")},
        {text, Value::currency({-15000}), Value::text(u"-1,5")},
        {text, Value::decimal({false, 2, 0, 5}), Value::text(u"0,05")},
        {text, Value::boolean(false), Value::text(u"False")},
        {text, date(2026, 11, 5), Value::text(u"05.11.2026")},
        {text, date(2026, 11, 5, 12, 30), Value::text(u"05.11.2026 12:30:00")},
        {text, Value::text(std::u16string(256, u'ş')), std::nullopt},
        {columnOf(ColumnType::Memo), Value::text(std::u16string(300, u'ş')),
         Value::text(std::u16string(300, u'ş'))},
        {columnOf(ColumnType::Boolean, 1), Value::text(u" tRUE"), Value::boolean(true)},
        {columnOf(ColumnType::Boolean, 1), Value::text(u"0"), Value::boolean(false)},
        {columnOf(ColumnType::Boolean, 1), Value::real(0.5), Value::boolean(true)},
        {columnOf(ColumnType::Boolean, 1), Value::text(u"evet"), std::nullopt},
        {columnOf(ColumnType::ReplicationId, 16), Value::bytes(jet::Bytes(15)), std::nullopt},
        {columnOf(ColumnType::Binary, 8), Value::text(u"ab"), std::nullopt},
    };
    for (const auto& c : cases) {
        const std::string where =
            jet::columnTypeName(c.column.type) + " case " + std::to_string(&c - cases);
        if (c.stored) {
            EXPECT_EQ(convertForColumn(c.assigned, c.column), *c.stored) << where;
            // Null stays Null whatever the column.
            EXPECT_TRUE(convertForColumn(Value(), c.column).isNull()) << where;
            continue;
        }
        try {
            convertForColumn(c.assigned, c.column);
            ADD_FAILURE() << where << ": not refused";
        } catch (const DataError& error) {
            EXPECT_EQ(error.number(), DataError::kValueRefused) << where;
            EXPECT_STREQ(error.what(), DataError::kMultipleStepText) << where;
        }
    }
}

}  // namespace
}  // namespace store
