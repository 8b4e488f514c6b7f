#include "collation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace sql {
namespace {

// Weights of letters start above every ASCII code unit, so that blanks,
// digits and punctuation sort before letters. Each letter of the alphabet
// below gets a block of kVariants weights: the plain letter first, then its
// accented forms.
constexpr std::uint32_t kLetterBase = 0x100;
constexpr std::uint32_t kVariants = 8;
// Characters outside the table sort after every letter, by code unit.
constexpr std::uint32_t kOtherBase = 0x10000;

constexpr std::u16string_view kAlphabet = u"abcçdefgğhıijklmnoöpqrsştuüvwxyz";

// Weights for U+0000..U+017F (ASCII, Latin-1, Latin Extended-A, where ğ, ı,
// İ and ş live); 0 means "not a letter": weight is the code unit, or
// kOtherBase + code unit above ASCII.
struct Table {
    std::array<std::uint32_t, 0x180> weight{};
    // The lower-case letter under Turkish rules, or the character itself.
    std::array<char16_t, 0x180> lower{};
};

Table makeTable() {
    Table t;
    for (char16_t c = 0; c < 0x180; ++c) {
        t.lower[c] = c;
    }
    auto letter = [&](char16_t lowerCase, char16_t upperCase, char16_t base,
                      std::uint32_t variant) {
        std::size_t position = kAlphabet.find(base);
        std::uint32_t w = kLetterBase + static_cast<std::uint32_t>(position) * kVariants + variant;
        t.weight[lowerCase] = w;
        t.lower[lowerCase] = lowerCase;
        if (upperCase != 0) {
            t.weight[upperCase] = w;
            t.lower[upperCase] = lowerCase;
        }
    };
    for (char16_t c : kAlphabet) {
        char16_t upper = 0;
        if (c >= u'a' && c <= u'z') {
            upper = static_cast<char16_t>(c - u'a' + u'A');
        }
        switch (c) {
            case u'ç':
                upper = u'Ç';
                break;
            case u'ğ':
                upper = u'Ğ';
                break;
            case u'ı':
                upper = u'I';
                break;
            case u'i':
                upper = u'İ';
                break;
            case u'ö':
                upper = u'Ö';
                break;
            case u'ş':
                upper = u'Ş';
                break;
            case u'ü':
                upper = u'Ü';
                break;
            default:
                break;
        }
        letter(c, upper, c, 0);
    }
    // Accented letters of Latin-1 that Turkish does not count as letters of
    // their own: each right after its base letter.
    const std::u16string_view accentsA = u"àáâãäå", accentsE = u"èéêë", accentsI = u"ìíîï",
                              accentsO = u"òóôõø", accentsU = u"ùúû", accentsY = u"ýÿ";
    auto accents = [&](std::u16string_view lowers, char16_t base) {
        std::uint32_t variant = 1;
        for (char16_t c : lowers) {
            // Latin-1 upper case is 0x20 below lower case, except ÿ (its
            // upper case is outside the table).
            char16_t upper = c == u'ÿ' ? 0 : static_cast<char16_t>(c - 0x20);
            letter(c, upper, base, variant++);
        }
    };
    accents(accentsA, u'a');
    accents(accentsE, u'e');
    accents(accentsI, u'i');
    accents(accentsO, u'o');
    accents(accentsU, u'u');
    accents(accentsY, u'y');
    letter(u'ñ', u'Ñ', u'n', 1);
    letter(u'æ', u'Æ', u'a', 7);
    letter(u'ß', 0, u's', 1);
    return t;
}

const Table& table() {
    static const Table t = makeTable();
    return t;
}

std::uint32_t weight(const Table& t, char16_t c) {
    if (c < 0x180) {
        std::uint32_t w = t.weight[c];
        if (w != 0) {
            return w;
        }
        return c < 0x80 ? c : kOtherBase + c;
    }
    return kOtherBase + c;
}

// One letter for every case of i, ı, I and İ; other letters in lower case.
char16_t nameFold(char16_t c) {
    if (c == u'I' || c == u'İ' || c == u'ı') {
        return u'i';
    }
    return c < 0x180 ? table().lower[c] : c;
}

int sign(double d) {
    return d < 0 ? -1 : (d > 0 ? 1 : 0);
}

// The order of kinds when values of different kinds meet.
int kindRank(jet::Value::Kind kind) {
    using K = jet::Value::Kind;
    switch (kind) {
        case K::Null:
            return 0;
        case K::Boolean:
        case K::Integer:
        case K::Double:
        case K::Currency:
        case K::Decimal:
            return 1;
        case K::Date:
            return 2;
        case K::Text:
            return 3;
        case K::Bytes:
            return 4;
    }
    return 5;
}

double decimalToDouble(const jet::Decimal& d) {
    double magnitude =
        static_cast<double>(d.high) * 18446744073709551616.0 + static_cast<double>(d.low);
    double value = magnitude / std::pow(10.0, d.scale);
    return d.negative ? -value : value;
}

// REQUIRES: kindRank(v.kind()) == 1.
double numberOf(const jet::Value& v) {
    using K = jet::Value::Kind;
    switch (v.kind()) {
        case K::Boolean:
            return v.asBoolean() ? -1.0 : 0.0;  // Jet's True is -1
        case K::Integer:
            return v.asInteger();
        case K::Double:
            return v.asDouble();
        case K::Currency:
            return static_cast<double>(v.asCurrency().tenThousandths) / 10000.0;
        case K::Decimal:
            return decimalToDouble(v.asDecimal());
        default:
            return 0.0;
    }
}

}  // namespace

int compareText(std::u16string_view a, std::u16string_view b) {
    const Table& t = table();
    std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        if (a[i] == b[i]) {
            continue;
        }
        std::uint32_t wa = weight(t, a[i]), wb = weight(t, b[i]);
        if (wa != wb) {
            return wa < wb ? -1 : 1;
        }
    }
    return a.size() < b.size() ? -1 : (a.size() > b.size() ? 1 : 0);
}

bool equalText(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    const Table& t = table();
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (a[i] != b[i] && weight(t, a[i]) != weight(t, b[i])) {
            return false;
        }
    }
    return true;
}

bool sameName(std::u16string_view a, std::u16string_view b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (nameFold(a[i]) != nameFold(b[i])) {
            return false;
        }
    }
    return true;
}

int compareValues(const jet::Value& a, const jet::Value& b) {
    using K = jet::Value::Kind;
    int ra = kindRank(a.kind()), rb = kindRank(b.kind());
    if (ra != rb) {
        return ra < rb ? -1 : 1;
    }
    switch (ra) {
        case 0:
            return 0;
        case 1:
            if (a.kind() == K::Integer && b.kind() == K::Integer) {
                return a.asInteger() < b.asInteger() ? -1 : (a.asInteger() > b.asInteger() ? 1 : 0);
            }
            if (a.kind() == K::Currency && b.kind() == K::Currency) {
                auto x = a.asCurrency().tenThousandths, y = b.asCurrency().tenThousandths;
                return x < y ? -1 : (x > y ? 1 : 0);
            }
            return sign(numberOf(a) - numberOf(b));
        case 2:
            return sign(a.asDate().oleDays - b.asDate().oleDays);
        case 3:
            return compareText(a.asText(), b.asText());
        default: {
            const jet::Bytes &x = a.asBytes(), &y = b.asBytes();
            if (std::lexicographical_compare(x.begin(), x.end(), y.begin(), y.end())) {
                return -1;
            }
            return x == y ? 0 : 1;
        }
    }
}

}  // namespace sql
