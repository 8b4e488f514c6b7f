// jetdump on workbooks: the tables in the sheet picker's order, a sheet as
// CSV in the form of a table dump, exit status 2 for what is no workbook.

#include <string>

#include <gtest/gtest.h>

#include "tests/store/jet/test_files.h"

namespace {

using jet::testing::runCommand;
using jet::testing::shellQuote;

std::string jetdump(const std::string& arguments, int* status) {
    return runCommand(shellQuote(JETDUMP_EXECUTABLE) + " " + arguments + " 2>/dev/null", status);
}

TEST(Jetdump, ListsAndDumpsAWorkbook) {
    SKIP_WITHOUT_FIXTURES();
    const std::string book =
        shellQuote((jet::testing::fixturesDir() / "xls" / "turkish-sheets.xls").string());
    int status = -1;
    EXPECT_EQ(jetdump(book, &status), "'Kasım Menüsü$'\nAralık$\nSayfa3$\n");
    EXPECT_EQ(status, 0);
    const std::string csv = jetdump(book + " \"'Kasım Menüsü\\$'\"", &status);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(csv.substr(0, csv.find('\n', csv.find('\n') + 1) + 1),
              "ay,gun,sabah,ogle,aksam,ara_ogun\n"
              "11,1,\"ZEYTİN\",\"EZOGELİN ÇORBASI\",\"MEVSİM SALATA\",\"KEK, SÜT\"\n");
    EXPECT_EQ(jet::testing::csvRecords(csv).size(), 121u);

    jetdump(shellQuote((jet::testing::fixturesDir() / "xls" / "template.xlsx").string()), &status);
    EXPECT_EQ(status, 2);
    jetdump(book + " 'Sayfa9$'", &status);
    EXPECT_EQ(status, 2);
}

}  // namespace
