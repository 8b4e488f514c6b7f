#include "shell/scramble.h"

#include <algorithm>
#include <cstdint>

#include "shell/kit/windows1254.h"

namespace shell {

namespace {

// The key byte that meets the text's character at `index` (from 0), that is
// position index + 1 counted from 1.
std::uint8_t keyByteFor(QStringView key, qsizetype index) {
    const qsizetype position = (index + 1) % key.size() + 1;
    return kit::windows1254Byte(key[position - 1]);
}

// A pair of hexadecimal digits (a last pair may be one digit); anything
// else reads 0.
std::uint8_t pairValue(QStringView pair) {
    const auto hexDigit = [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
    };
    if (pair.isEmpty() || !std::all_of(pair.begin(), pair.end(), hexDigit))
        return 0;
    return static_cast<std::uint8_t>(pair.toUInt(nullptr, 16));
}

}  // namespace

QString sifrele(QStringView key, QStringView text) {
    QString hex;
    hex.reserve(text.size() * 2);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int scrambled = kit::windows1254Byte(text[i]) ^ keyByteFor(key, i);
        hex += QStringLiteral("%1").arg(scrambled, 2, 16, QLatin1Char('0')).toUpper();
    }
    return hex;
}

QString sifrecoz(QStringView key, QStringView hex) {
    const qsizetype half = hex.size() / 2;
    const qsizetype rounds = (hex.size() % 2 == 1 && half % 2 == 1) ? half + 1 : half;
    QString text;
    text.reserve(rounds);
    for (qsizetype i = 0; i < rounds; ++i) {
        text += kit::windows1254Char(pairValue(hex.mid(2 * i, 2)) ^ keyByteFor(key, i));
    }
    return text;
}

}  // namespace shell
