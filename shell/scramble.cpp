#include "shell/scramble.h"

#include <cstdint>

#include "shell/kit/vb_number.h"
#include "shell/kit/windows1254.h"

namespace shell {

namespace {

// The key byte that meets the text's character at `index` (from 0), that is
// position index + 1 counted from 1.
std::uint8_t keyByteFor(QStringView key, qsizetype index) {
    const qsizetype position = (index + 1) % key.size() + 1;
    return kit::windows1254Byte(key[position - 1]);
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
        const QString pair = QStringLiteral("&H") + hex.mid(2 * i, 2).toString();
        const auto value = static_cast<std::uint8_t>(kit::Val(pair));
        text += kit::windows1254Char(value ^ keyByteFor(key, i));
    }
    return text;
}

}  // namespace shell
