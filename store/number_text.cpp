#include "store/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>

namespace store {
namespace {

std::string significantDigits(const std::string& digits) {
    const std::size_t first = digits.find_first_not_of('0');
    return first == std::string::npos ? std::string() : digits.substr(first);
}

// Adds one to a string of decimal digits.
void increment(std::string& digits) {
    for (auto digit = digits.rbegin(); digit != digits.rend(); ++digit) {
        if (*digit != '9') {
            ++*digit;
            return;
        }
        *digit = '0';
    }
    digits.insert(digits.begin(), '1');
}

}  // namespace

DecimalNumber DecimalNumber::of(double value) {
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::fabs(value),
                                      std::chars_format::scientific);
    const std::string scientific(buffer, result.ptr);  // "1.5e+00", "5e-01"
    const std::size_t exponentAt = scientific.find('e');
    std::string mantissa = scientific.substr(0, exponentAt);
    long long fractionDigits = 0;
    if (const std::size_t point = mantissa.find('.'); point != std::string::npos) {
        fractionDigits = static_cast<long long>(mantissa.size() - point - 1);
        mantissa.erase(point, 1);
    }
    return {std::signbit(value), mantissa,
            std::stoll(scientific.substr(exponentAt + 1)) - fractionDigits};
}

double DecimalNumber::toDouble() const {
    const std::string significant = significantDigits(digits);
    if (significant.empty())
        return negative ? -0.0 : 0.0;
    const std::string text = significant + "e" + std::to_string(exponent);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::result_out_of_range) {
        // The position of the first significant digit tells which way it failed.
        const long long magnitude = static_cast<long long>(significant.size()) - 1 + exponent;
        value = magnitude > 0 ? HUGE_VAL : 0.0;
    }
    return negative ? -value : value;
}

std::optional<std::string> DecimalNumber::scaled(int scale, std::size_t maxDigits) const {
    const std::string significant = significantDigits(digits);
    if (significant.empty())
        return "0";
    const long long shift = exponent + scale;
    if (shift >= 0) {
        if (static_cast<long long>(significant.size()) + shift >
            static_cast<long long>(maxDigits)) {
            return std::nullopt;
        }
        return significant + std::string(static_cast<std::size_t>(shift), '0');
    }
    // Under a tenth of the unit rounds to zero.
    const auto dropped = static_cast<std::size_t>(-shift);
    if (dropped > significant.size())
        return "0";
    const std::string padded = "0" + significant;
    std::string kept = padded.substr(0, padded.size() - dropped);
    const std::string rest = padded.substr(padded.size() - dropped);
    const bool beyondHalf = rest.find_first_not_of('0', 1) != std::string::npos;
    const bool up =
        rest[0] > '5' || (rest[0] == '5' && (beyondHalf || (kept.back() - '0') % 2 == 1));
    if (up)
        increment(kept);
    kept = significantDigits(kept);
    if (kept.empty())
        return "0";
    if (kept.size() > maxDigits)
        return std::nullopt;
    return kept;
}

namespace {

constexpr char16_t kDecimalSeparator = u',';
constexpr char16_t kThousandsSeparator = u'.';
// Turkish Windows wrote the lira as "TL" until the lira sign came in 2012
// and as "₺" since; a text with either passes.
constexpr std::array<std::u16string_view, 2> kCurrencySymbols = {u"TL", u"₺"};
// Beyond this any exponent is out of a Double's range anyway.
constexpr long long kExponentCap = 1'000'000;

bool isDigit(char16_t c) {
    return c >= u'0' && c <= u'9';
}

int hexDigitValue(char16_t c) {
    if (isDigit(c))
        return c - u'0';
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    return -1;
}

bool isParserBlank(char16_t c) {
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == u'\u00A0';
}

// One pass over a text in the grammar of readNumber.
class NumberScanner {
public:
    explicit NumberScanner(std::u16string_view text) : text_(text) {}

    std::optional<DecimalNumber> read() {
        readLeadingSymbols();
        bool whole = false;
        if (!decimalSeen_ && !currencySeen_ && at(0) == u'&') {
            whole = readRadixNumber() && readTrailingSymbols(false);
        } else {
            whole = readDecimalNumber() && readTrailingSymbols(true);
        }
        if (!whole || pos_ != text_.size())
            return std::nullopt;
        number_.negative = negative_;
        if (std::isinf(number_.toDouble()))
            return std::nullopt;
        return number_;
    }

private:
    char16_t at(std::size_t offset) const {
        return pos_ + offset < text_.size() ? text_[pos_ + offset] : u'\0';
    }

    // The length of the currency symbol at the current position, or 0.
    std::size_t currencyHere() const {
        for (const std::u16string_view symbol : kCurrencySymbols) {
            if (text_.substr(pos_).starts_with(symbol))
                return symbol.size();
        }
        return 0;
    }

    void readLeadingSymbols() {
        while (pos_ < text_.size()) {
            const char16_t c = at(0);
            if (c == kDecimalSeparator) {
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
                negative_ = true;
                ++pos_;
            } else if (c == u'(' && !parenOpen_) {
                parenOpen_ = true;
                negative_ = true;
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
        const char16_t radix = at(1);
        const bool hexadecimal = radix == u'H' || radix == u'h';
        if (!hexadecimal && radix != u'O' && radix != u'o')
            return false;
        pos_ += 2;
        const int base = hexadecimal ? 16 : 8;
        std::uint64_t bits = 0;
        std::size_t digits = 0;
        int significant = 0;
        for (; pos_ < text_.size(); ++pos_, ++digits) {
            const int digit = hexDigitValue(at(0));
            if (digit < 0 || digit >= base)
                break;
            bits = bits * static_cast<unsigned>(base) + static_cast<unsigned>(digit);
            if (bits > 0xFFFFFFFF)
                return false;
            if (bits != 0)
                ++significant;
        }
        if (digits == 0)
            return false;
        // The runtime's literal types: an Integer or a Long, read as signed.
        const bool integer = hexadecimal ? significant <= 4 : bits <= 0xFFFF;
        const std::uint64_t span = integer ? 0x10000 : 0x100000000;
        long long value = static_cast<long long>(bits);
        if (bits >= span / 2)
            value -= static_cast<long long>(span);
        if (value < 0)
            negative_ = !negative_;
        number_.digits = std::to_string(std::llabs(value));
        return true;
    }

    bool readDecimalNumber() {
        bool inExponent = false;
        bool exponentSignAllowed = false;
        bool exponentHasDigits = false;
        bool negativeExponent = false;
        long long exponent = 0;
        long long digitsAfterPoint = 0;
        for (; pos_ < text_.size(); ++pos_) {
            const char16_t c = at(0);
            if (isDigit(c) && inExponent) {
                exponent = std::min(exponent * 10 + (c - u'0'), kExponentCap);
                exponentHasDigits = true;
                exponentSignAllowed = false;
            } else if (isDigit(c)) {
                number_.digits += static_cast<char>(c);
                digitsAfterPoint += decimalSeen_ ? 1 : 0;
            } else if (inExponent) {
                if (!exponentSignAllowed || (c != u'+' && c != u'-'))
                    break;
                negativeExponent = c == u'-';
                exponentSignAllowed = false;
            } else if (c == kThousandsSeparator && !number_.digits.empty()) {
                continue;
            } else if (c == kDecimalSeparator && !decimalSeen_) {
                decimalSeen_ = true;
            } else if ((c == u'E' || c == u'e') && !currencySeen_) {
                inExponent = true;
                exponentSignAllowed = true;
            } else {
                break;
            }
        }
        number_.exponent = (negativeExponent ? -exponent : exponent) - digitsAfterPoint;
        return !number_.digits.empty() && (!inExponent || exponentHasDigits);
    }

    bool readTrailingSymbols(bool decimal) {
        bool trailingSign = false;
        while (pos_ < text_.size()) {
            const char16_t c = at(0);
            const bool sign = (c == u'+' && !leadingPlus_) || (c == u'-' && !leadingMinus_);
            if ((decimal && c == kThousandsSeparator) || isParserBlank(c)) {
                ++pos_;
            } else if (sign && !trailingSign) {
                trailingSign = true;
                negative_ = negative_ || c == u'-';
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

    std::u16string_view text_;
    std::size_t pos_ = 0;
    bool leadingPlus_ = false;
    bool leadingMinus_ = false;
    bool parenOpen_ = false;
    bool parenClosed_ = false;
    bool currencySeen_ = false;
    bool decimalSeen_ = false;
    bool negative_ = false;
    DecimalNumber number_;
};

}  // namespace

std::optional<DecimalNumber> readNumber(std::u16string_view text) {
    return NumberScanner(text).read();
}

std::u16string numberText(double value) {
    if (std::isnan(value))
        return u"-1,#IND";
    if (std::isinf(value))
        return value > 0 ? u"1,#INF" : u"-1,#INF";
    if (value == 0)
        return u"0";
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
        if (digits.size() > 1)
            text += "," + digits.substr(1);
        const std::string exponentDigits = std::to_string(std::abs(exponent));
        text += exponent < 0 ? "E-" : "E+";
        text += std::string(exponentDigits.size() < 2 ? 1 : 0, '0') + exponentDigits;
    } else if (exponent < 0) {
        text += "0," + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    } else {
        const auto wholeDigits = static_cast<std::size_t>(exponent) + 1;
        if (digits.size() <= wholeDigits) {
            text += digits + std::string(wholeDigits - digits.size(), '0');
        } else {
            text += digits.substr(0, wholeDigits) + "," + digits.substr(wholeDigits);
        }
    }
    return {text.begin(), text.end()};
}

}  // namespace store
