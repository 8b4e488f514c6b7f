// The sample menu workbook: the embedded bytes are the committed file, read
// back by an independent reader (FreeXL) in the form the menu import expects,
// and the committed file is what the script makes today.

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include <freexl.h>
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

struct Cell {
    bool isNumber = false;
    double number = 0;
    std::string text;  // UTF-8
    bool operator==(const Cell&) const = default;
};
using Sheet = std::vector<std::vector<Cell>>;  // rows of cells

struct Workbook {
    std::vector<std::string> sheetNames;
    std::vector<Sheet> sheets;
    bool operator==(const Workbook&) const = default;
};

// Reads every sheet through FreeXL; returns FreeXL's code of the first
// failure, or FREEXL_OK.
int readWorkbook(const std::filesystem::path& path, Workbook* workbook) {
    const void* handle = nullptr;
    int status = freexl_open(path.c_str(), &handle);
    unsigned int sheetCount = 0;
    if (status == FREEXL_OK)
        status = freexl_get_info(handle, FREEXL_BIFF_SHEET_COUNT, &sheetCount);
    for (unsigned short index = 0; status == FREEXL_OK && index < sheetCount; ++index) {
        const char* name = nullptr;
        unsigned int rows = 0;
        unsigned short columns = 0;
        status = freexl_get_worksheet_name(handle, index, &name);
        if (status == FREEXL_OK)
            status = freexl_select_active_worksheet(handle, index);
        if (status == FREEXL_OK)
            status = freexl_worksheet_dimensions(handle, &rows, &columns);
        if (status != FREEXL_OK)
            break;
        workbook->sheetNames.emplace_back(name);
        Sheet& sheet = workbook->sheets.emplace_back(rows, std::vector<Cell>(columns));
        for (unsigned int row = 0; status == FREEXL_OK && row < rows; ++row) {
            for (unsigned short column = 0; status == FREEXL_OK && column < columns; ++column) {
                FreeXL_CellValue value;
                status = freexl_get_cell_value(handle, row, column, &value);
                Cell& cell = sheet[row][column];
                if (value.type == FREEXL_CELL_INT) {
                    cell = {true, static_cast<double>(value.value.int_value), {}};
                } else if (value.type == FREEXL_CELL_DOUBLE) {
                    cell = {true, value.value.double_value, {}};
                } else if (value.type == FREEXL_CELL_TEXT || value.type == FREEXL_CELL_SST_TEXT) {
                    cell.text = value.value.text_value;
                }
            }
        }
    }
    if (handle != nullptr)
        freexl_close(handle);
    return status;
}

Workbook readEmbeddedWorkbook(const TempDir& dir) {
    const QByteArray bytes = sampleWorkbook();
    const auto file = dir.path() / "YEMEK_MENUSU.XLS";
    jet::testing::writeFileBytes(file, std::vector<unsigned char>(bytes.begin(), bytes.end()));
    Workbook workbook;
    EXPECT_EQ(readWorkbook(file, &workbook), FREEXL_OK);
    return workbook;
}

TEST(SampleWorkbook, AnAprilMenuFourRowsADay) {
    const QByteArray bytes = sampleWorkbook();
    ASSERT_FALSE(bytes.isEmpty()) << "the workbook is not embedded";
    EXPECT_EQ(std::vector<unsigned char>(bytes.begin(), bytes.end()),
              readFileBytes(SAMPLE_WORKBOOK_FILE));

    TempDir dir;
    const Workbook workbook = readEmbeddedWorkbook(dir);
    ASSERT_EQ(workbook.sheetNames, (std::vector<std::string>{"Sayfa1", "Sayfa2", "Sayfa3"}));
    EXPECT_TRUE(workbook.sheets[1].empty());
    EXPECT_TRUE(workbook.sheets[2].empty());
    const Sheet& sheet = workbook.sheets[0];
    ASSERT_EQ(sheet.size(), 121u);
    ASSERT_EQ(sheet[0].size(), 6u);
    const std::vector<std::string> header = {"ay", "gun", "sabah", "ogle", "aksam", "ara_ogun"};
    for (std::size_t column = 0; column < header.size(); ++column) {
        EXPECT_EQ(sheet[0][column], (Cell{false, 0, header[column]}));
    }

    std::set<std::string> texts;
    for (std::size_t row = 1; row < sheet.size(); ++row) {
        const auto& cells = sheet[row];
        const std::size_t line = (row - 1) % 4;  // the row's place in its day
        EXPECT_EQ(cells[0], (Cell{true, 4, {}})) << "row " << row;
        EXPECT_EQ(cells[1], (Cell{true, static_cast<double>((row - 1) / 4 + 1), {}}))
            << "row " << row;
        // Meal columns hold texts only, noon and evening one dish a row, the
        // snack in the day's first row alone.
        for (std::size_t column = 2; column < 6; ++column) {
            EXPECT_FALSE(cells[column].isNumber) << "row " << row << " column " << column;
            texts.insert(cells[column].text);
        }
        EXPECT_FALSE(cells[3].text.empty()) << "row " << row;
        EXPECT_FALSE(cells[4].text.empty()) << "row " << row;
        EXPECT_EQ(cells[5].text.empty(), line != 0) << "row " << row;
        if (line == 0) {
            EXPECT_FALSE(cells[2].text.empty()) << "row " << row;
        }
    }
    for (std::size_t row = 1; row <= 4; ++row)
        EXPECT_FALSE(sheet[row][2].text.empty());
    EXPECT_TRUE(texts.contains("PATLAMIŞ MISIR,PORTAKAL"));
    EXPECT_TRUE(texts.contains("LAHANA, HAVUÇ SALATASI"));
    std::string all;
    for (const std::string& text : texts)
        all += text;
    for (const std::string letter : {"Ç", "Ğ", "İ", "Ö", "Ş", "Ü"}) {
        EXPECT_NE(all.find(letter), std::string::npos) << letter;
    }
}

// The menu import reads the sample through our own reader: the same cells
// as FreeXL gives, the header row naming the columns.
TEST(SampleWorkbook, OurReaderGivesWhatFreeXlGives) {
    TempDir dir;
    const Workbook expected = readEmbeddedWorkbook(dir);
    ASSERT_EQ(expected.sheets.size(), 3u);
    const Sheet& sheet = expected.sheets[0];
    store::Connection connection;
    connection.Open("Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=" +
                    (dir.path() / "YEMEK_MENUSU.XLS").string() +
                    ";DefaultDir=;Driver={Microsoft Excel Driver (*.xls)};DriverId=790;"
                    "FIL=excel 8.0;MaxScanRows=8;ReadOnly=1;");
    store::Recordset records;
    records.open(u"select* from `Sayfa1$`", connection);
    ASSERT_EQ(records.fieldNames().size(), sheet[0].size());
    for (std::size_t column = 0; column < sheet[0].size(); ++column) {
        EXPECT_EQ(jet::toUtf8(records.fieldNames()[column]), sheet[0][column].text);
    }
    ASSERT_EQ(records.recordCount(), static_cast<long>(sheet.size() - 1));
    for (std::size_t row = 1; row < sheet.size(); ++row) {
        for (std::size_t column = 0; column < sheet[row].size(); ++column) {
            const Cell& cell = sheet[row][column];
            // The script writes no cell for an empty snack: Null.
            const jet::Value value = cell.isNumber ? jet::Value::real(cell.number)
                                     : cell.text.empty()
                                         ? jet::Value()
                                         : jet::Value::text(jet::fromUtf8(cell.text));
            EXPECT_EQ(records.valueAt(static_cast<long>(row), column), value)
                << "row " << row << " column " << column;
        }
    }
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
    Workbook fromScript;
    ASSERT_EQ(readWorkbook(made, &fromScript), FREEXL_OK);
    EXPECT_EQ(fromScript, readEmbeddedWorkbook(dir))
        << "run tools/make_sample_workbook.pl resources/YEMEK_MENUSU.XLS";
}

TEST(SampleWorkbook, TheReaderRefusesWhatIsNoWorkbook) {
    TempDir dir;
    const auto text = dir.path() / "menu.xls";
    const std::string csv = "ay;gun;sabah\n4;1;ÇAY\n";
    jet::testing::writeFileBytes(text, std::vector<unsigned char>(csv.begin(), csv.end()));
    const auto empty = dir.path() / "empty.xls";
    jet::testing::writeFileBytes(empty, {});
    Workbook workbook;
    EXPECT_NE(readWorkbook(text, &workbook), FREEXL_OK);
    EXPECT_NE(readWorkbook(empty, &workbook), FREEXL_OK);
    EXPECT_NE(readWorkbook(dir.path() / "absent.xls", &workbook), FREEXL_OK);
    EXPECT_TRUE(workbook.sheetNames.empty());
}

}  // namespace
}  // namespace resources
