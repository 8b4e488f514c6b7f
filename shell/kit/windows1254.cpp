#include "shell/kit/windows1254.h"

#include <array>

namespace kit {

namespace {

constexpr std::uint8_t questionMark = 0x3F;

// Characters of the bytes 0x80 to 0xFF. The bytes the chart leaves empty
// stand for the control character of the same number (see the header).
constexpr std::array<char16_t, 128> upperHalf = [] {
    std::array<char16_t, 128> table{};
    constexpr std::array<char16_t, 32> windowsSigns = {
        0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  // 0x80 € . ‚ ƒ „ … † ‡
        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x008E, 0x008F,  // 0x88 ˆ ‰ Š ‹ Œ . . .
        0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  // 0x90 . ‘ ’ “ ” • – —
        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x009E, 0x0178,  // 0x98 ˜ ™ š › œ . . Ÿ
    };
    for (std::size_t i = 0; i < windowsSigns.size(); ++i) {
        table[i] = windowsSigns[i];
    }
    // 0xA0 to 0xFF: Latin-1, with the Turkish letters in place of Ð Ý Þ ð ý þ.
    for (std::size_t i = 0x20; i < table.size(); ++i) {
        table[i] = static_cast<char16_t>(0x80 + i);
    }
    table[0xD0 - 0x80] = u'Ğ';
    table[0xDD - 0x80] = u'İ';
    table[0xDE - 0x80] = u'Ş';
    table[0xF0 - 0x80] = u'ğ';
    table[0xFD - 0x80] = u'ı';
    table[0xFE - 0x80] = u'ş';
    return table;
}();

}  // namespace

std::uint8_t windows1254Byte(QChar c) {
    const char16_t unit = c.unicode();
    if (unit < 0x80) {
        return static_cast<std::uint8_t>(unit);
    }
    // Most characters above ASCII are Latin-1 letters at their own place.
    if (unit <= 0xFF && upperHalf[unit - 0x80] == unit) {
        return static_cast<std::uint8_t>(unit);
    }
    for (std::size_t i = 0; i < upperHalf.size(); ++i) {
        if (upperHalf[i] == unit) {
            return static_cast<std::uint8_t>(0x80 + i);
        }
    }
    return questionMark;
}

QChar windows1254Char(std::uint8_t byte) {
    return byte < 0x80 ? QChar(byte) : QChar(upperHalf[byte - 0x80]);
}

QByteArray toWindows1254(QStringView text) {
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) {
        bytes.append(static_cast<char>(windows1254Byte(c)));
    }
    return bytes;
}

QString fromWindows1254(QByteArrayView bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char byte : bytes) {
        text.append(windows1254Char(static_cast<std::uint8_t>(byte)));
    }
    return text;
}

}  // namespace kit
