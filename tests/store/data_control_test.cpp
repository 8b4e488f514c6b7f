// The data control as the windows use it: relative connection string, a
// table or a query as its source, Refresh dropping filter and sort.

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "store/data_control.h"
#include "store/data_error.h"
#include "tests/store/jet/test_files.h"

namespace store {
namespace {

// Runs in a folder holding the school's database as KVL.MDB, as the program
// runs in its own folder.
class InProgramFolder {
public:
    InProgramFolder() : previous_(std::filesystem::current_path()) {
        std::filesystem::copy_file(jet::testing::fixturesDir() / "kvl" / "kvl.mdb",
                                   dir_.path() / "KVL.MDB");
        std::filesystem::permissions(dir_.path() / "KVL.MDB", std::filesystem::perms::owner_write,
                                     std::filesystem::perm_options::add);
        std::filesystem::current_path(dir_.path());
    }
    ~InProgramFolder() { std::filesystem::current_path(previous_); }

private:
    jet::testing::TempDir dir_;
    std::filesystem::path previous_;
};

const char* const kRelative =
    "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=kvl.mdb;Persist Security Info=True;"
    "Jet OLEDB:database Password=HtRvZpQsD2019";

TEST(DataControl, RefreshRunsTheSourceAgain) {
    SKIP_WITHOUT_FIXTURES();
    InProgramFolder folder;
    DataControl izinler;
    izinler.connectionString = kRelative;
    izinler.recordSource = u"IZINLER";
    int moves = 0;
    izinler.onMoveComplete = [&] { ++moves; };
    izinler.Refresh();
    Recordset& permits = izinler.recordset();
    const long all = permits.recordCount();
    ASSERT_GT(all, 0);
    EXPECT_EQ(moves, 1);

    permits.setFilter(u"ay=11");
    permits.setSort(u"Soyadi ASC");
    permits.moveNext();
    EXPECT_LT(permits.recordCount(), all);
    EXPECT_EQ(moves, 4);

    // A pending edit is written before the source runs again.
    permits.moveFirst();
    const jet::Value number = permits.field(u"Numara");
    permits.setField(u"aciklama", jet::Value::text(u"Yenilendi"));
    izinler.Refresh();
    EXPECT_EQ(izinler.recordset().recordCount(), all);
    EXPECT_TRUE(izinler.recordset().filter().empty());
    EXPECT_EQ(izinler.recordset().absolutePosition(), 1);
    izinler.recordset().setFilter(u"aciklama = 'yenilendi'");
    ASSERT_EQ(izinler.recordset().recordCount(), 1);
    EXPECT_EQ(izinler.recordset().field(u"Numara"), number);

    // A query as the source, then a source that is no table.
    izinler.recordSource = u"select * from IZINLER where ay=10";
    izinler.Refresh();
    EXPECT_LT(izinler.recordset().recordCount(), all);
    izinler.recordSource = u"NOSUCH";
    EXPECT_THROW(izinler.Refresh(), jet::Error);
}

TEST(DataControl, WrongPasswordOrNoFileFails) {
    SKIP_WITHOUT_FIXTURES();
    InProgramFolder folder;
    DataControl control;
    control.recordSource = u"ORNEK";
    control.connectionString = "Data Source=kvl.mdb;Jet OLEDB:Database Password=HtRvZpSw2019";
    EXPECT_THROW(control.Refresh(), DataError);
    DataControl elsewhere;
    elsewhere.recordSource = u"ORNEK";
    elsewhere.connectionString = "Data Source=yok.mdb;Jet OLEDB:Database Password=HtRvZpQsD2019";
    EXPECT_THROW(elsewhere.Refresh(), DataError);
}

}  // namespace
}  // namespace store
