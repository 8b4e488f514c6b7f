#include "shell/kit/vb_number.h"

#include <limits>
#include <stdexcept>

#include <gtest/gtest.h>

#include "store/data_error.h"

namespace {

TEST(VbNumberTest, ValReadsTheLeadingNumberWithAPoint) {
    const struct {
        const char16_t* text;
        double value;
    } cases[] = {
        {u"", 0},
        {u"abc", 0},
        {u"-", 0},
        {u"123", 123},
        {u" 1 2 3", 123},
        {u"\t\r\n7", 7},
        {u"    1615 198th Street N.E.", 1615198},
        {u"24 and 57", 24},
        {u"12345678901", 12345678901.0},
        {u"012345678901", 12345678901.0},
        {u"12.5.6", 12.5},
        {u"1,5", 1},
        {u".5", 0.5},
        {u"- 5", -5},
        {u"+5", 5},
        {u"+-5", 0},
        {u"1e3", 1000},
        {u"1 E + 3", 1000},
        {u"2.5D-1", 0.25},
        {u"1e", 1},
        {u"1e-400", 0},
        {u"&HFFFF", -1},
        {u"&H7FFF", 32767},
        {u"&H8000", -32768},
        {u"&H0000FFFF", -1},
        {u"&H10000", 65536},
        {u"&HFFFFFFFF", -1},
        {u"&hff", 255},
        {u"&H1G", 1},
        {u"&HG1", 0},
        {u"&H", 0},
        {u"&O17", 15},
        {u"&O177777", -1},
        {u"&O200000", 65536},
        {u"&17", 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(kit::Val(c.text), c.value) << QString::fromUtf16(c.text).toStdString();
    }
    EXPECT_THROW(kit::Val(u"1e400"), std::overflow_error);
    EXPECT_THROW(kit::Val(u"&H123456789"), std::overflow_error);
    EXPECT_THROW(kit::Val(u"&O40000000000"), std::overflow_error);
}

TEST(VbNumberTest, IsNumericFollowsTheTurkishNumberFormat) {
    const char16_t* numeric[] = {
        u"123", u" 12 ",   u"1,5",  u",5",   u"5,",   u"1.5", u"1.000",   u"1.2.3",   u"1,5.3",
        u"1e3", u"1,5E-3", u"&H10", u"&hff", u"&O17", u"+5",  u"-5",      u"5-",      u"5+",
        u"(5)", u"- 5",    u"12TL", u"TL12", u"-5₺",  u"0",   u"\t7\r\n", u"\u00A05", u"&HFFFFFFFF",
    };
    for (const char16_t* text : numeric) {
        EXPECT_TRUE(kit::IsNumeric(text)) << QString::fromUtf16(text).toStdString();
    }
    const char16_t* notNumeric[] = {
        u"",   u"  ",  u"12a", u"-",   u"+",           u".",     u",",  u".5", u"1,5,6", u"1 2",
        u"1e", u"1e+", u"1d3", u"e3",  u"--5",         u"-5-",   u"(5", u"5)", u"TL",    u"TL1e3",
        u"&H", u"&HG", u"&O8", u"&17", u"&H100000000", u"1e400", u"1$", u"١٢",
    };
    for (const char16_t* text : notNumeric) {
        EXPECT_FALSE(kit::IsNumeric(text)) << QString::fromUtf16(text).toStdString();
    }
}

TEST(VbNumberTest, CIntRoundsHalvesToEvenWithinSixteenBits) {
    EXPECT_EQ(kit::CInt(u" 11 "), 11);
    EXPECT_EQ(kit::CInt(u"2,5"), 2);
    EXPECT_EQ(kit::CInt(u"3,5"), 4);
    EXPECT_EQ(kit::CInt(u"-32768"), -32768);
    EXPECT_EQ(kit::CInt(u"&HFFFF"), -1);
    EXPECT_THROW(kit::CInt(u"32767,5"), std::overflow_error);
    EXPECT_THROW(kit::CInt(u"1e9"), std::overflow_error);
    EXPECT_THROW(kit::CInt(u""), store::DataError);
    EXPECT_THROW(kit::CInt(u"Mart"), store::DataError);
}

TEST(VbNumberTest, PlainNumberWritesFifteenDigitsWithAComma) {
    const struct {
        double value;
        const char* text;
    } cases[] = {
        {0, "0"},
        {-0.0, "0"},
        {12345678901, "12345678901"},
        {-42, "-42"},
        {100, "100"},
        {1.5, "1,5"},
        {-1.25, "-1,25"},
        {0.1 + 0.2, "0,3"},
        {1.0 / 3, "0,333333333333333"},
        {2.0 / 3, "0,666666666666667"},
        {1e14, "100000000000000"},
        {123456789012345, "123456789012345"},
        {999999999999999.4, "999999999999999"},
        {999999999999999.9, "1E+15"},
        {1e15, "1E+15"},
        {1234567890123456, "1,23456789012346E+15"},
        {-1e300, "-1E+300"},
        {0.0001, "0,0001"},
        {0.00001, "1E-05"},
        {2.5e-7, "2,5E-07"},
        {std::numeric_limits<double>::infinity(), "1,#INF"},
        {std::numeric_limits<double>::quiet_NaN(), "-1,#IND"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(kit::plainNumber(c.value), QString::fromLatin1(c.text)) << c.text;
    }
    // The identity-number filter writes what Val read, digit for digit.
    EXPECT_EQ(kit::plainNumber(kit::Val(u" 12345678901")), u"12345678901");
}

}  // namespace
