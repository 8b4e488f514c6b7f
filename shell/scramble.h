#pragma once

#include <QString>
#include <QStringView>

// The password scramble: a fixed-key XOR of the password's Windows-1254
// bytes, written as hexadecimal text, two upper-case digits per character.
// The settings window stores `sifrele(scrambleKey, password)` in the
// settings row; the login window compares `sifrecoz(scrambleKey, stored)`
// with what was typed.
//
// The text's character at position i (from 1) meets the key's character at
// position (i mod key length) + 1: with a six-letter key the positions run
// 2, 3, 4, 5, 6, 1, 2, ... This offset is part of the stored format.
//
// Stored values depend on the key's bytes in Windows-1254, so both routines
// use that code page whatever the machine's; a character outside it is
// scrambled as "?" and cannot come back.

namespace shell {

// The program's scramble key.
inline constexpr QStringView scrambleKey = u"çömlek";

// REQUIRES: key is not empty.
QString sifrele(QStringView key, QStringView text);

// The number of pairs read is half the length rounded half to even, as the
// original's rounding does: "ABC" is read as two pairs, "ABCDE" as two.
// A pair that is not hexadecimal reads 0: "ZZ", "Z1" and "1Z" alike.
// REQUIRES: key is not empty.
QString sifrecoz(QStringView key, QStringView hex);

}  // namespace shell
