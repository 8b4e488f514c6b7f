// Record sets over the school's database: moving, fields by name, filters and
// sorts on the client side, edits written back to their rows and read back
// through mdbtools, and the optimistic check against another writer.

#include <filesystem>
#include <functional>
#include <memory>
#include <sstream>
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
        connection.Open(connectionString());
    }
    std::string connectionString() const {
        return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file_.string() +
               ";Persist Security Info=True;Jet OLEDB:database Password=HtRvZpQsD2019";
    }
    std::string mdbExport(const std::string& table) const {
        return runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file_.string()) +
                          " " + table);
    }
    // The row at `index` in stored order, as mdb-export writes it.
    std::string exportedRow(const std::string& table, std::size_t index) const {
        std::istringstream lines(mdbExport(table));
        std::string line;
        for (std::size_t i = 0; i <= index + 1; ++i)
            std::getline(lines, line);  // after the header
        return line;
    }
    // The row at `index` in stored order, as our reader gives it.
    std::vector<Value> storedRow(std::u16string_view table, std::size_t index) const {
        return jet::testing::readRows(jet::Database(path()), table).at(index);
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

// The record set's current row is the stored one, field for field.
void expectHoldsStored(const Recordset& rows, const std::vector<Value>& stored) {
    ASSERT_EQ(rows.fieldNames().size(), stored.size());
    for (std::size_t c = 0; c < stored.size(); ++c)
        EXPECT_TRUE(rows.field(c) == stored[c]) << c;
}

// An assignment refused as the provider refuses it.
void expectRefused(const std::function<void()>& assignment) {
    try {
        assignment();
        ADD_FAILURE() << "the value was taken";
    } catch (const DataError& error) {
        EXPECT_EQ(error.number(), DataError::kValueRefused);
        EXPECT_STREQ(error.what(), DataError::kMultipleStepText);
    }
}

TEST(Recordset, MovingFieldsFilterAndSort) {
    SKIP_WITHOUT_MDBTOOLS();
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
    SKIP_WITHOUT_MDBTOOLS();
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
    SKIP_WITHOUT_MDBTOOLS();
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

// A row taken through updates that change the kind of its values, in
// several orders: each value is converted when assigned, the row reads back
// what the file holds, so the next update and the delete find it unchanged.
TEST(Recordset, RepeatedUpdatesOfOneRowKeepWhatIsStored) {
    SKIP_WITHOUT_MDBTOOLS();
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy school;
    Recordset tally;  // tarih Integer, sabah, ogle, aksam Long Integer
    tally.open(u"select* from TMP", school.connection);
    tally.setAbsolutePosition(5);
    const auto updateTally = [&](const std::string& exported) {
        tally.update();
        expectHoldsStored(tally, school.storedRow(u"TMP", 4));
        EXPECT_EQ(school.exportedRow("TMP", 4), exported);
    };
    tally.setField(u"sabah", Value::real(2.5));
    EXPECT_TRUE(tally.field(u"sabah") == Value::integer(2));
    updateTally("5,2,0,0");
    tally.setField(u"sabah", Value::real(3.5));
    tally.setField(u"ogle", Value::text(u"1.234,5"));
    tally.setField(u"aksam", Value::text(u" 12 "));
    updateTally("5,4,1234,12");
    tally.setField(u"ogle", Value());
    tally.setField(u"tarih", Value::real(5));
    tally.setField(u"sabah", Value::boolean(true));
    updateTally("5,-1,,12");
    // Refused values leave the row, its buffer and the file as they were.
    expectRefused([&] { tally.setField(u"sabah", Value::text(u"abc")); });
    EXPECT_FALSE(tally.editing());
    tally.setField(u"aksam", Value::text(u"7"));
    expectRefused([&] { tally.setField(u"tarih", Value::integer(70000)); });
    expectRefused([&] { tally.setField(u"ogle", Value::text(u"")); });
    EXPECT_TRUE(tally.field(u"tarih") == Value::integer(5));
    EXPECT_TRUE(tally.field(u"ogle").isNull());
    EXPECT_EQ(school.exportedRow("TMP", 4), "5,-1,,12");
    updateTally("5,-1,,7");
    tally.moveFirst();
    tally.setAbsolutePosition(5);
    tally.setField(u"ogle", Value::real(6));
    updateTally("5,-1,6,7");
    tally.remove();
    EXPECT_EQ(school.exportedRow("TMP", 4).substr(0, 2), "6,");
    EXPECT_EQ(jet::testing::readRows(jet::Database(school.path()), u"TMP").size(), 30u);

    // Emine Işık, the second student: TCKimlikNo Double, Adi Text 255,
    // Numara Long Integer, KayitTarihi Date/Time.
    Recordset students;
    students.open(u"select* from ORNEK", school.connection);
    students.setAbsolutePosition(2);
    const auto updateStudent = [&](const std::string& start, const std::string& registered) {
        students.update();
        expectHoldsStored(students, school.storedRow(u"ORNEK", 1));
        const std::string exported = school.exportedRow("ORNEK", 1);
        EXPECT_EQ(exported.substr(0, start.size()), start);
        EXPECT_NE(exported.find(registered), std::string::npos) << exported;
    };
    students.setField(u"TCKimlikNo", Value::integer(1234567));
    students.setField(u"Numara", Value::real(104.5));
    students.setField(u"KayitTarihi", Value::text(u"5/11/2026"));
    students.setField(u"Adi", Value::real(1.5));
    EXPECT_TRUE(students.field(u"Adi") == Value::text(u"1,5"));
    updateStudent("2,1234567,\"1,5\",\"Işık\",104,", ",\"11/05/26 00:00:00\",");
    students.setField(u"TCKimlikNo", Value::text(u"12345678901"));
    students.setField(u"Numara", Value::text(u"1.234,5"));
    students.setField(u"KayitTarihi", Value::text(u"05.11.2026 12:30:00"));
    students.setField(u"Adi", students.field(u"KayitTarihi"));
    updateStudent("2,12345678901,\"05.11.2026 12:30:00\",\"Işık\",1234,",
                  ",\"11/05/26 12:30:00\",");
    students.setField(u"Adi", Value::integer(3));
    students.setField(u"TCKimlikNo", Value());
    students.setField(u"KayitTarihi", Value::integer(46000));
    expectRefused([&] { students.setField(u"Adi", Value::text(std::u16string(300, u'a'))); });
    expectRefused([&] { students.setField(u"KayitTarihi", Value::text(u"31/2/2026")); });
    expectRefused([&] { students.setField(u"Numara", Value::text(u"abc")); });
    EXPECT_TRUE(students.field(u"Adi") == Value::text(u"3"));
    updateStudent("2,,\"3\",\"Işık\",1234,", ",\"12/09/25 00:00:00\",");
    students.remove();
    EXPECT_EQ(school.exportedRow("ORNEK", 1).substr(0, 2), "3,");

    // What the file holds differs from what was assigned even after the
    // conversion: a Null Yes/No is stored as No, a fixed-length text padded.
    school.connection.Execute(u"CREATE TABLE OLCUM (evet YESNO, oran SINGLE, kod CHAR(4))");
    Recordset measures;
    measures.open(u"select* from OLCUM", school.connection);
    measures.addNew();
    measures.setField(u"oran", Value::real(0.1));
    measures.setField(u"kod", Value::text(u"ab"));
    measures.update();
    expectHoldsStored(measures, school.storedRow(u"OLCUM", 0));
    measures.setField(u"kod", Value::integer(7));
    measures.setField(u"evet", Value());
    measures.update();
    measures.setField(u"oran", Value::text(u"2,5"));
    measures.update();
    expectHoldsStored(measures, school.storedRow(u"OLCUM", 0));
    EXPECT_EQ(school.exportedRow("OLCUM", 0), "0,2.5,\"7   \"");
    measures.remove();
    EXPECT_EQ(countLines(school.mdbExport("OLCUM")), 1u);
    EXPECT_EQ(jet::checkIntegrity(jet::Database(school.path()).file()), std::vector<std::string>{});
}

// A record set keeps its connection's source: after Close, and after the
// connection is gone, it still moves, edits, adds and deletes in the file.
TEST(Recordset, OutlivesItsConnection) {
    SKIP_WITHOUT_MDBTOOLS();
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy school;
    auto connection = std::make_unique<Connection>();
    connection->Open(school.connectionString());
    Recordset tally;
    tally.open(u"select* from TMP", *connection);
    connection->Close();
    EXPECT_FALSE(connection->isOpen());
    tally.moveLast();
    tally.setField(u"sabah", Value::integer(9));
    tally.moveFirst();  // writes the pending edit
    connection.reset();
    tally.setField(u"ogle", Value::integer(8));
    tally.update();
    tally.moveNext();
    tally.remove();
    tally.addNew();
    tally.setField(u"tarih", Value::integer(32));
    tally.update();
    EXPECT_EQ(tally.recordCount(), 31);

    EXPECT_EQ(school.exportedRow("TMP", 0), "1,0,8,0");
    EXPECT_EQ(school.exportedRow("TMP", 1), "3,0,0,0");
    EXPECT_EQ(school.exportedRow("TMP", 29), "31,9,0,0");
    EXPECT_EQ(school.exportedRow("TMP", 30), "32,,,");
    const std::vector<Value> added = school.storedRow(u"TMP", 30);
    EXPECT_TRUE(added[0] == Value::integer(32) && added[1].isNull());
    EXPECT_EQ(jet::checkIntegrity(jet::Database(school.path()).file()), std::vector<std::string>{});
}

}  // namespace
}  // namespace store
