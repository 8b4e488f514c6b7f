#include "shell/kit/vb_number.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "store/data_error.h"
#include "store/number_text.h"

namespace kit {

namespace {

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

bool isOctalDigit(QChar c) {
    return c >= u'0' && c <= u'7';
}

int hexDigitValue(QChar c) {
    if (isDigit(c)) {
        return c.unicode() - u'0';
    }
    if (c >= u'A' && c <= u'F') {
        return c.unicode() - u'A' + 10;
    }
    if (c >= u'a' && c <= u'f') {
        return c.unicode() - u'a' + 10;
    }
    return -1;
}

[[noreturn]] void overflow() {
    throw std::overflow_error("Overflow");
}

// The runtime's literal types: a value that fits 16 bits is an Integer, one
// that fits 32 bits a Long, both read as signed.
double asInteger(std::uint64_t bits) {
    return bits <= 0x7FFF ? static_cast<double>(bits) : static_cast<double>(bits) - 0x10000;
}

double asLong(std::uint64_t bits) {
    return bits <= 0x7FFFFFFF ? static_cast<double>(bits) : static_cast<double>(bits) - 0x100000000;
}

// Val's "&H..." and "&O..."; `text` starts after the "&".
double radixValue(QStringView text) {
    if (text.isEmpty()) {
        return 0;
    }
    const QChar radix = text.front().toUpper();
    text = text.mid(1);
    std::uint64_t bits = 0;
    if (radix == u'H') {
        int significantDigits = 0;
        for (const QChar c : text) {
            const int digit = hexDigitValue(c);
            if (digit < 0) {
                break;
            }
            bits = bits * 16 + digit;
            if (bits != 0 && ++significantDigits > 8) {
                overflow();
            }
        }
        return significantDigits <= 4 ? asInteger(bits) : asLong(bits);
    }
    if (radix == u'O') {
        for (const QChar c : text) {
            if (!isOctalDigit(c)) {
                break;
            }
            bits = bits * 8 + (c.unicode() - u'0');
            if (bits > 0xFFFFFFFF) {
                overflow();
            }
        }
        return bits <= 0xFFFF ? asInteger(bits) : asLong(bits);
    }
    return 0;
}

bool isValBlank(QChar c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

}  // namespace

double Val(QStringView text) {
    // The runtime strips the blanks from the whole text before it reads.
    QString compact;
    compact.reserve(text.size());
    for (const QChar c : text) {
        if (!isValBlank(c)) {
            compact.append(c);
        }
    }
    qsizetype i = 0;
    const auto at = [&compact](qsizetype index) {
        return index < compact.size() ? compact[index] : QChar();
    };
    if (at(0) == u'&') {
        return radixValue(QStringView(compact).mid(1));
    }
    store::DecimalNumber number;
    if (at(i) == u'-' || at(i) == u'+') {
        number.negative = at(i) == u'-';
        ++i;
    }
    bool pointSeen = false;
    for (; i < compact.size(); ++i) {
        const QChar c = compact[i];
        if (isDigit(c)) {
            number.digits += static_cast<char>(c.unicode());
            number.exponent -= pointSeen ? 1 : 0;
        } else if (c == u'.' && !pointSeen) {
            pointSeen = true;
        } else {
            break;
        }
    }
    const QChar marker = at(i).toUpper();
    if (marker == u'E' || marker == u'D') {
        ++i;
        bool negativeExponent = false;
        if (at(i) == u'-' || at(i) == u'+') {
            negativeExponent = at(i) == u'-';
            ++i;
        }
        // Beyond this any number is out of a Double's range anyway.
        constexpr long long exponentCap = 1'000'000;
        long long exponent = 0;
        for (; isDigit(at(i)); ++i) {
            exponent = std::min(exponent * 10 + (at(i).unicode() - u'0'), exponentCap);
        }
        number.exponent += negativeExponent ? -exponent : exponent;
    }
    const double value = number.toDouble();
    if (std::isinf(value)) {
        overflow();
    }
    return value;
}

bool IsNumeric(QStringView text) {
    return store::readNumber(
               std::u16string_view(text.utf16(), static_cast<std::size_t>(text.size())))
        .has_value();
}

QString plainNumber(double value) {
    return QString::fromStdU16String(store::numberText(value));
}

std::int32_t CLng(double value) {
    // The default rounding of the floating point unit is half to even.
    const double rounded = std::nearbyint(value);
    if (!(rounded >= -2147483648.0 && rounded <= 2147483647.0))
        overflow();
    return static_cast<std::int32_t>(rounded);
}

QString Hex(double value) {
    return QString::number(static_cast<std::uint32_t>(CLng(value)), 16).toUpper();
}

qint16 addIntegers(qint16 left, qint16 right) {
    const int sum = int{left} + int{right};
    if (sum < -32768 || sum > 32767)
        throw std::overflow_error("Overflow");
    return static_cast<qint16>(sum);
}

qint16 CInt(QStringView text) {
    const std::optional<store::DecimalNumber> number =
        store::readNumber(text.toString().toStdU16String());
    if (!number)
        throw store::DataError("Type mismatch");
    const std::optional<std::string> whole = number->scaled(0, 5);
    const long value = whole ? std::stol(*whole) * (number->negative ? -1 : 1) : 100000;
    if (value < -32768 || value > 32767)
        throw std::overflow_error("Overflow");
    return static_cast<qint16>(value);
}

}  // namespace kit
