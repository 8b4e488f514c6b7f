#include "store/date_text.h"

namespace store {
namespace {

// A left-to-right reading of a date text.
class DateScanner {
public:
    explicit DateScanner(std::u16string_view text) : text_(text) {}

    std::optional<jet::Date> read() {
        skipBlanks();
        jet::CivilDateTime civil;
        const std::size_t start = pos_;
        if (!readDay(civil)) {
            pos_ = start;
            civil = {};
        } else if (skipBlanks() == 0 && pos_ < text_.size()) {
            return std::nullopt;  // "5/11/202612:30"
        }
        if (pos_ < text_.size() && !readTime(civil))
            return std::nullopt;
        skipBlanks();
        if (pos_ != text_.size() || pos_ == start)
            return std::nullopt;
        return jet::Date::fromCivil(civil);
    }

private:
    static bool isBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\u00A0'; }

    std::size_t skipBlanks() {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && isBlank(text_[pos_]))
            ++pos_;
        return pos_ - start;
    }

    // Up to `maxDigits` digits; the count read goes to `digits`.
    int readNumber(std::size_t maxDigits, std::size_t& digits) {
        int value = 0;
        digits = 0;
        while (pos_ < text_.size() && digits < maxDigits && text_[pos_] >= u'0' &&
               text_[pos_] <= u'9') {
            value = value * 10 + (text_[pos_] - u'0');
            ++pos_;
            ++digits;
        }
        return value;
    }

    bool readChar(char16_t c) {
        if (pos_ >= text_.size() || text_[pos_] != c)
            return false;
        ++pos_;
        return true;
    }

    bool readDateSeparator() { return readChar(u'/') || readChar(u'.') || readChar(u'-'); }

    static int daysInMonth(int year, int month) {
        static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
        const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
        return month == 2 && leap ? 29 : kDays[month - 1];
    }

    // Day, month and year; or year, month and day when the year comes
    // first with four digits ("2026-11-05").
    bool readDay(jet::CivilDateTime& civil) {
        std::size_t digits = 0;
        const int first = readNumber(4, digits);
        if (digits == 0 || digits == 3 || !readDateSeparator())
            return false;
        const bool yearFirst = digits == 4;
        civil.month = readNumber(2, digits);
        if (digits == 0 || !readDateSeparator())
            return false;
        const int last = readNumber(yearFirst ? 2 : 4, digits);
        if (digits == 0)
            return false;
        civil.day = yearFirst ? last : first;
        civil.year = yearFirst ? first : last;
        // Two-digit years as the system reads them: 30 to 99 last century.
        if (!yearFirst && digits <= 2)
            civil.year += civil.year < 30 ? 2000 : 1900;
        return civil.year >= 100 && civil.month >= 1 && civil.month <= 12 && civil.day >= 1 &&
               civil.day <= daysInMonth(civil.year, civil.month);
    }

    // Hours and minutes, then optionally seconds.
    bool readTime(jet::CivilDateTime& civil) {
        std::size_t digits = 0;
        civil.hour = readNumber(2, digits);
        if (digits == 0 || !readChar(u':'))
            return false;
        civil.minute = readNumber(2, digits);
        if (digits == 0)
            return false;
        if (readChar(u':')) {
            civil.second = readNumber(2, digits);
            if (digits == 0)
                return false;
        }
        return civil.hour < 24 && civil.minute < 60 && civil.second < 60;
    }

    std::u16string_view text_;
    std::size_t pos_ = 0;
};

void appendTwoDigits(std::u16string& text, int number) {
    text += static_cast<char16_t>(u'0' + number / 10 % 10);
    text += static_cast<char16_t>(u'0' + number % 10);
}

}  // namespace

std::optional<jet::Date> readDate(std::u16string_view text) {
    return DateScanner(text).read();
}

std::u16string dateText(jet::Date date) {
    const jet::CivilDateTime civil = date.toCivil();
    std::u16string text;
    const bool dayZero = civil.year == 1899 && civil.month == 12 && civil.day == 30;
    if (!dayZero) {
        appendTwoDigits(text, civil.day);
        text += u'.';
        appendTwoDigits(text, civil.month);
        text += u'.';
        appendTwoDigits(text, civil.year / 100);
        appendTwoDigits(text, civil.year % 100);
    }
    if (dayZero || civil.hour != 0 || civil.minute != 0 || civil.second != 0) {
        if (!dayZero)
            text += u' ';
        appendTwoDigits(text, civil.hour);
        text += u':';
        appendTwoDigits(text, civil.minute);
        text += u':';
        appendTwoDigits(text, civil.second);
    }
    return text;
}

}  // namespace store
