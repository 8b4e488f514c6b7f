#include "store/sql/filter.h"

#include <cmath>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/error.h"
#include "store/jet/text.h"
#include "store/sql/collation.h"
#include "store/sql/statement.h"
#include "tests/store/jet/test_files.h"

namespace {

using jet::Value;
using jet::testing::fixturesDir;
using Row = std::vector<Value>;

// A table of the school's database as a record set holds it.
struct Table {
    std::vector<std::u16string> names;
    std::vector<jet::ColumnType> types;
    std::vector<Row> rows;

    std::size_t column(std::u16string_view name) const {
        for (std::size_t i = 0; i < names.size(); ++i) {
            if (names[i] == name) {
                return i;
            }
        }
        ADD_FAILURE() << "no column";
        return 0;
    }
};

Table readTable(const char16_t* name) {
    jet::Database db((fixturesDir() / "kvl" / "kvl.mdb").string());
    jet::TableDefinition definition = db.table(name);
    Table table;
    for (const jet::Column& column : definition.columns) {
        table.names.push_back(column.name);
        table.types.push_back(column.type);
    }
    jet::TableCursor cursor = db.scan(definition);
    while (cursor.next()) {
        table.rows.emplace_back();
        cursor.values(table.rows.back());
    }
    return table;
}

// Rows the filter lets through.
std::size_t countFilter(const Table& table, std::u16string_view text) {
    sql::Filter filter = sql::parseFilter(text);
    sql::Filter::Binding binding = filter.bind(table.names, table.types);
    std::size_t count = 0;
    for (const Row& row : table.rows) {
        count += filter.matches(binding, row) ? 1 : 0;
    }
    return count;
}

// Rows for which `keep` holds: the expected answer, worked out directly.
std::size_t countWhere(const Table& table, const std::function<bool(const Row&)>& keep) {
    std::size_t count = 0;
    for (const Row& row : table.rows) {
        count += keep(row) ? 1 : 0;
    }
    return count;
}

bool textIs(const Value& v, std::u16string_view text) {
    return v.kind() == Value::Kind::Text && v.asText() == text;
}

TEST(FilterTest, SearchFormsOnTheRoster) {
    SKIP_WITHOUT_FIXTURES();
    Table ornek = readTable(u"ORNEK");
    ASSERT_EQ(ornek.rows.size(), 480u);
    const std::size_t numara = ornek.column(u"Numara");
    const std::size_t soyadi = ornek.column(u"Soyadi");
    const std::size_t adi = ornek.column(u"Adi");
    const std::size_t sinif = ornek.column(u"Sinif");
    const std::size_t tc = ornek.column(u"TCKimlikNo");

    // Class in quotes, under another spelling of the column.
    std::size_t class9A = countWhere(ornek, [&](const Row& r) { return textIs(r[sinif], u"9A"); });
    ASSERT_GT(class9A, 0u);
    EXPECT_EQ(countFilter(ornek, u" SINIF = '9A'"), class9A);
    EXPECT_EQ(countFilter(ornek, u" SINIF = '9a'"), class9A);  // case ignored
    EXPECT_EQ(countFilter(ornek, u" SINIF = 'NoSuchClass'"), 0u);

    // School number with like and no wildcard: equality; typed untrimmed.
    EXPECT_EQ(countFilter(ornek, u" Numara like 116"), 1u);
    EXPECT_EQ(countFilter(ornek, u" Numara like 116 "), 1u);
    EXPECT_EQ(countFilter(ornek, u" Numara like 11"), 0u);  // a partly typed number
    EXPECT_THROW(sql::parseFilter(u" Numara like 11a"), sql::Error);
    EXPECT_EQ(countFilter(ornek, u" Numara like 1e3"), countWhere(ornek, [&](const Row& r) {
                  return !r[numara].isNull() && r[numara].asInteger() == 1000;
              }));

    // Prefix searches on names, case ignored under Turkish rules.
    std::size_t startsAl = countWhere(ornek, [&](const Row& r) {
        return r[adi].kind() == Value::Kind::Text && r[adi].asText().starts_with(u"Al");
    });
    ASSERT_GT(startsAl, 0u);
    EXPECT_EQ(countFilter(ornek, u" Adi like 'al%'"), startsAl);
    EXPECT_EQ(countFilter(ornek, u" Adi like 'AL*'"), startsAl);
    std::size_t startsIsik = countWhere(ornek, [&](const Row& r) {
        return r[soyadi].kind() == Value::Kind::Text && r[soyadi].asText().starts_with(u"Işık");
    });
    ASSERT_GT(startsIsik, 0u);
    EXPECT_EQ(countFilter(ornek, u" Soyadi like 'ışık%'"), startsIsik);
    EXPECT_EQ(countFilter(ornek, u" Soyadi like 'IŞIK%'"), startsIsik);
    EXPECT_EQ(countFilter(ornek, u" Soyadi like 'işik%'"), 0u);  // i is not ı
    std::size_t startsOz = countWhere(ornek, [&](const Row& r) {
        return r[soyadi].kind() == Value::Kind::Text && r[soyadi].asText().starts_with(u"Öz");
    });
    ASSERT_GT(startsOz, 0u);
    EXPECT_EQ(countFilter(ornek, u" Soyadi like 'öz%'"), startsOz);
    EXPECT_EQ(countFilter(ornek, u" Soyadi like 'oz%'"), 0u);  // accents respected
    EXPECT_EQ(countFilter(ornek, u" Soyadi like '%'"),
              countWhere(ornek, [&](const Row& r) { return !r[soyadi].isNull(); }));

    // An apostrophe typed into the search breaks the text; doubled it is one.
    EXPECT_THROW(sql::parseFilter(u" Soyadi like 'O'Neil%'"), sql::Error);
    EXPECT_THROW(sql::parseFilter(u" Adi like 'D'%'"), sql::Error);
    EXPECT_EQ(countFilter(ornek, u" Soyadi like 'O''Neil%'"), 1u);
    EXPECT_EQ(countFilter(ornek, u" Soyadi = 'o''neil'"), 1u);

    // Identity number, bare, under the spelling "TCKimlikno".
    const Row& first = ornek.rows.front();
    ASSERT_EQ(first[tc].kind(), Value::Kind::Double);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.0f", first[tc].asDouble());
    std::u16string tcFilter = u"TCKimlikno=";
    for (const char* p = digits; *p != '\0'; ++p) {
        tcFilter.push_back(static_cast<char16_t>(*p));
    }
    EXPECT_EQ(countFilter(ornek, tcFilter), 1u);
    EXPECT_EQ(countFilter(ornek, u"TCKimlikno=0"), 0u);

    // Dates between #, month first.
    const std::size_t dogum = ornek.column(u"DogumTarihi");
    std::size_t born = countWhere(ornek, [&](const Row& r) {
        return !r[dogum].isNull() && r[dogum].asDate() == jet::Date::fromCivil({2008, 4, 16});
    });
    ASSERT_GT(born, 0u);
    EXPECT_EQ(countFilter(ornek, u"DogumTarihi = #4/16/2008#"), born);
    EXPECT_EQ(countFilter(ornek, u"DogumTarihi=#2008-04-16#"), born);
    std::size_t bornBefore = countWhere(ornek, [&](const Row& r) {
        return !r[dogum].isNull() &&
               r[dogum].asDate().oleDays < jet::Date::fromCivil({2008, 1, 1}).oleDays;
    });
    EXPECT_EQ(countFilter(ornek, u"DogumTarihi < #1/1/2008#"), bornBefore);
}

TEST(FilterTest, BoardersSexRoomAndNumber) {
    SKIP_WITHOUT_FIXTURES();
    Table pansiyon = readTable(u"Pansiyon");
    const std::size_t sex = pansiyon.column(u"CINSIYET");
    const std::size_t room = pansiyon.column(u"A_Ogr_Oda_No");
    const std::size_t first = pansiyon.column(u"ADI");
    const std::size_t number = pansiyon.column(u"A_Ogr_Okul_No");
    std::size_t girls = countWhere(pansiyon, [&](const Row& r) { return textIs(r[sex], u"K"); });
    std::size_t boys = countWhere(pansiyon, [&](const Row& r) { return textIs(r[sex], u"E"); });
    ASSERT_GT(girls, 0u);
    ASSERT_GT(boys, 0u);
    EXPECT_EQ(countFilter(pansiyon, u" CINSIYET= 'K'"), girls);
    EXPECT_EQ(countFilter(pansiyon, u" CINSIYET= 'E'"), boys);

    // The room: a number against a text column compares as text.
    std::size_t girlsIn10 = countWhere(
        pansiyon, [&](const Row& r) { return textIs(r[sex], u"K") && textIs(r[room], u"10"); });
    ASSERT_GT(girlsIn10, 0u);
    EXPECT_EQ(countFilter(pansiyon, u" A_Ogr_Oda_No =10  and  CINSIYET= 'K'"), girlsIn10);
    EXPECT_EQ(countFilter(pansiyon, u" A_Ogr_Oda_No =10  AND  CINSIYET= 'K'"), girlsIn10);
    EXPECT_EQ(countFilter(pansiyon, u" A_Ogr_Oda_No =10"),
              countWhere(pansiyon, [&](const Row& r) { return textIs(r[room], u"10"); }));

    // First name in another case than the column, joined with the sex.
    std::size_t boysH = countWhere(pansiyon, [&](const Row& r) {
        return textIs(r[sex], u"E") && r[first].kind() == Value::Kind::Text &&
               r[first].asText().starts_with(u"H");
    });
    EXPECT_EQ(countFilter(pansiyon, u" Adi like 'h%'  and  CINSIYET= 'E'"), boysH);
    EXPECT_EQ(countFilter(pansiyon, u" SOYADI like 'doğ%'"),
              countWhere(pansiyon, [&](const Row& r) {
                  return r[2].kind() == Value::Kind::Text && r[2].asText().starts_with(u"Doğ");
              }));
    // School number with like: equality.
    EXPECT_EQ(countFilter(pansiyon, u" A_Ogr_Okul_No like 2001"), 1u);
    EXPECT_EQ(countFilter(pansiyon, u" A_Ogr_Okul_No like 2001  and  CINSIYET= 'K'"),
              countWhere(pansiyon, [&](const Row& r) {
                  return textIs(r[sex], u"K") && r[number].asInteger() == 2001;
              }));

    // or, parentheses, and precedence of and over or.
    EXPECT_EQ(countFilter(pansiyon, u"CINSIYET='K' or CINSIYET='E'"), girls + boys);
    EXPECT_EQ(countFilter(pansiyon, u"CINSIYET='X' OR CINSIYET='E' and A_Ogr_Okul_No=2000"), 0u);
    EXPECT_EQ(countFilter(pansiyon, u"(CINSIYET='K' Or CINSIYET='E') And A_Ogr_Okul_No=2000"), 1u);
}

TEST(FilterTest, PermitsMonthsAndNulls) {
    SKIP_WITHOUT_FIXTURES();
    Table izinler = readTable(u"IZINLER");
    const std::size_t tc = izinler.column(u"TCKimlikNo");
    const std::size_t ay = izinler.column(u"ay");
    const std::size_t yil = izinler.column(u"yıl");
    const std::size_t note = izinler.column(u"aciklama");
    std::size_t november2026 = countWhere(izinler, [&](const Row& r) {
        return r[ay].asInteger() == 11 && r[yil].asInteger() == 2026;
    });
    ASSERT_GT(november2026, 0u);
    // Registration's test: a student in the present month, year as yıl and YIL.
    const Row* someone = nullptr;
    for (const Row& r : izinler.rows) {
        if (r[ay].asInteger() == 11 && r[yil].asInteger() == 2026 && !r[tc].isNull()) {
            someone = &r;
            break;
        }
    }
    ASSERT_NE(someone, nullptr);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.0f", (*someone)[tc].asDouble());
    std::u16string number(digits, digits + std::char_traits<char>::length(digits));
    EXPECT_EQ(countFilter(izinler, u"TCKimlikNo=" + number + u" And yıl=2026 And ay=11"), 1u);
    EXPECT_EQ(countFilter(izinler, u"TCKimlikNo=" + number + u" And YIL=2026 And AY=11"), 1u);
    EXPECT_EQ(countFilter(izinler, u"TCKimlikNo=" + number + u" And yıl=2026 And ay=3"), 0u);
    EXPECT_EQ(countFilter(izinler, u" ay=11 and yil=2026"), november2026);
    EXPECT_EQ(countFilter(izinler, u" ay = '11' and yıl=2026"), november2026);  // quoted number

    // Null is never equal, never different.
    std::size_t nullNotes = countWhere(izinler, [&](const Row& r) { return r[note].isNull(); });
    ASSERT_GT(nullNotes, 0u);
    EXPECT_EQ(countFilter(izinler, u"aciklama <> 'x'"), izinler.rows.size() - nullNotes);
    EXPECT_EQ(countFilter(izinler, u"aciklama = 'x' or aciklama <> 'x'"),
              izinler.rows.size() - nullNotes);

    // Orders on numbers.
    EXPECT_EQ(countFilter(izinler, u"ay >= 10 and ay<=11"), countWhere(izinler, [&](const Row& r) {
                  return r[ay].asInteger() >= 10 && r[ay].asInteger() <= 11;
              }));
    EXPECT_EQ(countFilter(izinler, u"ay<10"),
              countWhere(izinler, [&](const Row& r) { return r[ay].asInteger() < 10; }));
    EXPECT_EQ(countFilter(izinler, u"ay>10"),
              countWhere(izinler, [&](const Row& r) { return r[ay].asInteger() > 10; }));
}

TEST(FilterTest, MenusTallyAndMealLog) {
    SKIP_WITHOUT_FIXTURES();
    Table menuler = readTable(u"MENULER");
    const std::size_t ay = menuler.column(u"ay");
    std::size_t november =
        countWhere(menuler, [&](const Row& r) { return r[ay].asInteger() == 11; });
    ASSERT_GT(november, 0u);
    EXPECT_EQ(countFilter(menuler, u" ay=11"), november);
    EXPECT_EQ(countFilter(menuler, u" ay =11"), november);
    EXPECT_EQ(countFilter(menuler, u" ay=7"), 0u);
    EXPECT_EQ(countFilter(menuler, u" sabah like '%ÇORBA%'"),
              countWhere(menuler, [&](const Row& r) {
                  return r[2].kind() == Value::Kind::Text &&
                         r[2].asText().find(u"ÇORBA") != std::u16string::npos;
              }));

    Table tmp = readTable(u"TMP");
    ASSERT_EQ(tmp.rows.size(), 31u);
    for (int day : {1, 15, 31}) {
        std::u16string text = u"tarih=";
        for (char c : std::to_string(day)) {
            text.push_back(static_cast<char16_t>(c));
        }
        EXPECT_EQ(countFilter(tmp, text), 1u) << day;
    }

    // The meal log's date: a day given at midnight misses entries with a time of day.
    Table yemek = readTable(u"YEMEK");
    const std::size_t tarih = yemek.column(u"YEMEKTARIH");
    const double day = jet::Date::fromCivil({2025, 10, 15}).oleDays;
    std::size_t atMidnight = countWhere(yemek, [&](const Row& r) {
        return !r[tarih].isNull() && r[tarih].asDate().oleDays == day;
    });
    std::size_t thatDay = countWhere(yemek, [&](const Row& r) {
        return !r[tarih].isNull() && std::floor(r[tarih].asDate().oleDays) == day;
    });
    ASSERT_GT(atMidnight, 0u);
    EXPECT_EQ(countFilter(yemek, u"YEMEKTARIH=#10/15/2025#"), atMidnight);
    EXPECT_EQ(countFilter(yemek, u"YEMEKTARIH>=#10/15/2025# and YEMEKTARIH<#10/16/2025#"), thatDay);
    EXPECT_EQ(countFilter(yemek, u"ogun='öğle yemeği' and ACIKLAMA like 'yemek ücretini%'"),
              countWhere(yemek, [&](const Row& r) {
                  const Value& meal = r[yemek.column(u"ogun")];
                  const Value& note = r[yemek.column(u"ACIKLAMA")];
                  return textIs(meal, u"Öğle yemeği") && note.kind() == Value::Kind::Text &&
                         note.asText().starts_with(u"Yemek Ücretini");
              }));
}

TEST(FilterTest, InvalidTextsAndColumns) {
    const std::vector<std::u16string> names = {u"Adi", u"Numara", u"Tarih", u"resim"};
    const std::vector<jet::ColumnType> types = {jet::ColumnType::Text, jet::ColumnType::LongInteger,
                                                jet::ColumnType::DateTime, jet::ColumnType::Ole};
    const Row row = {Value::text(u"Ali"), Value::integer(7), Value(), Value()};

    for (const char16_t* text :
         {u"Adi", u"Adi =", u"Adi = 'Ali", u"= 'Ali'", u"Adi == 'Ali'", u"Adi like Ali",
          u"Adi = 'Ali' and", u"Adi = 'Ali' xor Numara = 7", u"(Adi = 'Ali'", u"Adi = 'Ali')",
          u"Adi like '%li'", u"Adi like 'A%i'", u"Tarih = #13/1/2025#", u"Tarih = #2/30/2025#",
          u"Tarih = #1/1/2025", u"Adi like #1/1/2025#", u"Numara = 7x", u"Numara = -",
          u"[Adi = 'x'"}) {
        EXPECT_THROW(sql::parseFilter(text), sql::Error) << jet::toUtf8(text);
    }
    // Parsed, but not fit for these columns.
    for (const char16_t* text : {u"Soyadi = 'x'", u"Numara = 'yedi'", u"Numara like '7%'",
                                 u"Adi = #1/1/2025#", u"resim = 1", u"Adi = 'Ali' and Yok = 1"}) {
        sql::Filter filter = sql::parseFilter(text);
        EXPECT_THROW(filter.bind(names, types), sql::Error) << jet::toUtf8(text);
        EXPECT_THROW(filter.matches(names, types, row), sql::Error) << jet::toUtf8(text);
    }

    EXPECT_TRUE(sql::parseFilter(u"").empty());
    EXPECT_TRUE(sql::parseFilter(u"  ").matches(names, types, row));
    EXPECT_TRUE(sql::parseFilter(u"[Adi]='ALİ' and numara=7").matches(names, types, row));
    EXPECT_TRUE(sql::parseFilter(u"adı like 'a*'").matches(names, types, row));
    EXPECT_FALSE(sql::parseFilter(u"Tarih = #1/1/2025#").matches(names, types, row));
    EXPECT_FALSE(sql::parseFilter(u"Tarih <> #1/1/2025#").matches(names, types, row));
    EXPECT_TRUE(sql::parseFilter(u"Numara = 7E+0 and Numara=+7 and Numara = .7e1")
                    .matches(names, types, row));
    EXPECT_TRUE(sql::parseFilter(u"Numara <> 7.5 and Numara > -1 and Numara < 7.01")
                    .matches(names, types, row));
    EXPECT_TRUE(sql::parseFilter(u"Adi < 'Alj' and Adi > 'alı'").matches(names, types, row));
}

}  // namespace
