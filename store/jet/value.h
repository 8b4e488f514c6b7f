#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
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
//
// Sixteen bytes, as tables of many rows hold millions of them: numbers lie
// in the value itself, texts, bytes and decimals in a block shared by the
// copies of a value (they never change), counted atomically so that copies
// may live in several threads.
class Value {
public:
    enum class Kind : std::uint8_t {
        Null,
        Boolean,
        Integer,
        Double,
        Currency,
        Date,
        Decimal,
        Text,
        Bytes
    };

    Value() = default;
    Value(const Value& other) : kind_(other.kind_), number_(other.number_) { retain(); }
    Value(Value&& other) noexcept : kind_(other.kind_), number_(other.number_) {
        other.kind_ = Kind::Null;
    }
    Value& operator=(const Value& other) {
        Value copy(other);
        swap(copy);
        return *this;
    }
    Value& operator=(Value&& other) noexcept {
        Value taken(std::move(other));
        swap(taken);
        return *this;
    }
    ~Value() {
        if (isShared())
            release();
    }

    static Value boolean(bool b) { return Value(Kind::Boolean, Number{.boolean = b}); }
    static Value integer(std::int32_t i) { return Value(Kind::Integer, Number{.integer = i}); }
    static Value real(double d) { return Value(Kind::Double, Number{.real = d}); }
    static Value currency(Currency c) { return Value(Kind::Currency, Number{.currency = c}); }
    static Value date(Date d) { return Value(Kind::Date, Number{.date = d}); }
    static Value decimal(Decimal d);
    static Value text(std::u16string t);
    static Value bytes(Bytes b);

    Kind kind() const { return kind_; }
    bool isNull() const { return kind() == Kind::Null; }

    // REQUIRES: kind() is the kind asked for.
    bool asBoolean() const { return number_.boolean; }
    std::int32_t asInteger() const { return number_.integer; }
    double asDouble() const { return number_.real; }
    Currency asCurrency() const { return number_.currency; }
    Date asDate() const { return number_.date; }
    const Decimal& asDecimal() const { return sharedAs<Decimal>(); }
    const std::u16string& asText() const { return sharedAs<std::u16string>(); }
    const Bytes& asBytes() const { return sharedAs<Bytes>(); }

    // The same kind and the same value (a Double NaN equals nothing).
    friend bool operator==(const Value& a, const Value& b) {
        if (a.kind_ != b.kind_)
            return false;
        switch (a.kind_) {
            case Value::Kind::Null:
                return true;
            case Value::Kind::Boolean:
                return a.asBoolean() == b.asBoolean();
            case Value::Kind::Integer:
                return a.asInteger() == b.asInteger();
            case Value::Kind::Double:
                return a.asDouble() == b.asDouble();
            case Value::Kind::Currency:
                return a.asCurrency() == b.asCurrency();
            case Value::Kind::Date:
                return a.asDate() == b.asDate();
            case Value::Kind::Decimal:
                return a.asDecimal() == b.asDecimal();
            case Value::Kind::Text:
                return a.number_.shared == b.number_.shared || a.asText() == b.asText();
            case Value::Kind::Bytes:
                return a.number_.shared == b.number_.shared || a.asBytes() == b.asBytes();
        }
        return false;
    }

private:
    struct Counted {
        std::atomic<std::uint32_t> references{1};
    };
    template <typename T>
    struct Shared : Counted {
        T value;
    };
    union Number {
        bool boolean;
        std::int32_t integer;
        double real;
        Currency currency;
        Date date;
        Counted* shared;
    };

    Value(Kind kind, Number number) : kind_(kind), number_(number) {}

    bool isShared() const { return kind_ >= Kind::Decimal; }
    template <typename T>
    const T& sharedAs() const {
        return static_cast<const Shared<T>*>(number_.shared)->value;
    }
    void retain() {
        if (isShared())
            number_.shared->references.fetch_add(1, std::memory_order_relaxed);
    }
    void release();  // REQUIRES: isShared()
    void swap(Value& other) noexcept {
        std::swap(kind_, other.kind_);
        std::swap(number_, other.number_);
    }

    Kind kind_ = Kind::Null;
    Number number_{.shared = nullptr};
};

}  // namespace jet
