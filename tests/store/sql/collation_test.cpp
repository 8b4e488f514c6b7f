#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/sql/collation.h"

namespace {

using jet::Value;

TEST(Collation, TurkishAlphabetOrderAndCase) {
    // Shuffled on purpose: the sort must restore the Turkish alphabet.
    std::vector<std::u16string> words = {
        u"zeytin", u"ümit", u"şeker", u"ırmak", u"çay",  u"öğle", u"ilk", u"ğ",  u"cam", u"ucuz",
        u"sabah",  u"otlu", u"hamur", u"gece",  u"dere", u"Ali",  u"ana", u"10", u" a",  u"ağaç"};
    std::stable_sort(words.begin(), words.end(),
                     [](const auto& a, const auto& b) { return sql::compareText(a, b) < 0; });
    std::vector<std::u16string> expected = {u" a",    u"10",    u"ağaç", u"Ali",  u"ana",
                                            u"cam",   u"çay",   u"dere", u"gece", u"ğ",
                                            u"hamur", u"ırmak", u"ilk",  u"otlu", u"öğle",
                                            u"sabah", u"şeker", u"ucuz", u"ümit", u"zeytin"};
    EXPECT_EQ(words, expected);

    // Case under Turkish rules: I is the capital of ı, İ of i.
    EXPECT_EQ(sql::compareText(u"IRMAK", u"ırmak"), 0);
    EXPECT_EQ(sql::compareText(u"İLK", u"ilk"), 0);
    EXPECT_LT(sql::compareText(u"IRMAK", u"ilk"), 0);
    EXPECT_GT(sql::compareText(u"İLK", u"ırmak"), 0);
    EXPECT_EQ(sql::compareText(u"ÇĞÖŞÜ", u"çğöşü"), 0);
    EXPECT_TRUE(sql::equalText(u"Yemek Ücretini Ödeyiniz", u"YEMEK ÜCRETİNİ ÖDEYİNİZ"));
    EXPECT_FALSE(sql::equalText(u"KIZ", u"kiz"));
    EXPECT_FALSE(sql::equalText(u"ali", u"al"));

    // Accents respected: á is not a, but sits right after it.
    EXPECT_FALSE(sql::equalText(u"a", u"á"));
    EXPECT_LT(sql::compareText(u"a", u"á"), 0);
    EXPECT_LT(sql::compareText(u"á", u"b"), 0);
    EXPECT_EQ(sql::compareText(u"Kâzım", u"KÂZIM"), 0);
    EXPECT_LT(sql::compareText(u"Kazım", u"Kâzım"), 0);
    // Outside the table: by code unit, after the letters.
    EXPECT_LT(sql::compareText(u"z", u"\u0416"), 0);
    EXPECT_LT(sql::compareText(u"\u0416", u"\u0417"), 0);
    // A prefix sorts first.
    EXPECT_LT(sql::compareText(u"ad", u"ada"), 0);
}

TEST(Collation, NamesFoldEveryI) {
    EXPECT_TRUE(sql::sameName(u"yıl", u"YIL"));
    EXPECT_TRUE(sql::sameName(u"Adi", u"ADI"));
    EXPECT_TRUE(sql::sameName(u"TCKimlikno", u"TCKimlikNo"));
    EXPECT_TRUE(sql::sameName(u"İsim", u"isim"));
    EXPECT_TRUE(sql::sameName(u"ısım", u"İSİM"));
    EXPECT_TRUE(sql::sameName(u"yemek.gün", u"YEMEK.GÜN"));
    EXPECT_FALSE(sql::sameName(u"gun", u"gün"));
    EXPECT_FALSE(sql::sameName(u"ad", u"adi"));
}

TEST(Collation, ValuesNullFirstNumbersDatesTexts) {
    jet::Decimal half{false, 1, 0, 5};  // 0.5
    std::vector<Value> values = {Value::text(u"b"),
                                 Value::integer(3),
                                 Value(),
                                 Value::real(2.5),
                                 Value::date(jet::Date{45000.0}),
                                 Value::currency(jet::Currency{30000}),  // 3.0000
                                 Value::decimal(half),
                                 Value::boolean(true),  // -1
                                 Value::text(u"A"),
                                 Value::bytes({1, 2}),
                                 Value::date(jet::Date{1.0}),
                                 Value()};
    std::vector<int> order(values.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        order[i] = static_cast<int>(i);
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return sql::compareValues(values[a], values[b]) < 0; });
    // Nulls first and in their original order; 3 and 3.0000 are equal and
    // keep their order too.
    EXPECT_EQ(order, (std::vector<int>{2, 11, 7, 6, 3, 1, 5, 10, 4, 8, 0, 9}));
    EXPECT_EQ(sql::compareValues(Value::integer(3), Value::currency(jet::Currency{30000})), 0);
    EXPECT_LT(sql::compareValues(Value::bytes({1, 2}), Value::bytes({1, 3})), 0);
    EXPECT_LT(sql::compareValues(Value::bytes({1}), Value::bytes({1, 0})), 0);
    EXPECT_EQ(sql::compareValues(Value::text(u"Şeker"), Value::text(u"şEKER")), 0);
}

}  // namespace
