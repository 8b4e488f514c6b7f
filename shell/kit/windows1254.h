#pragma once

#include <cstdint>

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QStringView>

// Windows-1254, the ANSI code page of a Turkish Windows: one byte per
// character. The program uses it wherever the original system turned text
// into bytes (the password scramble, the display page), whatever the code
// page of the machine it runs on, so that stored values stay readable.
//
// Bytes 0x00-0x7F are ASCII. 0x80-0x9F hold the typographic signs of the
// Windows code pages (€ ‚ ƒ „ … † ‡ ˆ ‰ Š ‹ Œ ‘ ’ “ ” • – — ˜ ™ š › œ Ÿ).
// 0xA0-0xFF are Latin-1 except for the six Turkish letters: Ğ 0xD0, İ 0xDD,
// Ş 0xDE, ğ 0xF0, ı 0xFD, ş 0xFE.
//
// The code page chart leaves 0x81, 0x8D, 0x8E, 0x8F, 0x90, 0x9D and 0x9E
// without a character. Windows itself reads them as the control characters
// U+0081, U+008D, ... of the same number and writes those back to the same
// byte, and so do we: every byte value survives a trip to text and back.
// This matters for the scramble, whose XOR can produce any byte.
//
// Text is taken one UTF-16 code unit at a time, as the original's string
// functions did. A code unit that the code page does not hold, including
// each half of a character beyond U+FFFF, becomes "?" (0x3F), as Windows
// does when asked to convert without best-fit substitutes.

namespace kit {

// The byte of one character; 0x3F ("?") when the code page lacks it.
std::uint8_t windows1254Byte(QChar c);

// The character of one byte.
QChar windows1254Char(std::uint8_t byte);

// Text to bytes, one byte per UTF-16 code unit.
QByteArray toWindows1254(QStringView text);

// Bytes to text, one character per byte.
QString fromWindows1254(QByteArrayView bytes);

}  // namespace kit
