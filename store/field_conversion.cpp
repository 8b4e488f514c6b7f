#include "store/field_conversion.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

#include "store/data_error.h"
#include "store/date_text.h"
#include "store/number_text.h"

namespace store {
namespace {

using jet::ColumnType;
using jet::Value;
using Kind = jet::Value::Kind;

// Jet's dates run from 1 January 100 to 31 December 9999.
constexpr double kFirstDay = -657434.0;
constexpr double kDayAfterLast = 2958466.0;
// A Decimal column without a recorded precision holds what Access allows.
constexpr std::size_t kDecimalDigits = 28;

[[noreturn]] void refuse() {
    throw DataError(DataError::kMultipleStepText, DataError::kValueRefused);
}

DecimalNumber unsignedDigits(bool negative, std::uint64_t magnitude, long long exponent) {
    return {negative, std::to_string(magnitude), exponent};
}

std::uint64_t magnitudeOf(std::int64_t number) {
    return number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
}

// The value as an exact number; nothing for a kind that is none, a text
// that reads as none, and a Double that is no finite number.
std::optional<DecimalNumber> numberOf(const Value& value) {
    switch (value.kind()) {
        case Kind::Boolean:
            return unsignedDigits(value.asBoolean(), value.asBoolean() ? 1 : 0, 0);
        case Kind::Integer:
            return unsignedDigits(value.asInteger() < 0, magnitudeOf(value.asInteger()), 0);
        case Kind::Double:
            if (!std::isfinite(value.asDouble()))
                return std::nullopt;
            return DecimalNumber::of(value.asDouble());
        case Kind::Currency: {
            const std::int64_t tenThousandths = value.asCurrency().tenThousandths;
            return unsignedDigits(tenThousandths < 0, magnitudeOf(tenThousandths), -4);
        }
        case Kind::Date:
            return DecimalNumber::of(value.asDate().oleDays);
        case Kind::Decimal: {
            const jet::Decimal& decimal = value.asDecimal();
            std::string digits;
            for (const char c : decimal.toString()) {
                if (c >= '0' && c <= '9')
                    digits += c;
            }
            return DecimalNumber{decimal.negative, digits, -static_cast<long long>(decimal.scale)};
        }
        case Kind::Text:
            return readNumber(value.asText());
        default:
            return std::nullopt;
    }
}

DecimalNumber requireNumber(const Value& value) {
    std::optional<DecimalNumber> number = numberOf(value);
    if (!number)
        refuse();
    return *number;
}

bool isZero(const DecimalNumber& number) {
    return number.digits.find_first_not_of('0') == std::string::npos;
}

// The whole count of 10^-scale, signed; refused beyond 64 bits.
std::int64_t scaledInteger(const DecimalNumber& number, int scale) {
    const std::optional<std::string> digits = number.scaled(scale, 19);
    if (!digits)
        refuse();
    const std::uint64_t magnitude = std::stoull(*digits);
    const std::uint64_t limit =
        static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) +
        (number.negative ? 1 : 0);
    if (magnitude > limit)
        refuse();
    return number.negative ? static_cast<std::int64_t>(0 - magnitude)
                           : static_cast<std::int64_t>(magnitude);
}

Value wholeNumber(const Value& value, std::int64_t low, std::int64_t high) {
    const std::int64_t number =
        value.kind() == Kind::Integer ? value.asInteger() : scaledInteger(requireNumber(value), 0);
    if (number < low || number > high)
        refuse();
    return Value::integer(static_cast<std::int32_t>(number));
}

double realNumber(const Value& value) {
    if (value.kind() == Kind::Integer)
        return value.asInteger();
    if (value.kind() == Kind::Double)
        return value.asDouble();
    const double number = requireNumber(value).toDouble();
    if (std::isinf(number))
        refuse();
    return number;
}

Value single(const Value& value) {
    const double number = realNumber(value);
    if (std::fabs(number) > std::numeric_limits<float>::max())
        refuse();
    // The column keeps a float: the value is what reads back.
    return Value::real(static_cast<float>(number));
}

Value decimal(const Value& value, const jet::Column& column) {
    const DecimalNumber number = requireNumber(value);
    const std::optional<std::string> digits =
        number.scaled(column.scale, column.precision > 0 ? column.precision : kDecimalDigits);
    if (!digits)
        refuse();
    jet::Decimal stored;
    stored.scale = column.scale;
    for (const char digit : *digits) {
        // The 128-bit magnitude times ten plus the digit, in 32-bit halves.
        const std::uint64_t lowPart =
            (stored.low & 0xFFFFFFFF) * 10 + static_cast<std::uint64_t>(digit - '0');
        const std::uint64_t middle = (stored.low >> 32) * 10 + (lowPart >> 32);
        stored.low = (middle << 32) | (lowPart & 0xFFFFFFFF);
        stored.high = stored.high * 10 + (middle >> 32);
    }
    stored.negative = number.negative && (stored.low != 0 || stored.high != 0);
    return Value::decimal(stored);
}

Value dateTime(const Value& value) {
    if (value.kind() == Kind::Date)
        return value;
    if (value.kind() == Kind::Text) {
        const std::optional<jet::Date> date = readDate(value.asText());
        if (!date)
            refuse();
        return Value::date(*date);
    }
    const double days = requireNumber(value).toDouble();
    if (!(days >= kFirstDay && days < kDayAfterLast))
        refuse();
    return Value::date(jet::Date{days});
}

// Plain digits with "," before the decimals and none trailing.
std::u16string exactText(const DecimalNumber& number) {
    std::string digits = number.digits;
    long long exponent = number.exponent;
    while (exponent < 0 && !digits.empty() && digits.back() == '0') {
        digits.pop_back();
        ++exponent;
    }
    if (digits.empty())
        return u"0";
    if (exponent > 0)
        digits.append(static_cast<std::size_t>(exponent), '0');
    const auto fraction = static_cast<std::size_t>(exponent < 0 ? -exponent : 0);
    if (digits.size() <= fraction)
        digits.insert(0, fraction + 1 - digits.size(), '0');
    std::string text = number.negative && !isZero(number) ? "-" : "";
    const std::size_t whole = digits.size() - fraction;
    const std::size_t firstWhole = std::min(digits.find_first_not_of('0'), whole - 1);
    text += digits.substr(firstWhole, whole - firstWhole);
    if (fraction > 0)
        text += "," + digits.substr(whole);
    return {text.begin(), text.end()};
}

std::u16string textOf(const Value& value) {
    switch (value.kind()) {
        case Kind::Text:
            return value.asText();
        case Kind::Boolean:
            return value.asBoolean() ? u"True" : u"False";
        case Kind::Integer: {
            const std::string digits = std::to_string(value.asInteger());
            return {digits.begin(), digits.end()};
        }
        case Kind::Double:
            return numberText(value.asDouble());
        case Kind::Currency:
        case Kind::Decimal:
            return exactText(requireNumber(value));
        case Kind::Date:
            return dateText(value.asDate());
        default:
            refuse();
    }
}

Value text(const Value& value, const jet::Column& column) {
    std::u16string converted = textOf(value);
    if (column.type == ColumnType::Text && converted.size() * 2 > column.length)
        refuse();
    if (value.kind() == Kind::Text)
        return value;
    return Value::text(std::move(converted));
}

bool sameLetters(std::u16string_view text, std::u16string_view lowerAscii) {
    if (text.size() != lowerAscii.size())
        return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i] >= u'A' && text[i] <= u'Z' ? text[i] - u'A' + u'a' : text[i];
        if (c != lowerAscii[i])
            return false;
    }
    return true;
}

Value boolean(const Value& value) {
    if (value.kind() == Kind::Boolean)
        return value;
    if (value.kind() == Kind::Text) {
        std::u16string_view word = value.asText();
        while (!word.empty() && word.front() == u' ')
            word.remove_prefix(1);
        while (!word.empty() && word.back() == u' ')
            word.remove_suffix(1);
        if (sameLetters(word, u"true"))
            return Value::boolean(true);
        if (sameLetters(word, u"false"))
            return Value::boolean(false);
    }
    return Value::boolean(!isZero(requireNumber(value)));
}

Value bytes(const Value& value, const jet::Column& column) {
    if (value.kind() != Kind::Bytes)
        refuse();
    const std::size_t size = value.asBytes().size();
    if (column.type == ColumnType::Binary && size > column.length)
        refuse();
    if (column.type == ColumnType::ReplicationId && size != 16)
        refuse();
    return value;
}

}  // namespace

jet::Value convertForColumn(const jet::Value& value, const jet::Column& column) {
    if (value.isNull())
        return value;
    switch (column.type) {
        case ColumnType::Boolean:
            return boolean(value);
        case ColumnType::Byte:
            return wholeNumber(value, 0, 255);
        case ColumnType::Integer:
            return wholeNumber(value, -32768, 32767);
        case ColumnType::LongInteger:
            return wholeNumber(value, std::numeric_limits<std::int32_t>::min(),
                               std::numeric_limits<std::int32_t>::max());
        case ColumnType::Currency:
            if (value.kind() == Kind::Currency)
                return value;
            return Value::currency({scaledInteger(requireNumber(value), 4)});
        case ColumnType::Single:
            return single(value);
        case ColumnType::Double:
            return Value::real(realNumber(value));
        case ColumnType::Decimal:
            return decimal(value, column);
        case ColumnType::DateTime:
            return dateTime(value);
        case ColumnType::Text:
        case ColumnType::Memo:
            return text(value, column);
        case ColumnType::Binary:
        case ColumnType::Ole:
        case ColumnType::ReplicationId:
            return bytes(value, column);
    }
    refuse();
}

}  // namespace store
