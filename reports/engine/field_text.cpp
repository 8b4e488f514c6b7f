#include "reports/engine/field_text.h"

#include <QDate>
#include <QLocale>

#include "shell/kit/value_text.h"

namespace engine {
namespace {

// The length of the run of `letter` (either case) that starts at `at`.
qsizetype runLength(const QString& format, qsizetype at, QChar letter) {
    qsizetype end = at;
    while (end < format.size() && format[end].toLower() == letter)
        ++end;
    return end - at;
}

QString twoDigits(int number) {
    return QStringLiteral("%1").arg(number, 2, 10, QLatin1Char('0'));
}

// One part of a format: a number, written plain or with two digits, or a
// name, short or long.
QString numberPart(int number, qsizetype length) {
    return length >= 2 ? twoDigits(number) : QString::number(number);
}

}  // namespace

QString formatDate(const jet::Date& date, const QString& format) {
    const jet::CivilDateTime civil = date.toCivil();
    const QDate day(civil.year, civil.month, civil.day);
    const QLocale turkish(QLocale::Turkish, QLocale::Turkey);
    QString text;
    qsizetype at = 0;
    while (at < format.size()) {
        const QChar c = format[at];
        const QChar letter = c.toLower();
        if (c == QLatin1Char('"')) {
            const qsizetype close = format.indexOf(QLatin1Char('"'), at + 1);
            const qsizetype end = close < 0 ? format.size() : close;
            text += QStringView(format).mid(at + 1, end - at - 1);
            at = end + 1;
            continue;
        }
        if (c == QLatin1Char('\\') && at + 1 < format.size()) {
            text += format[at + 1];
            at += 2;
            continue;
        }
        if (c == QLatin1Char('/')) {
            text += QLatin1Char('.');
            ++at;
            continue;
        }
        const qsizetype length = runLength(format, at, letter);
        if (letter == QLatin1Char('d')) {
            if (length >= 4)
                text += turkish.dayName(day.dayOfWeek(), QLocale::LongFormat);
            else if (length == 3)
                text += turkish.dayName(day.dayOfWeek(), QLocale::ShortFormat);
            else
                text += numberPart(civil.day, length);
        } else if (letter == QLatin1Char('m')) {
            if (length >= 4)
                text += turkish.monthName(civil.month, QLocale::LongFormat);
            else if (length == 3)
                text += turkish.monthName(civil.month, QLocale::ShortFormat);
            else
                text += numberPart(civil.month, length);
        } else if (letter == QLatin1Char('y')) {
            text += length >= 3 ? QString::number(civil.year) : twoDigits(civil.year % 100);
        } else if (letter == QLatin1Char('h')) {
            text += numberPart(civil.hour, length);
        } else if (letter == QLatin1Char('n')) {
            text += numberPart(civil.minute, length);
        } else if (letter == QLatin1Char('s')) {
            text += numberPart(civil.second, length);
        } else {
            text += c;
            ++at;
            continue;
        }
        at += length;
    }
    return text;
}

QString fieldText(const jet::Value& value, const QString& outputFormat) {
    if (!outputFormat.isEmpty() && value.kind() == jet::Value::Kind::Date)
        return formatDate(value.asDate(), outputFormat);
    return kit::displayText(value);
}

}  // namespace engine
