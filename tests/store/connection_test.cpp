#include "store/connection.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/connection_string.h"
#include "store/data_error.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace {

namespace fs = std::filesystem;
using jet::testing::fixturesDir;
using jet::testing::readFileBytes;
using jet::testing::TempDir;
using store::Connection;
using store::DataError;

const std::string kMainPassword = "HtRvZpQsD2019";
const std::string kRollCallPassword = "HtRvZpSw2019";

std::string connectionString(const std::string& dataSource, const std::string& password) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + dataSource +
           ";Persist Security Info=True;Jet OLEDB:Database Password=" + password;
}

// Sets the current directory for the life of the object.
class InDirectory {
public:
    explicit InDirectory(const fs::path& dir) : previous_(fs::current_path()) {
        fs::current_path(dir);
    }
    ~InDirectory() { fs::current_path(previous_); }

private:
    fs::path previous_;
};

// A copy of the school's database under the name given, in a folder of its own.
class SchoolCopy {
public:
    explicit SchoolCopy(const std::string& name = "kvl.mdb") : path_(dir_.path() / name) {
        fs::copy_file(fixturesDir() / "kvl" / "kvl.mdb", path_);
        fs::permissions(path_, fs::perms::owner_read | fs::perms::owner_write);
    }
    const fs::path& folder() const { return dir_.path(); }
    const fs::path& path() const { return path_; }

private:
    TempDir dir_;
    fs::path path_;
};

std::vector<std::string> schemaNames(const sql::QueryResult& schema, const char16_t* type) {
    std::vector<std::string> names;
    for (const auto& row : schema.rows) {
        if (row[3].asText() == type) {
            names.push_back(jet::toUtf8(row[2].asText()));
        }
    }
    return names;
}

TEST(ConnectionStringTest, FormsOfTheSystem) {
    // The main database, absolute: the program's folder followed by "\kvl.mdb".
    store::ConnectionString main =
        store::parseConnectionString(connectionString("/opt/sofravan\\kvl.mdb", kMainPassword));
    EXPECT_EQ(main.provider(), "Microsoft.Jet.OLEDB.4.0");
    EXPECT_EQ(main.dataSource(), "/opt/sofravan\\kvl.mdb");
    EXPECT_EQ(main.password(), kMainPassword);
    EXPECT_EQ(main.value("persist security info"), "True");
    EXPECT_EQ(main.pairs().size(), 4u);

    // "database" in lower case, no "Provider=" in front, a trailing ';'.
    store::ConnectionString bare = store::parseConnectionString(
        "Microsoft.Jet.OLEDB.4.0;Data Source=/opt/sofravan\\kvl.mdb;Persist Security "
        "Info=True;Jet OLEDB:database Password=" +
        kMainPassword + ";");
    EXPECT_EQ(bare.provider(), "Microsoft.Jet.OLEDB.4.0");
    EXPECT_EQ(bare.dataSource(), "/opt/sofravan\\kvl.mdb");
    EXPECT_EQ(bare.password(), kMainPassword);

    // Keys in any case and spacing, quoted values holding ';' and quotes.
    store::ConnectionString quoted = store::parseConnectionString(
        " PROVIDER = Microsoft.Jet.OLEDB.4.0 ; data  source=\"/tmp/a;b/kvl.mdb\" ;"
        "Extended Properties=\"Excel 8.0;HDR=NO;\";JET OLEDB:DATABASE PASSWORD='it''s';;");
    EXPECT_EQ(quoted.provider(), "Microsoft.Jet.OLEDB.4.0");
    EXPECT_EQ(quoted.dataSource(), "/tmp/a;b/kvl.mdb");
    EXPECT_EQ(quoted.value("extended properties"), "Excel 8.0;HDR=NO;");
    EXPECT_EQ(quoted.password(), "it's");
    EXPECT_FALSE(quoted.value("Mode").has_value());

    // The relative form; the workbook driver's string with '=' inside a value.
    EXPECT_EQ(store::parseConnectionString(connectionString("kvl.mdb", kMainPassword)).dataSource(),
              "kvl.mdb");
    store::ConnectionString odbc = store::parseConnectionString(
        "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=/x/menu.xls;"
        "DefaultDir=;Driver={Microsoft Excel Driver (*.xls)};DriverId=790;ReadOnly=1;");
    EXPECT_EQ(odbc.value("Extended Properties"), "DBQ=/x/menu.xls");
    EXPECT_EQ(odbc.value("DefaultDir"), "");
    EXPECT_EQ(odbc.value("driver"), "{Microsoft Excel Driver (*.xls)}");

    for (const char* bad : {"Data Source=\"kvl.mdb", "Data Source=kvl.mdb;Persist", "=kvl.mdb",
                            "Data Source=\"kvl.mdb\"x"}) {
        EXPECT_THROW(store::parseConnectionString(bad), DataError) << bad;
    }
    // A message never shows the password.
    try {
        store::parseConnectionString(
            "Data Source=kvl.mdb;Jet OLEDB:Database Password=" + kMainPassword + ";Persist");
        ADD_FAILURE() << "a piece without '=' accepted";
    } catch (const DataError& error) {
        EXPECT_EQ(std::string(error.what()).find(kMainPassword), std::string::npos);
    }
}

TEST(ConnectionStringTest, DataSourcesReachOneFile) {
    TempDir dir;
    const fs::path file = dir.path() / "KVL.MDB";
    std::ofstream(file) << "x";
    fs::create_directory(dir.path() / "sub");
    const std::string folder = dir.path().string();
    {
        InDirectory in(dir.path());
        for (const std::string& source : std::vector<std::string>{
                 "kvl.mdb", "KVL.mdb", "KVL.MDB", "Kvl.Mdb", "./kvl.mdb", "sub\\..\\kvl.mdb",
                 folder + "\\kvl.mdb", folder + "\\KVL.mdb", folder + "/kvl.mdb"}) {
            EXPECT_TRUE(fs::equivalent(store::resolveDataSource(source), file)) << source;
        }
        EXPECT_THROW(store::resolveDataSource("kvl2.mdb"), DataError);
        EXPECT_THROW(store::resolveDataSource(""), DataError);
    }
    // Relative names follow the current directory.
    {
        InDirectory in(dir.path() / "sub");
        EXPECT_THROW(store::resolveDataSource("kvl.mdb"), DataError);
        EXPECT_TRUE(fs::equivalent(store::resolveDataSource("..\\kvl.mdb"), file));
    }
#ifndef _WIN32  // Windows' own names ignore case: no two differ in case only
    // Two files that differ in case only: the exact name wins, else it is unclear.
    std::ofstream(dir.path() / "kvl.MDB") << "y";
    EXPECT_EQ(store::resolveDataSource(folder + "\\KVL.MDB"), file);
    EXPECT_EQ(store::resolveDataSource(folder + "\\kvl.MDB"), dir.path() / "kvl.MDB");
    EXPECT_THROW(store::resolveDataSource(folder + "\\kvl.mdb"), DataError);
#endif
}

TEST(ConnectionTest, OpenRefusesWhatIsNotTheDatabase) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy main("KVL.MDB");
    const fs::path rollCall = fixturesDir() / "kvl" / "yurtsayim" / "kvl.mdb";
    const std::vector<unsigned char> before = readFileBytes(main.path());

    // Each database's password opens it; the other's, or none, is refused.
    for (const auto& [path, right, wrong] :
         {std::tuple{main.folder().string() + "\\kvl.mdb", kMainPassword, kRollCallPassword},
          std::tuple{rollCall.string(), kRollCallPassword, kMainPassword}}) {
        for (const std::string& password :
             {wrong, std::string(), right.substr(0, right.size() - 1), right + "x"}) {
            Connection connection;
            EXPECT_THROW(connection.Open(connectionString(path, password)), DataError)
                << path << " with " << password;
            EXPECT_FALSE(connection.isOpen());
        }
        std::string lower = right;
        std::transform(lower.begin(), lower.end(), lower.begin(), ::tolower);
        Connection connection;
        EXPECT_THROW(connection.Open(connectionString(path, lower)), DataError);
        connection.Open(connectionString(path, right));
        EXPECT_TRUE(connection.isOpen());
    }
    EXPECT_EQ(readFileBytes(main.path()), before);

    // Missing, damaged, another provider.
    TempDir dir;
    Connection connection;
    EXPECT_THROW(
        connection.Open(connectionString((dir.path() / "kvl.mdb").string(), kMainPassword)),
        DataError);
    std::ofstream(dir.path() / "kvl.mdb") << "Provider=this is a text file, not a database\n";
    try {
        connection.Open(connectionString((dir.path() / "KVL.mdb").string(), kMainPassword));
        ADD_FAILURE() << "a text file opened as a database";
    } catch (const DataError& error) {
#ifdef _WIN32  // the system finds the file under the name as given
        EXPECT_NE(std::string(error.what()).find("KVL.mdb"), std::string::npos) << error.what();
#else
        EXPECT_NE(std::string(error.what()).find("kvl.mdb"), std::string::npos) << error.what();
#endif
    }
    std::vector<unsigned char> truncated = readFileBytes(main.path());
    truncated.resize(4096 + 100);
    jet::testing::writeFileBytes(dir.path() / "kvl.mdb", truncated);
    EXPECT_THROW(
        connection.Open(connectionString((dir.path() / "kvl.mdb").string(), kMainPassword)),
        DataError);
    EXPECT_THROW(connection.Open("Provider=MSDASQL.1;Data Source=" + main.path().string()),
                 DataError);
    EXPECT_FALSE(connection.isOpen());
    EXPECT_THROW(connection.Close(), DataError);
    EXPECT_THROW(connection.OpenSchema(20), DataError);
    EXPECT_THROW(connection.Execute(u"select* from AYAR"), DataError);
}

TEST(ConnectionTest, OpenTwiceSchemaAndStatements) {
    SKIP_WITHOUT_FIXTURES();
    SchoolCopy copy;
    InDirectory in(copy.folder());
    Connection connection;
    // Relative, as data controls open it.
    connection.Open(
        "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=kvl.mdb;Persist Security "
        "Info=True;Jet OLEDB:database Password=" +
        kMainPassword);
    EXPECT_THROW(connection.Open(connectionString("kvl.mdb", kMainPassword)), DataError);
    ASSERT_TRUE(connection.isOpen());  // the first stays usable

    const sql::QueryResult schema = connection.OpenSchema(Connection::kSchemaTables);
    EXPECT_EQ(schema.columnNames, (std::vector<std::u16string>{u"TABLE_CATALOG", u"TABLE_SCHEMA",
                                                               u"TABLE_NAME", u"TABLE_TYPE"}));
    EXPECT_EQ(schemaNames(schema, u"TABLE"),
              (std::vector<std::string>{"AYAR", "IZINLER", "MENULER", "ORNEK", "Pansiyon", "TMP",
                                        "YEMEK"}));
    // System tables first, by name without regard to case.
    EXPECT_EQ(schemaNames(schema, u"SYSTEM TABLE"),
              (std::vector<std::string>{"MSysAccessObjects", "MSysACEs", "MSysObjects",
                                        "MSysQueries", "MSysRelationships"}));
    EXPECT_EQ(schema.rows.size(), 12u);
    EXPECT_EQ(jet::toUtf8(schema.rows.front()[3].asText()), "SYSTEM TABLE");
    // The same tables as mdbtools lists.
    if (!std::string(MDB_EXPORT_EXECUTABLE).empty()) {
        std::string tool = MDB_EXPORT_EXECUTABLE;
        tool.replace(tool.rfind("mdb-export"), 10, "mdb-tables");
        std::istringstream listed(jet::testing::runCommand(
            jet::testing::shellQuote(tool) + " -S -1 " + jet::testing::shellQuote("kvl.mdb")));
        std::set<std::string> expected;
        for (std::string line; std::getline(listed, line);) {
            expected.insert(line);
        }
        std::set<std::string> got;
        for (const auto& row : schema.rows) {
            got.insert(jet::toUtf8(row[2].asText()));
        }
        EXPECT_EQ(got, expected);
    }
    EXPECT_THROW(connection.OpenSchema(4), DataError);

    // The month print's table, made once; statements through the connection.
    const sql::ExecuteResult created = connection.Execute(
        u"CREATE TABLE TMPMENU (TARIH DATETIME, GUN CHAR, SABAH MEMO, OGLE MEMO, AKSAM MEMO, "
        u"ARA_OGUN MEMO, CONSTRAINT MyTableConstraint UNIQUE (TARIH, GUN, SABAH, OGLE, AKSAM, "
        u"ARA_OGUN));");
    EXPECT_FALSE(created.isQuery);
    EXPECT_EQ(schemaNames(connection.OpenSchema(20), u"TABLE"),
              (std::vector<std::string>{"AYAR", "IZINLER", "MENULER", "ORNEK", "Pansiyon", "TMP",
                                        "TMPMENU", "YEMEK"}));
    EXPECT_THROW(connection.Execute(u"CREATE TABLE tmpmenu (A LONG)"), DataError);
    EXPECT_THROW(connection.Execute(u"select* from NOSUCHTABLE"), DataError);
    EXPECT_EQ(connection.Execute(u"delete* from TMPMENU").rowsAffected, 0);
    const long february =
        static_cast<long>(connection.Execute(u"select* from menuler where ay=2").query.rows.size());
    ASSERT_GT(february, 0);
    EXPECT_EQ(connection.Execute(u"delete * from MENULER where ay=2").rowsAffected, february);
    EXPECT_TRUE(connection.Execute(u"select* from menuler where ay=2").query.rows.empty());
    if (!std::string(MDB_EXPORT_EXECUTABLE).empty()) {
        const std::string exported = jet::testing::runCommand(
            jet::testing::shellQuote(MDB_EXPORT_EXECUTABLE) + " kvl.mdb MENULER");
        EXPECT_EQ(exported.find("\n2,"), std::string::npos);
        EXPECT_NE(exported.find("\n11,"), std::string::npos);
    }

    connection.Close();
    EXPECT_FALSE(connection.isOpen());
    EXPECT_THROW(connection.Close(), DataError);
    // Reopened after a close, by the absolute form in another case.
    connection.Open(connectionString(copy.folder().string() + "\\KVL.mdb", kMainPassword));
    EXPECT_EQ(schemaNames(connection.OpenSchema(20), u"TABLE").size(), 8u);

    // Opened for reading alone, statements that write are refused.
    Connection reader;
    reader.Open(connectionString("kvl.mdb", kMainPassword) + ";Mode=Read");
    EXPECT_THROW(reader.Execute(u"delete * from MENULER where ay=11"), DataError);
}

}  // namespace
