#include "shell/scramble.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include "shell/kit/windows1254.h"

namespace {

using shell::scrambleKey;
using shell::sifrecoz;
using shell::sifrele;

// Worked out by hand from the Windows-1254 bytes. The key "çömlek" is
// E7 F6 6D 6C 65 6B; text character i (from 1) meets key position
// (i mod 6) + 1, so the key bytes run F6 6D 6C 65 6B E7 F6 ...
//
//   "abc":     a 61^F6=97  b 62^6D=0F  c 63^6C=0F                 -> 970F0F
//   "Ğüzel1":  Ğ D0^F6=26  ü FC^6D=91  z 7A^6C=16  e 65^65=00
//              l 6C^6B=07  1 31^E7=D6                             -> 2691160007D6
//   "ışık123": ı FD^F6=0B  ş FE^6D=93  ı FD^6C=91  k 6B^65=0E
//              1 31^6B=5A  2 32^E7=D5  3 33^F6=C5                 -> 0B93910E5AD5C5
//   "ā" is not in the code page: ? 3F^F6=C9                       -> C9
TEST(ScrambleTest, HandWorkedVectors) {
    EXPECT_EQ(sifrele(scrambleKey, u"abc"), u"970F0F");
    EXPECT_EQ(sifrele(scrambleKey, u"Ğüzel1"), u"2691160007D6");
    EXPECT_EQ(sifrele(scrambleKey, u"ışık123"), u"0B93910E5AD5C5");
    EXPECT_EQ(sifrele(scrambleKey, u"ā"), u"C9");
    EXPECT_EQ(sifrecoz(scrambleKey, u"970F0F"), u"abc");
    EXPECT_EQ(sifrecoz(scrambleKey, u"2691160007D6"), u"Ğüzel1");
    EXPECT_EQ(sifrecoz(scrambleKey, u"0B93910E5AD5C5"), u"ışık123");
    EXPECT_EQ(sifrecoz(scrambleKey, u"C9"), u"?");
}

TEST(ScrambleTest, KeyStartsAtItsSecondLetter) {
    // Each character equal to the key letter it meets gives "00", so the
    // key itself, read from its second letter on and round again, does.
    EXPECT_EQ(sifrele(scrambleKey, u"ömlekçö"), u"00000000000000");
    EXPECT_EQ(sifrecoz(scrambleKey, u"00000000000000"), u"ömlekçö");
    EXPECT_NE(sifrele(scrambleKey, u"çömlek"), u"000000000000");
}

TEST(ScrambleTest, EveryCodePageCharacterComesBack) {
    QByteArray allBytes;
    for (int byte = 0; byte < 256; ++byte) {
        allBytes.append(static_cast<char>(byte));
    }
    const QString text = kit::fromWindows1254(allBytes);
    const QString hex = sifrele(scrambleKey, text);
    EXPECT_EQ(hex.size(), 2 * text.size());
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^[0-9A-F]*$")).match(hex).hasMatch());
    EXPECT_EQ(sifrecoz(scrambleKey, hex), text);
    EXPECT_EQ(sifrele(scrambleKey, u""), u"");
    EXPECT_EQ(sifrecoz(scrambleKey, u""), u"");
}

TEST(ScrambleTest, CaseAndForeignCharactersDoNotComeBack) {
    EXPECT_NE(sifrele(scrambleKey, u"Abc"), sifrele(scrambleKey, u"abc"));
    EXPECT_NE(sifrecoz(scrambleKey, sifrele(scrambleKey, u"abc")), u"Abc");
    // An emoji is two code units, each a "?".
    EXPECT_EQ(sifrele(scrambleKey, u"😀").size(), 4);
    EXPECT_EQ(sifrecoz(scrambleKey, sifrele(scrambleKey, u"Ж😀")), u"???");
}

TEST(ScrambleTest, BadStoredValuesReadAsFarAsTheyGo) {
    // Rounds: half the length, a half rounded to the even neighbour; a short
    // last pair reads its one digit.
    EXPECT_EQ(sifrecoz(scrambleKey, u"9"), u"");
    EXPECT_EQ(sifrecoz(scrambleKey, u"970"), u"am");  // 0^6D = 'm'
    EXPECT_EQ(sifrecoz(scrambleKey, u"970F0"), u"ab");
    EXPECT_EQ(sifrecoz(scrambleKey, u"970F0F0"), u"abce");  // 0^65 = 'e'
    EXPECT_EQ(sifrecoz(scrambleKey, u"970f0f"), u"abc");
    // A pair that is not hexadecimal reads 0, whatever its first digit.
    EXPECT_EQ(sifrecoz(scrambleKey, u"ZZ"), u"ö");  // 00^F6
    EXPECT_EQ(sifrecoz(scrambleKey, u"1Z"), u"ö");
    EXPECT_EQ(sifrecoz(scrambleKey, u"Z1970F"), u"öúc");  // 97^6D = FA, 0F^6C = 63
}

}  // namespace
