#include "shell/kit/windows1254.h"

#include <iconv.h>

#include <algorithm>
#include <array>

#include <gtest/gtest.h>

namespace {

constexpr std::array<std::uint8_t, 7> unassignedBytes = {0x81, 0x8D, 0x8E, 0x8F, 0x90, 0x9D, 0x9E};

bool isUnassigned(int byte) {
    return std::find(unassignedBytes.begin(), unassignedBytes.end(), byte) != unassignedBytes.end();
}

// The character of one byte as the C library's own CP1254 table has it.
char16_t characterByIconv(iconv_t converter, std::uint8_t byte) {
    char in = static_cast<char>(byte);
    std::array<char, 2> out{};
    char* inPointer = &in;
    char* outPointer = out.data();
    std::size_t inLeft = 1;
    std::size_t outLeft = out.size();
    if (iconv(converter, &inPointer, &inLeft, &outPointer, &outLeft) == static_cast<size_t>(-1)) {
        return 0;
    }
    return static_cast<char16_t>(static_cast<std::uint8_t>(out[0]) |
                                 static_cast<std::uint8_t>(out[1]) << 8);
}

TEST(Windows1254Test, EveryByteAgreesWithTheCLibraryAndComesBack) {
    const iconv_t converter = iconv_open("UTF-16LE", "CP1254");
    ASSERT_NE(converter, reinterpret_cast<iconv_t>(-1)) << "no CP1254 in iconv";
    QByteArray allBytes;
    for (int byte = 0; byte < 256; ++byte) {
        allBytes.append(static_cast<char>(byte));
        const QChar c = kit::windows1254Char(static_cast<std::uint8_t>(byte));
        if (isUnassigned(byte)) {
            EXPECT_EQ(c.unicode(), byte) << "byte " << byte;
        } else {
            EXPECT_EQ(c.unicode(), characterByIconv(converter, static_cast<std::uint8_t>(byte)))
                << "byte " << byte;
        }
    }
    iconv_close(converter);
    const QString text = kit::fromWindows1254(allBytes);
    ASSERT_EQ(text.size(), 256);
    EXPECT_EQ(kit::toWindows1254(text), allBytes);
}

TEST(Windows1254Test, TurkishLettersAndSignsHaveTheirBytes) {
    EXPECT_EQ(kit::toWindows1254(u"ĞğİıŞşÇçÖöÜü"),
              QByteArray("\xD0\xF0\xDD\xFD\xDE\xFE\xC7\xE7\xD6\xF6\xDC\xFC"));
    EXPECT_EQ(kit::toWindows1254(u"€‚ƒ„…†‡ˆ‰Š‹Œ‘’“”•–—˜™š›œŸ"),
              QByteArray("\x80\x82\x83\x84\x85\x86\x87\x88\x89\x8A\x8B\x8C\x91\x92\x93\x94\x95\x96"
                         "\x97\x98\x99\x9A\x9B\x9C\x9F"));
    EXPECT_EQ(kit::fromWindows1254("Kay\xFDt \xDE"
                                   "ube"),
              u"Kayıt Şube");
}

TEST(Windows1254Test, CharactersOutsideBecomeQuestionMarks) {
    // ā and Ж belong to other code pages, Ð and Ý are Latin-1 letters whose
    // places the Turkish letters took, U+0080 is a control character without
    // a byte here, and an emoji is two UTF-16 code units, each a "?".
    EXPECT_EQ(kit::toWindows1254(u"āЖÐÝ\u0080"), QByteArray("?????"));
    EXPECT_EQ(kit::toWindows1254(u"a😀b"), QByteArray("a??b"));
    EXPECT_EQ(kit::toWindows1254(u""), QByteArray());
}

}  // namespace
