#include "store/jet/value.h"

#include <gtest/gtest.h>

#include "store/jet/bytes.h"
#include "store/jet/text.h"

namespace jet {
namespace {

TEST(Value, DatesConvertBothWays) {
    const auto civil = [](double days) { return Date{days}.toCivil(); };
    EXPECT_EQ(civil(0), (CivilDateTime{1899, 12, 30, 0, 0, 0}));
    EXPECT_EQ(civil(2.5), (CivilDateTime{1900, 1, 1, 12, 0, 0}));
    EXPECT_EQ(civil(45931), (CivilDateTime{2025, 10, 1, 0, 0, 0}));
    EXPECT_EQ(civil(60), (CivilDateTime{1900, 2, 28, 0, 0, 0}));
    EXPECT_EQ(civil(61), (CivilDateTime{1900, 3, 1, 0, 0, 0}));  // 1900 was no leap year
    // Before day zero the fraction still counts forward from midnight.
    EXPECT_EQ(civil(-1.25), (CivilDateTime{1899, 12, 29, 6, 0, 0}));
    // 23:59:59.6 rounds to the next day, not to 24:00:00.
    EXPECT_EQ(civil(45931 + 86399.6 / 86400), (CivilDateTime{2025, 10, 2, 0, 0, 0}));
    EXPECT_EQ(civil(45931 + (12 * 3600 + 31 * 60 + 5) / 86400.0),
              (CivilDateTime{2025, 10, 1, 12, 31, 5}));

    for (const CivilDateTime& moment :
         {CivilDateTime{2026, 2, 28, 23, 59, 59}, CivilDateTime{2024, 2, 29, 7, 3, 15},
          CivilDateTime{1899, 12, 29, 6, 0, 0}, CivilDateTime{1753, 1, 1, 0, 0, 1},
          CivilDateTime{9999, 12, 31, 23, 59, 59}, CivilDateTime{100, 1, 1, 0, 0, 0}}) {
        EXPECT_EQ(Date::fromCivil(moment).toCivil(), moment);
    }
    EXPECT_EQ(Date::fromCivil({1899, 12, 29, 6, 0, 0}).oleDays, -1.25);
    EXPECT_EQ(Date::fromCivil({2025, 10, 1, 0, 0, 0}).oleDays, 45931.0);
}

TEST(Value, DecimalsPrintExactly) {
    EXPECT_EQ((Decimal{false, 2, 0, 1250}.toString()), "12.50");
    EXPECT_EQ((Decimal{true, 4, 0, 5}.toString()), "-0.0005");
    EXPECT_EQ((Decimal{false, 0, 0, 0}.toString()), "0");
    // 2^96 - 1, the largest magnitude Access stores.
    EXPECT_EQ((Decimal{false, 0, 0xffffffffULL, ~0ULL}.toString()),
              "79228162514264337593543950335");
    EXPECT_EQ((Decimal{false, 28, 0xffffffffULL, ~0ULL}.toString()),
              "7.9228162514264337593543950335");
}

TEST(Value, KindsNullAndEquality) {
    EXPECT_TRUE(Value().isNull());
    EXPECT_EQ(Value().kind(), Value::Kind::Null);
    EXPECT_EQ(Value::integer(7), Value::integer(7));
    EXPECT_NE(Value::integer(7), Value::real(7.0));  // the kinds differ
    EXPECT_NE(Value::text(u"Işık"), Value::text(u"ışık"));
    EXPECT_EQ(Value::currency({35000}).asCurrency().tenThousandths, 35000);
    EXPECT_EQ(Value::bytes({1, 2}).asBytes().size(), 2u);
    EXPECT_TRUE(Value::boolean(false).kind() == Value::Kind::Boolean);
}

std::u16string decode(std::initializer_list<std::uint8_t> bytes) {
    const std::vector<std::uint8_t> stored(bytes);
    return decodeText(ByteView(stored.data(), stored.size()));
}

TEST(Text, UnicodeCompressionAndUtf8) {
    EXPECT_EQ(decode({0x31, 0x01, 0x73, 0x00}), u"ıs");
    // Compressed: one-byte run, switch, two-byte run, switch, one-byte run.
    EXPECT_EQ(decode({0xff, 0xfe, 'a', 'b', 0x00, 0x31, 0x01, 0x5f, 0x01, 0x00, 'c'}), u"abışc");
    EXPECT_EQ(decode({0xff, 0xfe}), u"");
    EXPECT_EQ(decode({'a', 0x00, 'b'}), u"a");  // a lone last byte carries no character

    const std::u16string turkish = u"çğıİöşüÇĞÖŞÜ Öğle yemeği";
    EXPECT_EQ(fromUtf8(toUtf8(turkish)), turkish);
    EXPECT_EQ(toUtf8(u"Işık"), "I\xc5\x9f\xc4\xb1k");
    EXPECT_EQ(toUtf8(u"\U0001F600"), "\xf0\x9f\x98\x80");
    EXPECT_EQ(toUtf8(std::u16string(1, char16_t(0xd800))), "\xef\xbf\xbd");
    EXPECT_EQ(fromUtf8("a\xff" "b"), u"a\ufffdb");
    EXPECT_EQ(fromUtf8("\xc0\x80"), u"\ufffd\ufffd");  // overlong forms are refused
    EXPECT_EQ(fromUtf8("\xf0\x9f\x98\x80"), u"\U0001F600");
}

}  // namespace
}  // namespace jet
