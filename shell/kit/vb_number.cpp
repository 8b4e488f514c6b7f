#include "shell/kit/vb_number.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>

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

// A decimal number put together while reading: the digits in order, how
// many of them stand after the decimal separator, and the written exponent.
struct DecimalDigits {
    std::string digits;
    long long digitsAfterPoint = 0;
    long long exponent = 0;
    bool negativeExponent = false;

    void addExponentDigit(QChar c) {
        // Beyond this any number is out of a Double's range anyway.
        constexpr long long exponentCap = 1'000'000;
        exponent = std::min(exponent * 10 + (c.unicode() - u'0'), exponentCap);
    }
};

// The value of the digits, or nothing when it is too large for a Double.
// A value too small for a Double is 0.
std::optional<double> decimalValue(const DecimalDigits& number) {
    const std::size_t firstSignificant = number.digits.find_first_not_of('0');
    if (firstSignificant == std::string::npos) {
        return 0.0;
    }
    const std::string significant = number.digits.substr(firstSignificant);
    const long long power =
        (number.negativeExponent ? -number.exponent : number.exponent) - number.digitsAfterPoint;
    const std::string text = significant + "e" + std::to_string(power);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        // The position of the first significant digit tells which way it failed.
        const long long magnitude = static_cast<long long>(significant.size()) - 1 + power;
        if (magnitude > 0) {
            return std::nullopt;
        }
        return 0.0;
    }
    return value;
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
    bool negative = false;
    if (at(i) == u'-' || at(i) == u'+') {
        negative = at(i) == u'-';
        ++i;
    }
    DecimalDigits number;
    bool pointSeen = false;
    for (; i < compact.size(); ++i) {
        const QChar c = compact[i];
        if (isDigit(c)) {
            number.digits += static_cast<char>(c.unicode());
            number.digitsAfterPoint += pointSeen ? 1 : 0;
        } else if (c == u'.' && !pointSeen) {
            pointSeen = true;
        } else {
            break;
        }
    }
    const QChar marker = at(i).toUpper();
    if (marker == u'E' || marker == u'D') {
        ++i;
        if (at(i) == u'-' || at(i) == u'+') {
            number.negativeExponent = at(i) == u'-';
            ++i;
        }
        for (; isDigit(at(i)); ++i) {
            number.addExponentDigit(at(i));
        }
    }
    const std::optional<double> magnitude = decimalValue(number);
    if (!magnitude) {
        overflow();
    }
    return negative ? -*magnitude : *magnitude;
}

namespace {

// Number characters of the Turkish locale, as the system's parser sees them.
constexpr char16_t decimalSeparator = u',';
constexpr char16_t thousandsSeparator = u'.';
// Turkish Windows wrote the lira as "TL" until the lira sign came in 2012
// and as "₺" since; a text with either passes.
constexpr std::array<QStringView, 2> currencySymbols = {u"TL", u"₺"};

bool isParserBlank(QChar c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == QChar(0x00A0);
}

// One pass over a text in the grammar that IsNumeric accepts.
class NumberScanner {
public:
    explicit NumberScanner(QStringView text) : text_(text) {}

    bool isNumber() {
        readLeadingSymbols();
        if (!decimalSeen_ && !currencySeen_ && at(0) == u'&') {
            return readRadixNumber() && readTrailingSymbols(false) && pos_ == text_.size();
        }
        return readDecimalNumber() && readTrailingSymbols(true) && pos_ == text_.size() &&
               decimalValue(number_).has_value();
    }

private:
    QChar at(qsizetype offset) const {
        return pos_ + offset < text_.size() ? text_[pos_ + offset] : QChar();
    }

    // The length of the currency symbol at the current position, or 0.
    qsizetype currencyHere() const {
        for (const QStringView symbol : currencySymbols) {
            if (text_.mid(pos_).startsWith(symbol)) {
                return symbol.size();
            }
        }
        return 0;
    }

    void readLeadingSymbols() {
        while (pos_ < text_.size()) {
            const QChar c = at(0);
            if (c == decimalSeparator) {
                decimalSeen_ = true;
                ++pos_;
                return;
            }
            if (isParserBlank(c)) {
                ++pos_;
            } else if (c == u'+' && !leadingPlus_) {
                leadingPlus_ = true;
                ++pos_;
            } else if (c == u'-' && !leadingMinus_) {
                leadingMinus_ = true;
                ++pos_;
            } else if (c == u'(' && !parenOpen_) {
                parenOpen_ = true;
                ++pos_;
            } else if (!currencySeen_ && currencyHere() > 0) {
                currencySeen_ = true;
                pos_ += currencyHere();
            } else {
                return;
            }
        }
    }

    // "&H" or "&O" and digits; at most 32 bits.
    bool readRadixNumber() {
        const QChar radix = at(1).toUpper();
        if (radix != u'H' && radix != u'O') {
            return false;
        }
        pos_ += 2;
        const int base = radix == u'H' ? 16 : 8;
        std::uint64_t bits = 0;
        qsizetype digits = 0;
        for (; pos_ < text_.size(); ++pos_, ++digits) {
            const int digit = hexDigitValue(at(0));
            if (digit < 0 || digit >= base) {
                break;
            }
            bits = bits * base + digit;
            if (bits > 0xFFFFFFFF) {
                return false;
            }
        }
        return digits > 0;
    }

    bool readDecimalNumber() {
        bool inExponent = false;
        bool exponentSignAllowed = false;
        bool exponentHasDigits = false;
        for (; pos_ < text_.size(); ++pos_) {
            const QChar c = at(0);
            if (isDigit(c) && inExponent) {
                number_.addExponentDigit(c);
                exponentHasDigits = true;
                exponentSignAllowed = false;
            } else if (isDigit(c)) {
                number_.digits += static_cast<char>(c.unicode());
                number_.digitsAfterPoint += decimalSeen_ ? 1 : 0;
            } else if (inExponent) {
                if (!exponentSignAllowed || (c != u'+' && c != u'-')) {
                    break;
                }
                number_.negativeExponent = c == u'-';
                exponentSignAllowed = false;
            } else if (c == thousandsSeparator && !number_.digits.empty()) {
                continue;
            } else if (c == decimalSeparator && !decimalSeen_) {
                decimalSeen_ = true;
            } else if ((c == u'E' || c == u'e') && !currencySeen_) {
                inExponent = true;
                exponentSignAllowed = true;
            } else {
                break;
            }
        }
        return !number_.digits.empty() && (!inExponent || exponentHasDigits);
    }

    bool readTrailingSymbols(bool decimal) {
        bool trailingSign = false;
        while (pos_ < text_.size()) {
            const QChar c = at(0);
            const bool sign = (c == u'+' && !leadingPlus_) || (c == u'-' && !leadingMinus_);
            if ((decimal && c == thousandsSeparator) || isParserBlank(c)) {
                ++pos_;
            } else if (sign && !trailingSign) {
                trailingSign = true;
                ++pos_;
            } else if (c == u')' && parenOpen_ && !parenClosed_) {
                parenClosed_ = true;
                ++pos_;
            } else if (decimal && currencyHere() > 0) {
                pos_ += currencyHere();
            } else {
                break;
            }
        }
        return parenOpen_ == parenClosed_;
    }

    QStringView text_;
    qsizetype pos_ = 0;
    bool leadingPlus_ = false;
    bool leadingMinus_ = false;
    bool parenOpen_ = false;
    bool parenClosed_ = false;
    bool currencySeen_ = false;
    bool decimalSeen_ = false;
    DecimalDigits number_;
};

}  // namespace

bool IsNumeric(QStringView text) {
    return NumberScanner(text).isNumber();
}

QString plainNumber(double value) {
    if (std::isnan(value)) {
        return QStringLiteral("-1,#IND");
    }
    if (std::isinf(value)) {
        return value > 0 ? QStringLiteral("1,#INF") : QStringLiteral("-1,#INF");
    }
    if (value == 0) {
        return QStringLiteral("0");
    }
    // Fifteen significant digits in scientific form, "d.dddddddddddddde+XX",
    // give the rounded digits and the exponent to choose the form by.
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                      std::chars_format::scientific, 14);
    const std::string scientific(buffer, result.ptr);
    const std::size_t exponentAt = scientific.find('e');
    std::string digits = scientific.substr(0, 1) + scientific.substr(2, exponentAt - 2);
    const int exponent = std::stoi(scientific.substr(exponentAt + 1));
    digits.erase(digits.find_last_not_of('0') + 1);

    std::string text = value < 0 ? "-" : "";
    if (exponent < -4 || exponent >= 15) {
        text += digits.substr(0, 1);
        if (digits.size() > 1) {
            text += "," + digits.substr(1);
        }
        const std::string exponentDigits = std::to_string(std::abs(exponent));
        text += exponent < 0 ? "E-" : "E+";
        text += std::string(exponentDigits.size() < 2 ? 1 : 0, '0') + exponentDigits;
    } else if (exponent < 0) {
        text += "0," + std::string(-exponent - 1, '0') + digits;
    } else {
        const auto wholeDigits = static_cast<std::size_t>(exponent) + 1;
        if (digits.size() <= wholeDigits) {
            text += digits + std::string(wholeDigits - digits.size(), '0');
        } else {
            text += digits.substr(0, wholeDigits) + "," + digits.substr(wholeDigits);
        }
    }
    return QString::fromLatin1(text);
}

}  // namespace kit
