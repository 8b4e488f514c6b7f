#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace jet {

// Currency: a signed count of ten-thousandths, as Jet stores it.
struct Currency {
    std::int64_t tenThousandths = 0;
    friend bool operator==(const Currency&, const Currency&) = default;
};

// A calendar date and time of day, to the second.
struct CivilDateTime {
    int year = 1899;
    int month = 12;
    int day = 30;
    int hour = 0;
    int minute = 0;
    int second = 0;
    friend bool operator==(const CivilDateTime&, const CivilDateTime&) = default;
};

// Date/Time as Jet stores it: the OLE automation date, days since 30 December
// 1899; the fraction is the time of day, also for negative days (-1.25 is
// 29 December 1899, 06:00).
struct Date {
    double oleDays = 0.0;

    static Date fromCivil(const CivilDateTime& civil);
    // Rounds to the nearest second.
    CivilDateTime toCivil() const;
    friend bool operator==(const Date&, const Date&) = default;
};

// Decimal: a 96-bit unsigned magnitude (Jet keeps 128 bits, Access uses 96),
// a sign and a count of digits after the point.
struct Decimal {
    bool negative = false;
    std::uint8_t scale = 0;
    std::uint64_t high = 0;  // bits 64..127 of the magnitude
    std::uint64_t low = 0;   // bits 0..63

    // Plain decimal notation, such as "-12.50" for scale 2.
    std::string toString() const;
    friend bool operator==(const Decimal&, const Decimal&) = default;
};

using Bytes = std::vector<std::uint8_t>;

// One value of a column: Null or a value of one of Jet's kinds. Byte, Integer
// and Long Integer are Integer; Single and Double are Double (a Single widens
// to a double exactly); Text and Memo are Text (UTF-16); Binary, OLE Object
// and Replication ID are Bytes.
class Value {
public:
    enum class Kind { Null, Boolean, Integer, Double, Currency, Date, Decimal, Text, Bytes };

    Value() = default;
    static Value boolean(bool b) { return Value(Storage(std::in_place_index<1>, b)); }
    static Value integer(std::int32_t i) { return Value(Storage(std::in_place_index<2>, i)); }
    static Value real(double d) { return Value(Storage(std::in_place_index<3>, d)); }
    static Value currency(Currency c) { return Value(Storage(std::in_place_index<4>, c)); }
    static Value date(Date d) { return Value(Storage(std::in_place_index<5>, d)); }
    static Value decimal(Decimal d) { return Value(Storage(std::in_place_index<6>, d)); }
    static Value text(std::u16string t) {
        return Value(Storage(std::in_place_index<7>, std::move(t)));
    }
    static Value bytes(Bytes b) { return Value(Storage(std::in_place_index<8>, std::move(b))); }

    Kind kind() const { return static_cast<Kind>(storage_.index()); }
    bool isNull() const { return kind() == Kind::Null; }

    // REQUIRES: kind() is the kind asked for.
    bool asBoolean() const { return std::get<1>(storage_); }
    std::int32_t asInteger() const { return std::get<2>(storage_); }
    double asDouble() const { return std::get<3>(storage_); }
    Currency asCurrency() const { return std::get<4>(storage_); }
    Date asDate() const { return std::get<5>(storage_); }
    const Decimal& asDecimal() const { return std::get<6>(storage_); }
    const std::u16string& asText() const { return std::get<7>(storage_); }
    const Bytes& asBytes() const { return std::get<8>(storage_); }

    friend bool operator==(const Value&, const Value&) = default;

private:
    using Storage = std::variant<std::monostate, bool, std::int32_t, double, Currency, Date,
                                 Decimal, std::u16string, Bytes>;
    explicit Value(Storage storage) : storage_(std::move(storage)) {}

    Storage storage_;
};

}  // namespace jet
