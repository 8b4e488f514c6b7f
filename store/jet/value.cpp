#include "value.h"

#include <algorithm>
#include <cmath>

namespace jet {
namespace {

// Days from 1970-01-01 to a proleptic Gregorian date, and back (the classic
// era-based algorithm, exact over the whole range of int).
long long daysFromCivil(long long year, unsigned month, unsigned day) {
    year -= month <= 2;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const unsigned yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<long long>(dayOfEra) - 719468;
}

void civilFromDays(long long days, int& year, int& month, int& day) {
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned dayOfEra = static_cast<unsigned>(days - era * 146097);
    const unsigned yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned mp = (5 * dayOfYear + 2) / 153;
    day = static_cast<int>(dayOfYear - (153 * mp + 2) / 5 + 1);
    month = static_cast<int>(mp < 10 ? mp + 3 : mp - 9);
    year = static_cast<int>(static_cast<long long>(yearOfEra) + era * 400 + (month <= 2));
}

// 1899-12-30, day zero of the OLE date, counted from 1970-01-01.
constexpr long long kOleEpochDays = -25569;
constexpr long long kSecondsPerDay = 86400;

}  // namespace

Date Date::fromCivil(const CivilDateTime& civil) {
    const long long days = daysFromCivil(civil.year, static_cast<unsigned>(civil.month),
                                         static_cast<unsigned>(civil.day)) -
                           kOleEpochDays;
    const double fraction =
        static_cast<double>(civil.hour * 3600 + civil.minute * 60 + civil.second) / kSecondsPerDay;
    // Before day zero the whole part counts back and the fraction still adds time.
    return Date{days >= 0 ? static_cast<double>(days) + fraction
                          : static_cast<double>(days) - fraction};
}

CivilDateTime Date::toCivil() const {
    const double whole = std::trunc(oleDays);
    long long days = static_cast<long long>(whole);
    long long seconds = std::llround(std::fabs(oleDays - whole) * kSecondsPerDay);
    if (seconds >= kSecondsPerDay) {  // rounding reached the next day
        seconds -= kSecondsPerDay;
        days += oleDays < 0 ? -1 : 1;
    }
    CivilDateTime civil;
    civilFromDays(days + kOleEpochDays, civil.year, civil.month, civil.day);
    civil.hour = static_cast<int>(seconds / 3600);
    civil.minute = static_cast<int>(seconds / 60 % 60);
    civil.second = static_cast<int>(seconds % 60);
    return civil;
}

std::string Decimal::toString() const {
    // Repeated division of the 128-bit magnitude by ten, in 32-bit limbs.
    std::uint32_t limbs[4] = {
        static_cast<std::uint32_t>(high >> 32), static_cast<std::uint32_t>(high),
        static_cast<std::uint32_t>(low >> 32), static_cast<std::uint32_t>(low)};
    std::string digits;
    bool zero = false;
    while (!zero) {
        std::uint64_t remainder = 0;
        zero = true;
        for (std::uint32_t& limb : limbs) {
            const std::uint64_t current = (remainder << 32) | limb;
            limb = static_cast<std::uint32_t>(current / 10);
            remainder = current % 10;
            if (limb != 0)
                zero = false;
        }
        digits.push_back(static_cast<char>('0' + remainder));
    }
    while (digits.size() <= scale)
        digits.push_back('0');
    std::reverse(digits.begin(), digits.end());
    std::string text = negative ? "-" : "";
    text.append(digits, 0, digits.size() - scale);
    if (scale > 0)
        text.append(".").append(digits, digits.size() - scale, scale);
    return text;
}

static_assert(sizeof(Value) == 16, "a value is a kind and eight bytes");

Value Value::decimal(Decimal d) {
    return Value(Kind::Decimal, Number{.shared = new Shared<Decimal>{{}, d}});
}

Value Value::text(std::u16string t) {
    return Value(Kind::Text, Number{.shared = new Shared<std::u16string>{{}, std::move(t)}});
}

Value Value::bytes(Bytes b) {
    return Value(Kind::Bytes, Number{.shared = new Shared<Bytes>{{}, std::move(b)}});
}

void Value::release() {
    if (number_.shared->references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    switch (kind_) {
        case Kind::Decimal:
            delete static_cast<Shared<Decimal>*>(number_.shared);
            break;
        case Kind::Text:
            delete static_cast<Shared<std::u16string>*>(number_.shared);
            break;
        default:
            delete static_cast<Shared<Bytes>*>(number_.shared);
            break;
    }
}

}  // namespace jet
