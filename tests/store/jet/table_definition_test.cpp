#include "store/jet/table_definition.h"

#include <algorithm>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/format.h"
#include "store/jet/text.h"
#include "store/jet/usage_map.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

std::string names(const TableDefinition& table) {
    std::string joined;
    for (const Column& column : table.columns) joined += toUtf8(column.name) + " ";
    return joined;
}

const LogicalIndex& indexNamed(const TableDefinition& table, std::u16string_view name) {
    const auto found = std::find_if(table.indexes.begin(), table.indexes.end(),
                                    [&](const LogicalIndex& index) { return index.name == name; });
    if (found == table.indexes.end()) throw Error("no index " + toUtf8(name));
    return *found;
}

TEST(TableDefinition, DiningHallTablesAsStored) {
    SKIP_WITHOUT_FIXTURES();
    const Database database((testing::fixturesDir() / "kvl" / "kvl.mdb").string());

    const TableDefinition ornek = database.table(u"ORNEK");
    EXPECT_EQ(names(ornek),
              "sno TCKimlikNo Adi Soyadi Numara Sinif Cinsiyet Seviye BabaAdi AnneAdi DogumTarihi "
              "DogumYeri Adres Telefon VeliAdi VeliTelefon KayitTarihi Aciklama OkulAdi resim "
              "yatililik ");
    EXPECT_EQ(ornek.columns[1].type, ColumnType::Double);
    EXPECT_EQ(ornek.columns[2].type, ColumnType::Text);
    EXPECT_EQ(ornek.columns[2].length, 510);  // 255 characters of UTF-16
    EXPECT_EQ(ornek.columns[2].sortOrder, format::kSortGeneral);
    EXPECT_EQ(ornek.columns[4].type, ColumnType::LongInteger);
    EXPECT_EQ(ornek.columns[10].type, ColumnType::DateTime);
    EXPECT_EQ(ornek.rowCount, 480u);
    ASSERT_EQ(ornek.indexes.size(), 3u);
    for (const auto& [name, column] :
         {std::pair{u"Numara", u"Numara"}, {u"Soyadi", u"Soyadi"}, {u"Sinif", u"Sinif"}}) {
        const LogicalIndex& index = indexNamed(ornek, name);
        const RealIndex& real = ornek.realIndexes[index.realIndex];
        EXPECT_FALSE(real.isUnique());
        EXPECT_FALSE(index.isPrimaryKey());
        ASSERT_EQ(real.columns.size(), 1u);
        EXPECT_EQ(ornek.columnByNumber(real.columns[0].columnNumber)->name, column);
        EXPECT_TRUE(real.columns[0].ascending);
        EXPECT_NE(real.firstPage, 0u);
    }

    const TableDefinition yemek = database.table(u"YEMEK");
    EXPECT_TRUE(yemek.columns[0].isAutoNumber());
    EXPECT_EQ(yemek.nextAutoNumber, 5460u);
    const LogicalIndex& primaryKey = indexNamed(yemek, u"PrimaryKey");
    EXPECT_TRUE(primaryKey.isPrimaryKey());
    EXPECT_TRUE(yemek.realIndexes[primaryKey.realIndex].isUnique());
    const RealIndex& byDate = yemek.realIndexes[indexNamed(yemek, u"YEMEKTARIH").realIndex];
    EXPECT_EQ(yemek.columnByNumber(byDate.columns.at(0).columnNumber)->name, u"YEMEKTARIH");

    // The year column of the permits keeps its dotless ı.
    const TableDefinition permits = database.table(u"IZINLER");
    EXPECT_EQ(permits.columns[8].name, u"y\u0131l");
    // Column names are found as Access finds them: without regard to case,
    // the dotless ı matching I.
    EXPECT_EQ(permits.findColumnPosition(u"YIL"), 8u);
    EXPECT_EQ(ornek.columnPosition(u"numara"), 4u);
    EXPECT_EQ(permits.findColumnPosition(u"yil2"), std::nullopt);
    try {
        permits.columnPosition(u"yok");
        ADD_FAILURE() << "no error for a column that is not there";
    } catch (const Error& error) {
        EXPECT_STREQ(error.what(), "table IZINLER has no column yok");
    }
    EXPECT_TRUE(permits.indexes.empty());
    EXPECT_EQ(database.table(u"izinler").page, permits.page);
    EXPECT_THROW(database.table(u"NOSUCHTABLE"), Error);
}

TEST(TableDefinition, LongDefinitionsDeletedColumnsAndIndexKinds) {
    SKIP_WITHOUT_FIXTURES();
    const auto access = testing::fixturesDir() / "access";

    // 74 columns do not fit one page: the definition continues on a second.
    const TableDefinition projects =
        Database((access / "test2V2000.mdb").string()).table(u"MSP_PROJECTS");
    EXPECT_EQ(projects.pages.size(), 2u);
    ASSERT_EQ(projects.columns.size(), 74u);
    EXPECT_EQ(projects.columns.back().name, u"RESERVED_BINARY_DATA");

    // Two of six columns were deleted; the rest keep their numbers.
    const TableDefinition deleted = Database((access / "delColTestV2000.mdb").string()).table(u"Table1");
    EXPECT_EQ(names(deleted), "id id2 data data2 ");
    EXPECT_EQ(deleted.maxColumns, 6);
    EXPECT_EQ(deleted.deletedColumnNumbers().size(), 2u);

    const Database properties((access / "testIndexPropertiesV2000.mdb").string());
    const TableDefinition unique = properties.table(u"TableUnique2_temp");
    const RealIndex& uniqueData = unique.realIndexes[indexNamed(unique, u"DataIndex").realIndex];
    EXPECT_TRUE(uniqueData.isUnique());
    EXPECT_EQ(uniqueData.columns.size(), 2u);
    const TableDefinition ignoreNulls = properties.table(u"TableIgnoreNulls1");
    const RealIndex& ignoring =
        ignoreNulls.realIndexes[indexNamed(ignoreNulls, u"DataIndex").realIndex];
    EXPECT_FALSE(ignoring.isUnique());
    EXPECT_NE(ignoring.flags & format::kIndexIgnoreNulls, 0);

    const TableDefinition descending =
        Database((access / "compIndexTestV2000.mdb").string()).table(u"Table1");
    EXPECT_FALSE(descending.realIndexes.at(0).columns.at(0).ascending);

    // A foreign key index shares the real index of the primary key.
    const TableDefinition related = Database((access / "indexTestV2000.mdb").string()).table(u"Table2");
    ASSERT_EQ(related.indexes.size(), 3u);
    EXPECT_EQ(related.realIndexes.size(), 2u);
    const LogicalIndex& key = indexNamed(related, u"PrimaryKey");
    const auto foreign = std::find_if(related.indexes.begin(), related.indexes.end(),
                                      [](const LogicalIndex& i) { return i.type == 2; });
    ASSERT_NE(foreign, related.indexes.end());
    EXPECT_EQ(foreign->realIndex, key.realIndex);
}

// Each user table's recorded row count equals the rows a scan finds (Access
// does not keep the counts of its system tables exact), and every
// page a scan reads comes from the usage map (inline in the Access files, by
// reference in the kvl files).
TEST(TableDefinition, ScansFindTheRecordedRowCounts) {
    SKIP_WITHOUT_FIXTURES();
    for (const auto& file : testing::fixtureDatabases()) {
        const Database database(file.string());
        for (const CatalogEntry& entry : database.catalog()) {
            if (!entry.isTable()) continue;
            const TableDefinition table = database.table(entry.name);
            const std::vector<std::uint32_t> pages = readUsageMap(database.file(), table.usageMap);
            EXPECT_TRUE(std::is_sorted(pages.begin(), pages.end()));
            TableCursor cursor = database.scan(table);
            std::uint32_t rows = 0;
            RowId previous{0, 0};
            std::vector<Value> values;
            while (cursor.next()) {
                EXPECT_TRUE(std::binary_search(pages.begin(), pages.end(), cursor.rowId().page));
                EXPECT_GE(cursor.rowId().page, previous.page);
                previous = cursor.rowId();
                cursor.values(values);
                ++rows;
            }
            if (entry.isUserTable()) {
                EXPECT_EQ(rows, table.rowCount) << file << " " << toUtf8(entry.name);
            }
        }
    }
}

}  // namespace
}  // namespace jet
