// Record sets over the school's database: moving, fields by name, filters and
// sorts on the client side, edits written back to their rows and read back
// through mdbtools, and the optimistic check against another writer.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/connection.h"
#include "store/data_error.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "store/recordset.h"
#include "store/sql/collation.h"
#include "tests/store/jet/test_files.h"

namespace store {
namespace {

using jet::Value;
using jet::testing::runCommand;
using jet::testing::shellQuote;

// A connection to a writable copy of the school's database.
class SchoolCopy {
public:
    SchoolCopy() {
        std::filesystem::copy_file(jet::testing::fixturesDir() / "kvl" / "kvl.mdb", file_);
        std::filesystem::permissions(file_, std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
        connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file_.string() +
                        ";Persist Security Info=True;Jet OLEDB:database Password=HtRvZpQsD2019");
    }
    std::string mdbExport(const std::string& table) const {
        return runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file_.string()) +
                          " " + table);
    }
    std::string path() const { return file_.string(); }

    Connection connection;

private:
    jet::testing::TempDir dir_;
    std::filesystem::path file_ = dir_.path() / "kvl.mdb";
};

std::size_t countLines(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST(Recordset, MovingFieldsFilterAndSort) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy school;
    Recordset permits;
    permits.open(u"select* from IZINLER", school.connection);
    const long all = permits.recordCount();
    ASSERT_GT(all, 10);
    EXPECT_EQ(permits.absolutePosition(), 1);
    EXPECT_FALSE(permits.bof());
    // Names in any case, the dotless ı matching I.
    EXPECT_EQ(permits.field(u"yıl"), permits.field(u"YIL"));
    EXPECT_EQ(permits.field(u"adi"), permits.field(std::size_t{1}));
    EXPECT_THROW(permits.field(u"Telefon"), DataError);

    permits.moveLast();
    EXPECT_EQ(permits.absolutePosition(), all);
    permits.moveNext();
    EXPECT_TRUE(permits.eof());
    EXPECT_EQ(permits.absolutePosition(), Recordset::kPositionUnknown);
    EXPECT_THROW(permits.moveNext(), jet::Error);
    permits.movePrevious();
    EXPECT_EQ(permits.absolutePosition(), all);

    // A filter narrows and moves to the first row; an invalid one keeps it.
    permits.setFilter(u"ay=11 and yıl=2025");
    const long november = permits.recordCount();
    ASSERT_GT(november, 0);
    ASSERT_LT(november, all);
    EXPECT_EQ(permits.absolutePosition(), 1);
    EXPECT_THROW(permits.setFilter(u" Soyadi like 'O'Neil%'"), jet::Error);
    EXPECT_THROW(permits.setFilter(u"Telefon = 'x'"), jet::Error);
    EXPECT_EQ(permits.recordCount(), november);
    EXPECT_EQ(permits.filter(), u"ay=11 and yıl=2025");
    permits.setFilter(u"Numara like 999999");
    EXPECT_EQ(permits.recordCount(), 0);
    EXPECT_TRUE(permits.eof() && permits.bof());
    EXPECT_THROW(permits.moveFirst(), jet::Error);
    permits.clearFilter();
    EXPECT_EQ(permits.recordCount(), all);

    // Sort: Turkish order of the surnames, stable, Nulls first.
    permits.setSort(u"Soyadi ASC");
    std::vector<Value> surnames;
    for (permits.moveFirst(); !permits.eof(); permits.moveNext()) surnames.push_back(permits.field(u"Soyadi"));
    for (std::size_t i = 1; i < surnames.size(); ++i) {
        EXPECT_LE(sql::compareValues(surnames[i - 1], surnames[i]), 0) << i;
    }

    // A statement with no rows runs and leaves the record set closed.
    Recordset deletion;
    deletion.open(u"delete* from TMP", school.connection);
    EXPECT_FALSE(deletion.isOpen());
    EXPECT_EQ(countLines(school.mdbExport("TMP")), 1u);
}

TEST(Recordset, EditsAreWrittenBackToTheirRows) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy school;
    {
        Recordset permits;
        permits.open(u"select* from IZINLER where Numara=103 and ay=10", school.connection);
        ASSERT_EQ(permits.recordCount(), 1);
        permits.setField(u"aciklama", Value::text(u"Burslu öğrenci"));
        permits.update();

        permits.addNew();
        permits.setField(u"Adi", Value::text(u"Şule"));
        permits.setField(u"Soyadi", Value::text(u"O'Neil"));
        permits.setField(u"Numara", Value::integer(4242));
        permits.setField(u"ay", Value::integer(12));
        permits.setField(u"yıl", Value::integer(2026));
        permits.update();
        EXPECT_EQ(permits.recordCount(), 2);
        EXPECT_EQ(permits.absolutePosition(), 2);

        // An edit left pending is written when the record set leaves the row.
        permits.moveFirst();
        permits.setField(u"Sinif", Value::text(u"12FENA"));
        permits.moveNext();
    }
    const std::string csv = school.mdbExport("IZINLER");
    EXPECT_NE(csv.find("\"12FENA\",103,\"K\",,10,2025,\"Burslu öğrenci\""), std::string::npos) << csv;
    EXPECT_NE(csv.find("\"Şule\",\"O'Neil\",,4242,,,12,2026,"), std::string::npos);

    // Delete each row of a filtered view the way the permit list does.
    Recordset permits;
    permits.open(u"select* from IZINLER", school.connection);
    const long before = permits.recordCount();
    permits.setFilter(u"ay=10 And yıl=2025");
    const long october = permits.recordCount();
    permits.moveFirst();
    for (long i = 0; i < october; ++i) {
        permits.remove();
        permits.moveNext();
    }
    permits.clearFilter();
    EXPECT_EQ(permits.recordCount(), before - october);
    EXPECT_EQ(countLines(school.mdbExport("IZINLER")), static_cast<std::size_t>(before - october + 1));
    EXPECT_EQ(jet::checkIntegrity(jet::Database(school.path()).file()), std::vector<std::string>{});
}

// Another program changes the row after it was read: the edit is refused,
// as the original's optimistic locking does, and the other change stays.
TEST(Recordset, ChangedMeanwhileIsRefused) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy school;
    Recordset ours;
    ours.open(u"select* from IZINLER where Numara=103 and ay=10", school.connection);
    ASSERT_EQ(ours.recordCount(), 1);
    Connection other;
    other.Open("Data Source=" + school.path() + ";Jet OLEDB:Database Password=HtRvZpQsD2019");
    Recordset theirs;
    theirs.open(u"select* from IZINLER where Numara=103 and ay=10", other);
    theirs.setField(u"Sinif", Value::text(u"9Z"));
    theirs.update();

    ours.setField(u"Sinif", Value::text(u"10A"));
    EXPECT_THROW(ours.update(), DataError);
    EXPECT_NE(school.mdbExport("IZINLER").find("\"9Z\",103"), std::string::npos);

    // Rows of a grouped query belong to no one row: they cannot be edited.
    Recordset counts;
    counts.open(u"SELECT Count(Numara) AS n, ay FROM IZINLER GROUP BY ay", school.connection);
    EXPECT_THROW(counts.setField(u"n", Value::integer(1)), DataError);
    EXPECT_THROW(counts.addNew(), DataError);
}

}  // namespace
}  // namespace store
