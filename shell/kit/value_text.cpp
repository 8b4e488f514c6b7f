#include "shell/kit/value_text.h"

#include <cmath>
#include <limits>

#include <QDateTime>
#include <QLocale>

#include "shell/kit/vb_number.h"
#include "store/data_error.h"
#include "store/date_text.h"

namespace kit {
namespace {

[[noreturn]] void refuse(const QString& text, jet::ColumnType type) {
    throw store::DataError("\"" + text.toStdString() + "\" is not a value of a " +
                           jet::columnTypeName(type) + " column");
}

double numberFromText(const QString& text, jet::ColumnType type) {
    bool ok = false;
    const double number = QLocale(QLocale::Turkish, QLocale::Turkey).toDouble(text.trimmed(), &ok);
    if (!ok || !std::isfinite(number))
        refuse(text, type);
    return number;
}

jet::Value integerFromText(const QString& text, jet::ColumnType type, double low, double high) {
    // Whole-number columns round half to even, as the original's variants
    // convert.
    const double rounded = std::nearbyint(numberFromText(text, type));
    if (rounded < low || rounded > high)
        refuse(text, type);
    return jet::Value::integer(static_cast<std::int32_t>(rounded));
}

jet::Value dateFromText(const QString& text, jet::ColumnType type) {
    const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    const QString trimmed = text.trimmed();
    for (const QString& format : {QStringLiteral("d.M.yyyy H:mm:ss"),
                                  QStringLiteral("d.M.yyyy H:mm"), QStringLiteral("d.M.yyyy")}) {
        const QDateTime moment = turkish.toDateTime(trimmed, format);
        if (moment.isValid()) {
            const QDate day = moment.date();
            const QTime time = moment.time();
            return jet::Value::date(jet::Date::fromCivil(
                {day.year(), day.month(), day.day(), time.hour(), time.minute(), time.second()}));
        }
    }
    for (const QString& format : {QStringLiteral("H:mm:ss"), QStringLiteral("H:mm")}) {
        const QTime time = QTime::fromString(trimmed, format);
        if (time.isValid()) {
            return jet::Value::date(
                jet::Date::fromCivil({1899, 12, 30, time.hour(), time.minute(), time.second()}));
        }
    }
    refuse(text, type);
}

}  // namespace

QString displayText(const jet::Value& value) {
    switch (value.kind()) {
        case jet::Value::Kind::Null:
        case jet::Value::Kind::Bytes:
            return {};
        case jet::Value::Kind::Boolean:
            return value.asBoolean() ? QStringLiteral("True") : QStringLiteral("False");
        case jet::Value::Kind::Integer:
            return QString::number(value.asInteger());
        case jet::Value::Kind::Double:
            return plainNumber(value.asDouble());
        case jet::Value::Kind::Currency:
            return plainNumber(static_cast<double>(value.asCurrency().tenThousandths) / 10000.0);
        case jet::Value::Kind::Date:
            return QString::fromStdU16String(store::dateText(value.asDate()));
        case jet::Value::Kind::Decimal:
            return QString::fromStdString(value.asDecimal().toString())
                .replace(QLatin1Char('.'), QLatin1Char(','));
        case jet::Value::Kind::Text:
            return QString::fromStdU16String(value.asText());
    }
    return {};
}

jet::Value valueFromText(const QString& text, jet::ColumnType type) {
    using jet::ColumnType;
    if (type == ColumnType::Text || type == ColumnType::Memo)
        return jet::Value::text(text.toStdU16String());
    if (text.trimmed().isEmpty())
        return {};
    switch (type) {
        case ColumnType::Boolean: {
            const QString word = text.trimmed().toLower();
            if (word == QStringLiteral("true") || word == QStringLiteral("-1"))
                return jet::Value::boolean(true);
            if (word == QStringLiteral("false") || word == QStringLiteral("0"))
                return jet::Value::boolean(false);
            refuse(text, type);
        }
        case ColumnType::Byte:
            return integerFromText(text, type, 0, 255);
        case ColumnType::Integer:
            return integerFromText(text, type, -32768, 32767);
        case ColumnType::LongInteger:
            return integerFromText(text, type, std::numeric_limits<std::int32_t>::min(),
                                   std::numeric_limits<std::int32_t>::max());
        case ColumnType::Single:
        case ColumnType::Double:
            return jet::Value::real(numberFromText(text, type));
        case ColumnType::Currency:
            return jet::Value::currency(
                {static_cast<std::int64_t>(std::llround(numberFromText(text, type) * 10000.0))});
        case ColumnType::DateTime:
            return dateFromText(text, type);
        default:
            refuse(text, type);
    }
}

}  // namespace kit
