#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/index_key.h"
#include "store/jet/index_page.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

namespace x = format::index;

// ---------------------------------------------------------------------------
// Index pages

void markEntryEnd(Page& page, std::size_t end) {
    page[x::kEntryMaskOffset + end / 8] |= static_cast<std::uint8_t>(1u << (end % 8));
}

// A leaf of a Long Integer index: keys 1 and 2, rows 3 and 4 of page 261,
// the second entry stored without the 3 bytes both share.
Page twoEntryLeaf() {
    Page page{};
    page[0] = format::kPageIndexLeaf;
    page[1] = 0x01;
    page[x::kOwnerOffset] = 0x1d;
    page[x::kPrefixLengthOffset] = 3;
    const std::uint8_t first[] = {0x7f, 0x80, 0x00, 0x00, 0x01, 0x00, 0x01, 0x05, 0x03};
    const std::uint8_t second[] = {0x00, 0x02, 0x00, 0x01, 0x05, 0x04};
    std::memcpy(page.data() + x::kEntriesOffset, first, sizeof first);
    std::memcpy(page.data() + x::kEntriesOffset + sizeof first, second, sizeof second);
    markEntryEnd(page, sizeof first);
    markEntryEnd(page, sizeof first + sizeof second);
    return page;
}

TEST(IndexPage, ReadsEntriesAndPutsBackTheSharedPrefix) {
    const IndexPage page(twoEntryLeaf(), 40);
    EXPECT_TRUE(page.isLeaf());
    EXPECT_EQ(page.owner(), 0x1du);
    EXPECT_EQ(page.prefixLength(), 3);
    ASSERT_EQ(page.entries().size(), 2u);
    EXPECT_EQ(page.entries()[0].key, (Bytes{0x7f, 0x80, 0x00, 0x00, 0x01}));
    EXPECT_EQ(page.entries()[0].row, (RowId{261, 3}));
    EXPECT_EQ(page.entries()[1].key, (Bytes{0x7f, 0x80, 0x00, 0x00, 0x02}));
    EXPECT_EQ(page.entries()[1].row, (RowId{261, 4}));
}

TEST(IndexPage, IntermediateEntriesEndWithTheirChildPage) {
    Page page{};
    page[0] = format::kPageIndexIntermediate;
    const std::uint8_t entry[] = {0x7f, 0x80, 0x00, 0x00, 0x09, 0x00, 0x00,
                                  0x2a, 0x17, 0x00, 0x00, 0x01, 0x38};
    std::memcpy(page.data() + x::kEntriesOffset, entry, sizeof entry);
    markEntryEnd(page, sizeof entry);
    page[x::kTailPageOffset] = 0x37;
    const IndexPage parsed(page, 32);
    EXPECT_FALSE(parsed.isLeaf());
    EXPECT_EQ(parsed.tailPage(), 0x37u);
    ASSERT_EQ(parsed.entries().size(), 1u);
    EXPECT_EQ(parsed.entries()[0].key, (Bytes{0x7f, 0x80, 0x00, 0x00, 0x09}));
    EXPECT_EQ(parsed.entries()[0].row, (RowId{42, 0x17}));
    EXPECT_EQ(parsed.entries()[0].childPage, 0x138u);
}

TEST(IndexPage, RefusesDamagedPages) {
    Page notIndex = twoEntryLeaf();
    notIndex[0] = format::kPageData;
    EXPECT_THROW(IndexPage(notIndex, 40), Error);

    Page beyondPage = twoEntryLeaf();
    beyondPage[x::kEntriesOffset - 1] = 0x80;  // the last bit: an entry ending past the page
    EXPECT_THROW(IndexPage(beyondPage, 40), Error);

    Page longPrefix = twoEntryLeaf();
    longPrefix[x::kPrefixLengthOffset] = 10;  // longer than the first entry
    EXPECT_THROW(IndexPage(longPrefix, 40), Error);

    Page shortEntry{};
    shortEntry[0] = format::kPageIndexLeaf;
    markEntryEnd(shortEntry, 4);  // pointer bytes, no key
    EXPECT_THROW(IndexPage(shortEntry, 40), Error);

    Page shortNode = twoEntryLeaf();
    shortNode[0] = format::kPageIndexIntermediate;  // 9 bytes: no room for the child page
    shortNode[x::kPrefixLengthOffset] = 0;
    EXPECT_THROW(IndexPage(shortNode, 40), Error);
}

// ---------------------------------------------------------------------------
// Keys of numbers, dates and booleans

Column column(ColumnType type) {
    Column c;
    c.name.assign(1, u'c');  // one letter; a literal here trips a false GCC 12 warning
    c.type = type;
    if (type == ColumnType::Text || type == ColumnType::Memo)
        c.sortOrder = format::kSortGeneral;
    return c;
}

Bytes key(ColumnType type, const Value& value, bool ascending = true) {
    Bytes bytes;
    appendColumnKey(bytes, column(type), ascending, value);
    return bytes;
}

TEST(IndexKey, NullsSortFirstAscendingAndLastDescending) {
    EXPECT_EQ(key(ColumnType::LongInteger, Value()), Bytes{0x00});
    EXPECT_EQ(key(ColumnType::LongInteger, Value(), false), Bytes{0xff});
    EXPECT_EQ(key(ColumnType::Text, Value()), Bytes{0x00});
}

TEST(IndexKey, IntegersAreBigEndianWithTheSignFlipped) {
    EXPECT_EQ(key(ColumnType::LongInteger, Value::integer(1)),
              (Bytes{0x7f, 0x80, 0x00, 0x00, 0x01}));
    EXPECT_EQ(key(ColumnType::LongInteger, Value::integer(-1)),
              (Bytes{0x7f, 0x7f, 0xff, 0xff, 0xff}));
    EXPECT_EQ(key(ColumnType::LongInteger, Value::integer(1), false),
              (Bytes{0x80, 0x7f, 0xff, 0xff, 0xfe}));
    EXPECT_EQ(key(ColumnType::Integer, Value::integer(-2)), (Bytes{0x7f, 0x7f, 0xfe}));
    EXPECT_EQ(key(ColumnType::Integer, Value::integer(258)), (Bytes{0x7f, 0x81, 0x02}));
    EXPECT_EQ(key(ColumnType::Byte, Value::integer(5)), (Bytes{0x7f, 0x05}));
    EXPECT_EQ(key(ColumnType::Byte, Value::integer(5), false), (Bytes{0x80, 0xfa}));
    EXPECT_EQ(key(ColumnType::Currency, Value::currency(Currency{-10000})),
              (Bytes{0x7f, 0x7f, 0xff, 0xff, 0xff, 0xff, 0xff, 0xd8, 0xf0}));
    EXPECT_THROW(key(ColumnType::Byte, Value::integer(256)), Error);
    EXPECT_THROW(key(ColumnType::Integer, Value::integer(40000)), Error);
    EXPECT_THROW(key(ColumnType::LongInteger, Value::text(u"1")), Error);
}

TEST(IndexKey, FloatingNumbersAndDatesSortAsNumbers) {
    EXPECT_EQ(key(ColumnType::Double, Value::real(1.0)),
              (Bytes{0x7f, 0xbf, 0xf0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(key(ColumnType::Double, Value::real(-1.0)),
              (Bytes{0x7f, 0x40, 0x0f, 0xff, 0xff, 0xff, 0xff, 0xff, 0xff}));
    EXPECT_EQ(key(ColumnType::Double, Value::real(-1.0), false),
              (Bytes{0x80, 0xbf, 0xf0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(key(ColumnType::Single, Value::real(1.0)), (Bytes{0x7f, 0xbf, 0x80, 0x00, 0x00}));
    EXPECT_EQ(key(ColumnType::Single, Value::real(-2.0)), (Bytes{0x7f, 0x3f, 0xff, 0xff, 0xff}));
    EXPECT_THROW(key(ColumnType::Single, Value::real(0.1)), Error);  // not a Single
    // 1 October 2025, as Access keyed it in the dining hall's YEMEKTARIH index.
    EXPECT_EQ(key(ColumnType::DateTime, Value::date(Date{45931.0})),
              (Bytes{0x7f, 0xc0, 0xe6, 0x6d, 0x60, 0x00, 0x00, 0x00, 0x00}));

    const double ordered[] = {-1e300, -2.5, -1.0, -0.25, 0.0, 0.25, 1.0, 2.5, 1e300};
    for (std::size_t i = 1; i < std::size(ordered); ++i) {
        const Value low = Value::real(ordered[i - 1]);
        const Value high = Value::real(ordered[i]);
        EXPECT_LT(key(ColumnType::Double, low), key(ColumnType::Double, high)) << ordered[i];
        EXPECT_GT(key(ColumnType::Double, low, false), key(ColumnType::Double, high, false))
            << ordered[i];
        EXPECT_LT(key(ColumnType::DateTime, Value::date(Date{ordered[i - 1]})),
                  key(ColumnType::DateTime, Value::date(Date{ordered[i]})));
    }
    const std::int32_t integers[] = {INT32_MIN, -70000, -1, 0, 1, 255, 70000, INT32_MAX};
    for (std::size_t i = 1; i < std::size(integers); ++i) {
        EXPECT_LT(key(ColumnType::LongInteger, Value::integer(integers[i - 1])),
                  key(ColumnType::LongInteger, Value::integer(integers[i])));
        EXPECT_GT(key(ColumnType::LongInteger, Value::integer(integers[i - 1]), false),
                  key(ColumnType::LongInteger, Value::integer(integers[i]), false));
    }
}

TEST(IndexKey, BooleansPutTrueBeforeFalse) {
    EXPECT_EQ(key(ColumnType::Boolean, Value::boolean(true)), (Bytes{0x7f, 0x00}));
    EXPECT_EQ(key(ColumnType::Boolean, Value::boolean(false)), (Bytes{0x7f, 0xff}));
    EXPECT_EQ(key(ColumnType::Boolean, Value::boolean(true), false), (Bytes{0x80, 0xff}));
    EXPECT_EQ(key(ColumnType::Boolean, Value()), (Bytes{0x7f, 0xff}));  // Jet's Null Yes/No is No
}

TEST(IndexKey, BinaryValuesAreCutIntoSegments) {
    EXPECT_EQ(key(ColumnType::Binary, Value::bytes({0x01, 0x02})),
              (Bytes{0x7f, 0x01, 0x02, 0, 0, 0, 0, 0, 0, 0x02}));
    const Bytes nine = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    EXPECT_EQ(key(ColumnType::Binary, Value::bytes(nine)),
              (Bytes{0x7f, 1, 2, 3, 4, 5, 6, 7, 8, 0x09, 9, 0, 0, 0, 0, 0, 0, 0, 0x01}));
    EXPECT_EQ(key(ColumnType::Binary, Value::bytes(nine), false),
              (Bytes{0x80, 0xfe, 0xfd, 0xfc, 0xfb, 0xfa, 0xf9, 0xf8, 0xf7, 0x09, 0xf6, 0xff, 0xff,
                     0xff, 0xff, 0xff, 0xff, 0xff, 0xfe}));
}

// ---------------------------------------------------------------------------
// Keys of text

Bytes textKey(std::u16string text, bool ascending = true) {
    return key(ColumnType::Text, Value::text(std::move(text)), ascending);
}

// Surnames as Access keyed them in the ORNEK.Soyadi index of the dining hall's
// file (the same keys are checked against that file below).
const std::pair<std::u16string, Bytes> kSurnames[] = {
    {u"Işık", {0x7f, 0x59, 0x6b, 0x59, 0x5c, 0x01, 0x02, 0x1c, 0x03, 0x00}},
    {u"Çelik", {0x7f, 0x4d, 0x51, 0x5e, 0x59, 0x5c, 0x01, 0x1c, 0x00}},
    {u"Öztürk", {0x7f, 0x64, 0x78, 0x6d, 0x6f, 0x69, 0x5c, 0x01, 0x13, 0x02, 0x02, 0x13, 0x00}},
    {u"Şahin", {0x7f, 0x6b, 0x4a, 0x57, 0x59, 0x62, 0x01, 0x1c, 0x00}},
    {u"Güneş", {0x7f, 0x55, 0x6f, 0x62, 0x51, 0x6b, 0x01, 0x02, 0x13, 0x02, 0x02, 0x1c, 0x00}},
    {u"Doğan", {0x7f, 0x4f, 0x64, 0x55, 0x4a, 0x62, 0x01, 0x02, 0x02, 0x15, 0x00}},
    {u"Kılıç", {0x7f, 0x5c, 0x59, 0x5e, 0x59, 0x4d, 0x01, 0x02, 0x03, 0x02, 0x03, 0x1c, 0x00}},
    {u"Ünal", {0x7f, 0x6f, 0x62, 0x4a, 0x5e, 0x01, 0x13, 0x00}},
    {u"Kaya", {0x7f, 0x5c, 0x4a, 0x76, 0x4a, 0x01, 0x00}},
    {u"O'Neil",
     {0x7f, 0x64, 0x62, 0x51, 0x59, 0x5e, 0x01, 0x01, 0x01, 0x01, 0x80, 0x0b, 0x06, 0x80, 0x00}},
};

TEST(IndexKey, TurkishSurnamesAsAccessKeysThem) {
    for (const auto& [name, expected] : kSurnames) {
        EXPECT_EQ(textKey(name), expected) << toUtf8(name);
    }
}

TEST(IndexKey, TextIgnoresCaseAndTrailingSpaces) {
    EXPECT_EQ(textKey(u"ÇELIK"), textKey(u"çelik"));
    EXPECT_EQ(textKey(u"ŞAHİN  "), textKey(u"ŞAHİN"));
    EXPECT_EQ(textKey(u"ÖZTÜRK"), textKey(u"öztürk"));
    EXPECT_EQ(textKey(u"GÜNEŞ"), textKey(u"güneş"));
    EXPECT_EQ(textKey(u"DOĞAN"), textKey(u"doğan"));
    // The dotted capital I and the dotless small ı differ from I and i in their accent.
    EXPECT_EQ(textKey(u"İ"), (Bytes{0x7f, 0x59, 0x01, 0x10, 0x00}));
    EXPECT_EQ(textKey(u"ı"), (Bytes{0x7f, 0x59, 0x01, 0x03, 0x00}));
    EXPECT_EQ(textKey(u"I"), textKey(u"i"));
    EXPECT_EQ(textKey(u""), (Bytes{0x7f, 0x01, 0x00}));
}

TEST(IndexKey, DescendingTextIsInvertedBetweenTwoEnds) {
    EXPECT_EQ(textKey(u"Koç", false),
              (Bytes{0x80, 0xa3, 0x9b, 0xb2, 0xfe, 0xfd, 0xfd, 0xe3, 0xff, 0x00}));
    EXPECT_GT(textKey(u"Kaya", false), textKey(u"Koç", false));
}

TEST(IndexKey, RefusesWhatItCannotKeyExactly) {
    EXPECT_THROW(textKey(u"αβγ"), Error);
    EXPECT_THROW(textKey(u"€"), Error);
    EXPECT_THROW(textKey(std::u16string(1, u'\0')), Error);
    Column otherOrder = column(ColumnType::Text);
    otherOrder.sortOrder = 0x041f;  // Turkish
    Bytes bytes;
    EXPECT_THROW(appendColumnKey(bytes, otherOrder, true, Value::text(u"a")), Error);
    Column newerGeneral = column(ColumnType::Text);
    newerGeneral.sortVersion = 1;
    EXPECT_THROW(appendColumnKey(bytes, newerGeneral, true, Value::text(u"a")), Error);
    EXPECT_THROW(key(ColumnType::ReplicationId, Value::bytes(Bytes(16, 0))), Error);
    EXPECT_THROW(key(ColumnType::Decimal, Value::decimal(Decimal{})), Error);
}

TEST(IndexKey, MemoIsKeyedAsTextUpToTheLongestText) {
    for (const auto& [name, expected] : kSurnames) {
        EXPECT_EQ(key(ColumnType::Memo, Value::text(name)), expected) << toUtf8(name);
        EXPECT_EQ(key(ColumnType::Memo, Value::text(name), false), textKey(name, false));
    }
    const std::u16string longest(255, u'a');
    EXPECT_EQ(key(ColumnType::Memo, Value::text(longest)), textKey(longest));
    EXPECT_THROW(key(ColumnType::Memo, Value::text(longest + u"a")), Error);
    EXPECT_THROW(key(ColumnType::Memo, Value::text(longest + u" ")), Error);
}

// ---------------------------------------------------------------------------
// The surnames in the dining hall's file

TEST(IndexFixtures, SurnameKeysAreThoseAccessWrote) {
    SKIP_WITHOUT_FIXTURES();
    const Database database((testing::fixturesDir() / "kvl" / "kvl.mdb").string());
    const TableDefinition table = database.table(u"ORNEK");
    const RealIndex* surnames = nullptr;
    for (const RealIndex& index : table.realIndexes) {
        if (index.columns.size() == 1 &&
            table.columnByNumber(index.columns[0].columnNumber)->name == u"Soyadi") {
            surnames = &index;
        }
    }
    ASSERT_NE(surnames, nullptr);
    std::set<Bytes> stored;
    for (const IndexEntry& entry : readIndexEntries(database.file(), *surnames)) {
        stored.insert(entry.key);
    }
    for (const auto& [name, expected] : kSurnames) {
        EXPECT_TRUE(stored.count(expected)) << toUtf8(name);
    }
}

// ---------------------------------------------------------------------------
// Damaged index pages

class DamagedIndex : public ::testing::Test {
protected:
    void SetUp() override {
        if (testing::fixturesDir().empty())
            GTEST_SKIP() << "../shared/fixtures is absent";
        const Database database((testing::fixturesDir() / "kvl" / "kvl.mdb").string());
        table_ = database.table(u"ORNEK");
        for (const RealIndex& index : table_.realIndexes) {
            Page bytes;
            database.file().read(index.firstPage, bytes);
            if (bytes[0] != format::kPageIndexIntermediate)
                continue;
            index_ = index;
            firstLeaf_ = IndexPage(bytes, index.firstPage).entries().front().childPage;
            database.file().read(firstLeaf_, bytes);
            secondLeaf_ = IndexPage(bytes, firstLeaf_).nextPage();
            break;
        }
        ASSERT_NE(secondLeaf_, 0u) << "no index of ORNEK has two leaves";
        bytes_ = testing::readFileBytes(testing::fixturesDir() / "kvl" / "kvl.mdb");
    }

    void putPage(std::uint32_t page, std::size_t offset, std::uint32_t value) {
        std::memcpy(bytes_.data() + std::size_t{page} * format::kPageSize + offset, &value, 4);
    }

    std::string readError() {
        const auto path = dir_.path() / "damaged.mdb";
        testing::writeFileBytes(path, bytes_);
        const PageFile file(path.string());
        try {
            readIndexEntries(file, index_);
        } catch (const Error& error) {
            return error.what();
        }
        return "";
    }

    testing::TempDir dir_;
    TableDefinition table_;
    RealIndex index_;
    std::uint32_t firstLeaf_ = 0;
    std::uint32_t secondLeaf_ = 0;
    std::vector<unsigned char> bytes_;
};

TEST_F(DamagedIndex, LeavesThatLoopAreAnError) {
    putPage(secondLeaf_, x::kNextPageOffset, firstLeaf_);
    EXPECT_NE(readError().find("loop"), std::string::npos);
}

TEST_F(DamagedIndex, APointerBeyondTheFileIsAnError) {
    putPage(firstLeaf_, x::kNextPageOffset, 0x00ffffff);
    EXPECT_NE(readError().find("outside the file"), std::string::npos);
}

TEST_F(DamagedIndex, ALeafNotLinkedBackIsAnError) {
    putPage(secondLeaf_, x::kPrevPageOffset, secondLeaf_);
    EXPECT_NE(readError().find("not a leaf linked back"), std::string::npos);
}

TEST_F(DamagedIndex, AChildThatIsNoIndexPageIsAnError) {
    // The root's first entry sends to the data page of its own row.
    Page root;
    std::memcpy(root.data(), bytes_.data() + std::size_t{index_.firstPage} * format::kPageSize,
                format::kPageSize);
    const IndexPageEntry first = IndexPage(root, index_.firstPage).entries().front();
    const std::size_t child = std::size_t{index_.firstPage} * format::kPageSize +
                              x::kEntriesOffset + first.key.size() + x::kRowPointerSize;
    for (int i = 0; i < 4; ++i) {
        bytes_[child + i] = static_cast<std::uint8_t>(first.row.page >> (8 * (3 - i)));
    }
    EXPECT_NE(readError().find("should be an index page"), std::string::npos);
}

TEST_F(DamagedIndex, KeysOutOfOrderAreAnError) {
    // The first key of the second leaf becomes the smallest possible.
    bytes_[std::size_t{secondLeaf_} * format::kPageSize + x::kEntriesOffset] = 0x00;
    EXPECT_NE(readError().find("out of key order"), std::string::npos);
}

}  // namespace
}  // namespace jet
