// The sample menu workbook: the embedded bytes are the committed file, the
// committed file is what the script makes today, and the menu import reads
// it through the program's connection as the template it stands for.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "resources/sample_workbook.h"
#include "store/connection.h"
#include "store/jet/text.h"
#include "store/recordset.h"
#include "tests/store/jet/test_files.h"

namespace resources {
namespace {

using jet::testing::readFileBytes;
using jet::testing::runCommand;
using jet::testing::shellQuote;
using jet::testing::TempDir;

// The sheet Sayfa1 of the workbook as the menu import's connection reads it.
struct SheetRead {
    std::vector<std::u16string> tables;
    std::vector<std::u16string> columns;
    std::vector<std::vector<jet::Value>> rows;
};

SheetRead readSheet(const std::filesystem::path& file) {
    store::Connection connection;
    connection.Open(
        "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=" + file.string() +
        ";DefaultDir=;Driver={Microsoft Excel Driver (*.xls)};DriverId=790;"
        "FIL=excel 8.0;MaxScanRows=8;ReadOnly=1;");
    SheetRead read;
    for (const auto& row : connection.OpenSchema(store::Connection::kSchemaTables).rows)
        read.tables.push_back(row[2].asText());
    store::Recordset records;
    records.open(u"select* from `Sayfa1$`", connection);
    read.columns = records.fieldNames();
    for (long position = 1; position <= records.recordCount(); ++position) {
        std::vector<jet::Value>& row = read.rows.emplace_back();
        for (std::size_t column = 0; column < read.columns.size(); ++column)
            row.push_back(records.valueAt(position, column));
    }
    return read;
}

std::filesystem::path writeEmbedded(const TempDir& dir) {
    const QByteArray bytes = sampleWorkbook();
    const auto file = dir.path() / "YEMEK_MENUSU.XLS";
    jet::testing::writeFileBytes(file, std::vector<unsigned char>(bytes.begin(), bytes.end()));
    return file;
}

TEST(SampleWorkbook, AnAprilMenuFourRowsADay) {
    const QByteArray bytes = sampleWorkbook();
    ASSERT_FALSE(bytes.isEmpty()) << "the workbook is not embedded";
    EXPECT_EQ(std::vector<unsigned char>(bytes.begin(), bytes.end()),
              readFileBytes(SAMPLE_WORKBOOK_FILE));

    TempDir dir;
    const SheetRead sheet = readSheet(writeEmbedded(dir));
    EXPECT_EQ(sheet.tables, (std::vector<std::u16string>{u"Sayfa1$", u"Sayfa2$", u"Sayfa3$"}));
    EXPECT_EQ(sheet.columns, (std::vector<std::u16string>{u"ay", u"gun", u"sabah", u"ogle",
                                                          u"aksam", u"ara_ogun"}));
    ASSERT_EQ(sheet.rows.size(), 120u);

    std::set<std::u16string> texts;
    for (std::size_t row = 0; row < sheet.rows.size(); ++row) {
        const std::vector<jet::Value>& cells = sheet.rows[row];
        const bool firstOfDay = row % 4 == 0;
        EXPECT_EQ(cells[0], jet::Value::real(4)) << "row " << row;
        EXPECT_EQ(cells[1], jet::Value::real(static_cast<double>(row / 4 + 1))) << "row " << row;
        // Noon and evening one dish a row; the morning has three or four
        // items; the snack stands in the day's first row, the other three
        // hold an empty text.
        for (std::size_t column = 2; column < 6; ++column) {
            const jet::Value& value = cells[column];
            EXPECT_TRUE(value.isNull() || value.kind() == jet::Value::Kind::Text)
                << "row " << row << " column " << column;
            if (!value.isNull())
                texts.insert(value.asText());
        }
        EXPECT_EQ(cells[3].kind(), jet::Value::Kind::Text) << "row " << row;
        EXPECT_EQ(cells[4].kind(), jet::Value::Kind::Text) << "row " << row;
        EXPECT_EQ(cells[5].kind(), jet::Value::Kind::Text) << "row " << row;
        EXPECT_EQ(cells[5].asText().empty(), !firstOfDay) << "row " << row;
        if (row % 4 < 3)
            EXPECT_FALSE(cells[2].isNull()) << "row " << row;
    }
    EXPECT_TRUE(texts.contains(u"PATLAMIŞ MISIR,PORTAKAL"));
    EXPECT_TRUE(texts.contains(u"LAHANA, HAVUÇ SALATASI"));
    std::u16string all;
    for (const std::u16string& text : texts)
        all += text;
    for (const std::u16string letter : {u"Ç", u"Ğ", u"İ", u"Ö", u"Ş", u"Ü"})
        EXPECT_NE(all.find(letter), std::u16string::npos) << jet::toUtf8(letter);
}

TEST(SampleWorkbook, TheScriptMakesTheCommittedWorkbook) {
    int status = 0;
    runCommand(shellQuote(PERL_EXECUTABLE) + " -MSpreadsheet::WriteExcel -e1 2>/dev/null", &status);
    if (std::string(PERL_EXECUTABLE).empty() || status != 0) {
        GTEST_SKIP() << "perl with Spreadsheet::WriteExcel is absent: script not checked";
    }
    TempDir dir;
    const auto made = dir.path() / "made.xls";
    runCommand(shellQuote(PERL_EXECUTABLE) + " " + shellQuote(SAMPLE_WORKBOOK_SCRIPT) + " " +
                   shellQuote(made.string()),
               &status);
    ASSERT_EQ(status, 0);
    const SheetRead fromScript = readSheet(made);
    const SheetRead committed = readSheet(writeEmbedded(dir));
    EXPECT_EQ(fromScript.tables, committed.tables);
    EXPECT_EQ(fromScript.columns, committed.columns);
    EXPECT_EQ(fromScript.rows, committed.rows)
        << "run tools/make_sample_workbook.pl resources/YEMEK_MENUSU.XLS";
}

}  // namespace
}  // namespace resources
