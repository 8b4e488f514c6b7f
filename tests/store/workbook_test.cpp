// Workbooks saved by an office suite, read as the menu import reads them:
// through a connection of the ODBC kind and a record set on "Sayfa1$",
// checked against what each fixture is known to hold and, where FreeXL can
// open the file, cell by cell against FreeXL.

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include <freexl.h>
#include <gtest/gtest.h>

#include "store/connection.h"
#include "store/jet/text.h"
#include "store/recordset.h"
#include "store/workbook/table_names.h"
#include "store/workbook/workbook.h"
#include "store/workbook/workbook_error.h"
#include "tests/store/jet/test_files.h"

namespace store {
namespace {

using jet::Value;
using workbook::WorkbookError;

std::filesystem::path workbookFixture(const std::string& name) {
    return jet::testing::fixturesDir() / "xls" / name;
}

// The string the menu import opens its workbook with.
std::string odbcString(const std::string& path) {
    return "Provider=MSDASQL.1;Persist Security Info=False;Extended Properties=DBQ=" + path +
           ";DefaultDir=;Driver={Microsoft Excel Driver (*.xls)};DriverId=790;FIL=excel 8.0;"
           "MaxBufferSize=2048;MaxScanRows=8;PageTimeout=5;ReadOnly=1;SafeTransactions=0;"
           "Threads=3;UID=admin;UserCommitSync=Yes;";
}

std::vector<std::u16string> schemaNames(const Connection& connection) {
    std::vector<std::u16string> names;
    for (const auto& row : connection.OpenSchema(Connection::kSchemaTables).rows) {
        EXPECT_EQ(row[3], Value::text(u"TABLE"));
        names.push_back(row[2].asText());
    }
    return names;
}

// A menu sheet: months of four rows a day, as the fixtures' README tells.
struct MenuSheet {
    std::string file;
    std::u16string table;
    std::vector<std::pair<int, int>> months;        // (month, days) in order
    std::vector<std::u16string> firstRow, lastRow;  // sabah, ogle
    bool snackColumn = true;
    bool blankSnacks = false;  // no cell instead of an empty text
    // Cells that read Null against the pattern: (data row, column).
    std::vector<std::pair<long, std::u16string>> nulls;
};

bool isNull(const MenuSheet& sheet, long row, std::u16string_view column) {
    for (const auto& [r, c] : sheet.nulls) {
        if (r == row && c == column)
            return true;
    }
    return false;
}

void checkMenu(const MenuSheet& sheet) {
    SCOPED_TRACE(sheet.file + " " + jet::toUtf8(sheet.table));
    Connection connection;
    connection.Open(odbcString(workbookFixture(sheet.file).string()));
    Recordset records;
    records.open(u"select* from `" + sheet.table + u"`", connection);
    std::vector<std::u16string> columns = {u"ay", u"gun", u"sabah", u"ogle", u"aksam"};
    if (sheet.snackColumn)
        columns.push_back(u"ara_ogun");
    ASSERT_EQ(records.fieldNames(), columns);
    EXPECT_EQ(records.fieldTypes()[0], jet::ColumnType::Double);
    EXPECT_EQ(records.fieldTypes()[1], jet::ColumnType::Double);
    EXPECT_EQ(records.fieldTypes()[2], jet::ColumnType::Text);
    long expectedRows = 0;
    for (const auto& [month, days] : sheet.months)
        expectedRows += 4L * days;
    ASSERT_EQ(records.recordCount(), expectedRows);

    long row = 0;
    records.moveFirst();
    for (const auto& [month, days] : sheet.months) {
        for (int day = 1; day <= days; ++day) {
            for (int line = 0; line < 4; ++line, ++row, records.moveNext()) {
                SCOPED_TRACE("data row " + std::to_string(row));
                auto expect = [&](std::u16string_view column, const Value& value) {
                    EXPECT_EQ(records.field(column), isNull(sheet, row, column) ? Value() : value)
                        << jet::toUtf8(std::u16string(column));
                };
                expect(u"ay", Value::real(month));
                expect(u"gun", Value::real(day));
                for (const char16_t* meal : {u"sabah", u"ogle", u"aksam"}) {
                    const Value value = records.field(meal);
                    if (isNull(sheet, row, meal)) {
                        EXPECT_TRUE(value.isNull());
                    } else {
                        ASSERT_EQ(value.kind(), Value::Kind::Text);
                        EXPECT_FALSE(value.asText().empty());
                    }
                }
                if (!sheet.snackColumn)
                    continue;
                const Value snack = records.field(u"ara_ogun");
                if (line == 0) {
                    ASSERT_EQ(snack.kind(), Value::Kind::Text);
                    EXPECT_FALSE(snack.asText().empty());
                } else {
                    EXPECT_EQ(snack, sheet.blankSnacks ? Value() : Value::text(u""));
                }
            }
        }
    }
    EXPECT_TRUE(records.eof());
    records.moveFirst();
    EXPECT_EQ(records.field(u"sabah"), Value::text(sheet.firstRow[0]));
    EXPECT_EQ(records.field(u"ogle"), Value::text(sheet.firstRow[1]));
    records.moveLast();
    EXPECT_EQ(records.field(u"sabah"), Value::text(sheet.lastRow[0]));
    EXPECT_EQ(records.field(u"ogle"), Value::text(sheet.lastRow[1]));

    // The import picks a month with a filter on the Double column.
    const int month = sheet.months.back().first;
    records.setFilter(u" ay=" + jet::fromUtf8(std::to_string(month)));
    EXPECT_EQ(records.recordCount(), 4L * sheet.months.back().second);
    records.setFilter(u"ay=13");
    EXPECT_EQ(records.recordCount(), 0);
}

// Every cell of every sheet that FreeXL reads, against ours.
void compareWithFreeXl(const void* handle, const workbook::Workbook& book) {
    unsigned int sheetCount = 0;
    ASSERT_EQ(freexl_get_info(handle, FREEXL_BIFF_SHEET_COUNT, &sheetCount), FREEXL_OK);
    ASSERT_EQ(book.sheets.size(), sheetCount);
    for (unsigned short index = 0; index < sheetCount; ++index) {
        const workbook::Sheet& sheet = book.sheets[index];
        const char* name = nullptr;
        unsigned int rows = 0;
        unsigned short columns = 0;
        ASSERT_EQ(freexl_get_worksheet_name(handle, index, &name), FREEXL_OK);
        EXPECT_EQ(jet::toUtf8(sheet.name), name);
        ASSERT_EQ(freexl_select_active_worksheet(handle, index), FREEXL_OK);
        ASSERT_EQ(freexl_worksheet_dimensions(handle, &rows, &columns), FREEXL_OK);
        EXPECT_LE(sheet.rows.size(), rows);
        for (unsigned int row = 0; row < rows; ++row) {
            if (row < sheet.rows.size()) {
                EXPECT_LE(sheet.rows[row].size(), columns);
            }
            for (unsigned short column = 0; column < columns; ++column) {
                FreeXL_CellValue value;
                ASSERT_EQ(freexl_get_cell_value(handle, row, column, &value), FREEXL_OK);
                const auto& cell = sheet.cell(row, column);
                const std::string where = std::to_string(row) + "," + std::to_string(column);
                if (value.type == FREEXL_CELL_INT) {
                    EXPECT_EQ(cell, workbook::CellValue(double(value.value.int_value))) << where;
                } else if (value.type == FREEXL_CELL_DOUBLE) {
                    EXPECT_EQ(cell, workbook::CellValue(value.value.double_value)) << where;
                } else if (value.type == FREEXL_CELL_TEXT || value.type == FREEXL_CELL_SST_TEXT) {
                    EXPECT_EQ(cell, workbook::CellValue(jet::fromUtf8(value.value.text_value)))
                        << where;
                } else {
                    EXPECT_EQ(value.type, FREEXL_CELL_NULL) << where;
                    EXPECT_FALSE(cell.has_value()) << where;
                }
            }
        }
    }
}

// False when FreeXL cannot open the file (it opens many valid ones without a
// handle).
bool crossCheckWithFreeXl(const std::filesystem::path& path) {
    SCOPED_TRACE(path.filename().string());
    const void* handle = nullptr;
    if (freexl_open(path.c_str(), &handle) != FREEXL_OK || handle == nullptr)
        return false;
    compareWithFreeXl(handle, workbook::readWorkbookFile(path));
    freexl_close(handle);
    return true;
}

TEST(Workbook, MenuFixturesReadAsTheImportReadsThem) {
    SKIP_WITHOUT_FIXTURES();
    const std::vector<std::u16string> first = {u"ZEYTİN", u"EZOGELİN ÇORBASI"};
    const std::vector<std::u16string> endOf30 = {u"SİMİT", u"SÜTLAÇ"};
    const std::vector<std::u16string> endOf31 = {u"HAŞLANMIŞ YUMURTA", u"KEMALPAŞA TATLISI"};
    auto menu = [&](std::string file, std::u16string table,
                    std::vector<std::pair<int, int>> months) {
        MenuSheet sheet;
        sheet.file = std::move(file);
        sheet.table = std::move(table);
        sheet.months = std::move(months);
        sheet.firstRow = first;
        sheet.lastRow = sheet.months.back().second == 30 ? endOf30 : endOf31;
        return sheet;
    };
    std::vector<MenuSheet> sheets = {
        menu("template.xls", u"Sayfa1$", {{4, 30}}),
        menu("template.xls", u"Menu", {{4, 30}}),
        menu("two-months.xls", u"sayfa1$", {{11, 30}, {12, 31}}),
        menu("blank-cells.xls", u"'Sayfa1$'", {{3, 31}}),
        menu("type-change.xls", u"Sayfa1$", {{5, 31}}),
        menu("turkish-sheets.xls", u"'Kasım Menüsü$'", {{11, 30}}),
        menu("turkish-sheets.xls", u"ARALIK$", {{12, 31}}),
        menu("thirty-one-days.xls", u"Sayfa1$", {{11, 31}}),
        menu("missing-column.xls", u"Sayfa1$", {{2, 28}}),
    };
    sheets[3].blankSnacks = true;
    for (int day = 5; day <= 30; day += 5)
        sheets[3].nulls.emplace_back(4L * day - 1, u"sabah");
    sheets[4].nulls = {{9, u"gun"}, {2, u"sabah"}};  // "on bir", 1234
    sheets[8].snackColumn = false;
    sheets[8].lastRow = {u"ZEYTİN", u"AYRAN"};
    for (const MenuSheet& sheet : sheets)
        checkMenu(sheet);

    Connection connection;
    connection.Open(odbcString(workbookFixture("turkish-sheets.xls").string()));
    EXPECT_EQ(schemaNames(connection),
              (std::vector<std::u16string>{u"'Kasım Menüsü$'", u"Aralık$", u"Sayfa3$"}));
    connection.Close();

    // The path as the program writes it: backslashes, blanks, Turkish letters.
    jet::testing::TempDir dir;
    std::filesystem::create_directory(dir.path() / "Menü Klasörü");
    std::filesystem::copy_file(workbookFixture("template.xls"),
                               dir.path() / "Menü Klasörü" / "Nisan Menüsü.xls");
    connection.Open(odbcString(dir.path().string() + "\\Menü Klasörü\\Nisan Menüsü.xls"));
    EXPECT_EQ(schemaNames(connection),
              (std::vector<std::u16string>{u"Menu", u"Sayfa1$", u"Sayfa2$", u"Sayfa3$"}));
    Recordset empty;
    empty.open(u"select* from [Sayfa2$]", connection);
    EXPECT_EQ(empty.fieldNames(), std::vector<std::u16string>{u"F1"});
    EXPECT_EQ(empty.fieldTypes(), std::vector<jet::ColumnType>{jet::ColumnType::Text});
    EXPECT_EQ(empty.recordCount(), 0);
    Recordset some;
    some.open(u"select gun, [ogle] as yemek from `Sayfa1$`", connection);
    EXPECT_EQ(some.fieldNames(), (std::vector<std::u16string>{u"gun", u"yemek"}));
    EXPECT_EQ(some.valueAt(120, 1), Value::text(u"SÜTLAÇ"));
    EXPECT_THROW(some.setField(0, Value::real(2)), DataError);  // read-only

    // No header row: the first menu row names the columns.
    connection.Close();
    connection.Open(odbcString(workbookFixture("no-header.xls").string()));
    Recordset noHeader;
    noHeader.open(u"select* from `Sayfa1$`", connection);
    EXPECT_EQ(noHeader.recordCount(), 123);
    EXPECT_EQ(noHeader.fieldNames()[0], u"1");
    EXPECT_EQ(noHeader.fieldNames()[2], u"ZEYTİN");
    EXPECT_THROW(noHeader.field(u"ay"), DataError);
    // ... unless the Jet string says HDR=NO: every row is data.
    connection.Close();
    connection.Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" +
                    workbookFixture("no-header.xls").string() +
                    ";Extended Properties=\"Excel 8.0;HDR=NO;\"");
    noHeader.close();
    noHeader.open(u"select* from `Sayfa1$`", connection);
    EXPECT_EQ(noHeader.fieldNames(),
              (std::vector<std::u16string>{u"F1", u"F2", u"F3", u"F4", u"F5", u"F6"}));
    EXPECT_EQ(noHeader.recordCount(), 124);
    EXPECT_EQ(noHeader.valueAt(124, 1), Value::real(31));

    Recordset noSnack;
    connection.Close();
    connection.Open(odbcString(workbookFixture("missing-column.xls").string()));
    noSnack.open(u"select* from `Sayfa1$`", connection);
    EXPECT_THROW(noSnack.field(u"ara_ogun"), DataError);

    int crossChecked = 0;
    for (const auto& entry : std::filesystem::directory_iterator(workbookFixture(""))) {
        if (entry.path().extension() == ".xls" && crossCheckWithFreeXl(entry.path())) {
            ++crossChecked;
        }
    }
    EXPECT_GE(crossChecked, 2);  // blank-cells.xls and missing-column.xls
}

using Bytes = std::vector<std::uint8_t>;

void put16(Bytes& out, unsigned value) {
    out.push_back(static_cast<std::uint8_t>(value));
    out.push_back(static_cast<std::uint8_t>(value >> 8));
}
void put32(Bytes& out, std::uint32_t value) {
    put16(out, value & 0xFFFF);
    put16(out, value >> 16);
}
void putRecord(Bytes& out, unsigned type, const Bytes& data) {
    put16(out, type);
    put16(out, static_cast<unsigned>(data.size()));
    out.insert(out.end(), data.begin(), data.end());
}
Bytes cellHeader(unsigned row, unsigned column) {
    Bytes data;
    put16(data, row);
    put16(data, column);
    put16(data, 15);  // format
    return data;
}

// A compound file of one stream "Workbook", written the plain way: FAT,
// directory, mini FAT, then the data, each one sector; a stream under 4096
// bytes in the mini stream.
Bytes compoundFile(const Bytes& stream, unsigned sectorShift) {
    const std::size_t sectorSize = std::size_t{1} << sectorShift;
    const bool mini = stream.size() < 4096;
    Bytes data = stream;
    data.resize((data.size() + 63) / 64 * 64);
    const std::size_t dataSectors = (data.size() + sectorSize - 1) / sectorSize;
    Bytes file(sectorSize * (4 + dataSectors));
    auto at = [&](std::size_t sector, std::size_t offset) {
        return (sector + 1) * sectorSize + offset;
    };
    auto set32 = [&](std::size_t position, std::uint32_t value) {
        for (int i = 0; i < 4; ++i)
            file[position + i] = static_cast<std::uint8_t>(value >> (8 * i));
    };
    const std::uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    std::copy(std::begin(signature), std::end(signature), file.begin());
    for (std::size_t i = 0x4C; i < 512; i += 4)
        set32(i, 0xFFFFFFFF);
    set32(0x18, (sectorShift == 9 ? 3u : 4u) << 16 | 0x3E);
    set32(0x1C, 0xFFFE | sectorShift << 16);
    set32(0x20, 6);
    set32(0x28, sectorShift == 9 ? 0 : 1);
    set32(0x2C, 1);  // one FAT sector: sector 0
    set32(0x30, 1);  // directory: sector 1
    set32(0x38, 4096);
    set32(0x3C, mini ? 2 : 0xFFFFFFFE);
    set32(0x40, mini ? 1 : 0);
    set32(0x44, 0xFFFFFFFE);
    set32(0x4C, 0);
    for (std::size_t i = 0; i < sectorSize / 4; ++i)
        set32(at(0, 4 * i), 0xFFFFFFFF);
    set32(at(0, 0), 0xFFFFFFFD);
    set32(at(0, 4), 0xFFFFFFFE);
    set32(at(0, 8), 0xFFFFFFFE);
    for (std::size_t i = 0; i < dataSectors; ++i) {
        set32(at(0, 4 * (3 + i)), i + 1 < dataSectors ? 3 + i + 1 : 0xFFFFFFFE);
    }
    for (std::size_t i = 0; i < sectorSize / 4; ++i)
        set32(at(2, 4 * i), 0xFFFFFFFF);
    for (std::size_t i = 0; mini && i < data.size() / 64; ++i) {
        set32(at(2, 4 * i), i + 1 < data.size() / 64 ? i + 1 : 0xFFFFFFFE);
    }
    std::copy(data.begin(), data.end(), file.begin() + at(3, 0));
    auto entry = [&](std::size_t index, std::u16string_view name, std::uint8_t type,
                     std::uint32_t child, std::uint32_t start, std::uint32_t size) {
        const std::size_t base = at(1, 128 * index);
        for (std::size_t i = 0; i < name.size(); ++i)
            file[base + 2 * i] = name[i] & 0xFF;
        file[base + 64] = static_cast<std::uint8_t>(2 * name.size() + 2);
        file[base + 66] = type;
        set32(base + 68, 0xFFFFFFFF);
        set32(base + 72, 0xFFFFFFFF);
        set32(base + 76, child);
        set32(base + 116, start);
        set32(base + 120, size);
    };
    entry(0, u"Root Entry", 5, 1, mini ? 3 : 0xFFFFFFFE, mini ? data.size() : 0);
    entry(1, u"Workbook", 2, 0xFFFFFFFF, mini ? 0 : 3, stream.size());
    return file;
}

// The records the fixtures do not hold: LABEL, RK, MULRK, BOOLERR, FORMULA
// with each kind of result, an SST string cut by a CONTINUE that changes to
// 16-bit characters, rich and phonetic strings, a chart sheet, and names.
Bytes handMadeWorkbook(std::size_t padding) {
    Bytes globals, sheet, data;
    Bytes bof = {0x00, 0x06, 0x05, 0x00};
    bof.resize(16);
    putRecord(globals, 0x0809, bof);
    auto boundSheet = [&](std::u16string_view name, std::uint8_t type) {
        Bytes record(4);  // the offset, set below
        record.push_back(0);
        record.push_back(type);
        record.push_back(static_cast<std::uint8_t>(name.size()));
        record.push_back(0);
        for (const char16_t c : name)
            record.push_back(static_cast<std::uint8_t>(c));
        putRecord(globals, 0x0085, record);
    };
    const std::size_t sheetOffsetAt = globals.size() + 4;
    boundSheet(u"Sayfa1", 0);
    boundSheet(u"Grafik1", 2);
    // SST: "ay"; "KEK, S" + (CONTINUE, now 16-bit) "ÜT"; a rich "gün" with one
    // run; a phonetic "x" with 3 bytes of phonetic data.
    Bytes sst;
    put32(sst, 4);
    put32(sst, 4);
    put16(sst, 2), sst.push_back(0), sst.push_back('a'), sst.push_back('y');
    put16(sst, 8), sst.push_back(0);
    for (const char c : std::string("KEK, S"))
        sst.push_back(static_cast<std::uint8_t>(c));
    Bytes more = {0x01};
    put16(more, u'Ü'), put16(more, u'T');
    put16(more, 3), more.push_back(0x08), put16(more, 1);
    more.push_back('g'), more.push_back(0xFC), more.push_back('n');
    put32(more, 0);
    put16(more, 1), more.push_back(0x04), put32(more, 3), more.push_back('x');
    more.insert(more.end(), {1, 2, 3});
    putRecord(globals, 0x00FC, sst);
    putRecord(globals, 0x003C, more);
    Bytes externSheet;
    put16(externSheet, 1), put16(externSheet, 0), put16(externSheet, 0), put16(externSheet, 0);
    putRecord(globals, 0x0017, externSheet);
    auto name = [&](std::string_view text, unsigned flags) {
        Bytes record;
        put16(record, flags);
        record.push_back(0);
        record.push_back(static_cast<std::uint8_t>(text.size()));
        put16(record, 11);
        put16(record, 0), put16(record, 0), put32(record, 0);
        record.push_back(0);
        record.insert(record.end(), text.begin(), text.end());
        record.push_back(0x3B), put16(record, 0);
        put16(record, 0), put16(record, 2), put16(record, 0), put16(record, 1);  // A1:B3
        putRecord(globals, 0x0018, record);
    };
    name("Menu", 0);
    name("\x06", 0x20);  // a built-in name: the print area
    putRecord(globals, 0x00EB, Bytes(padding));
    putRecord(globals, 0x000A, {});

    bof[2] = 0x10;
    putRecord(sheet, 0x0809, bof);
    Bytes record = cellHeader(0, 0);
    put32(record, 0);
    putRecord(sheet, 0x00FD, record);  // "ay"
    record = cellHeader(0, 1);
    put16(record, 3), record.push_back(1), put16(record, u'g'), put16(record, u'ü'),
        put16(record, u'n');
    putRecord(sheet, 0x0204, record);  // LABEL "gün", 16-bit
    record = cellHeader(1, 0);
    put32(record, 400u << 2 | 0x03);  // 4.00 as an integer in hundredths
    putRecord(sheet, 0x027E, record);
    record = {1, 0, 1, 0};  // row 1, from column 1
    put16(record, 15), put32(record, 1u << 2 | 0x02);
    put16(record, 15), put32(record, 0x40040000);  // 2.5 by its high bits
    put16(record, 2);
    putRecord(sheet, 0x00BD, record);
    auto formula = [&](unsigned row, unsigned column, Bytes result) {
        Bytes cell = cellHeader(row, column);
        cell.insert(cell.end(), result.begin(), result.end());
        put16(cell, 0), put32(cell, 0), put16(cell, 0);
        putRecord(sheet, 0x0006, cell);
    };
    formula(2, 0, {0, 0, 0, 0, 0, 0, 0x10, 0x40});  // 4
    formula(2, 1, {0, 0, 0, 0, 0, 0, 0xFF, 0xFF});  // a string ...
    record.clear();
    put16(record, 5), record.push_back(0);
    for (const char c : std::string("pilav"))
        record.push_back(static_cast<std::uint8_t>(c));
    putRecord(sheet, 0x0207, record);               // ... in the STRING after it
    formula(2, 2, {3, 0, 0, 0, 0, 0, 0xFF, 0xFF});  // an empty string
    formula(3, 0, {1, 0, 1, 0, 0, 0, 0xFF, 0xFF});  // TRUE
    formula(3, 1, {2, 0, 7, 0, 0, 0, 0xFF, 0xFF});  // #DIV/0!
    record = cellHeader(3, 2);
    record.push_back(0), record.push_back(0);
    putRecord(sheet, 0x0205, record);  // FALSE
    record = cellHeader(4, 0);
    record.push_back(0x2A), record.push_back(1);
    putRecord(sheet, 0x0205, record);  // #N/A
    for (const auto& [row, column, index] : {std::tuple{4u, 1u, 2u}, {5u, 0u, 1u}, {5u, 2u, 3u}}) {
        record = cellHeader(row, column);
        put32(record, index);
        putRecord(sheet, 0x00FD, record);
    }
    putRecord(sheet, 0x0201, cellHeader(5, 1));  // BLANK
    putRecord(sheet, 0x000A, {});

    data = globals;
    const std::uint32_t sheetOffset = static_cast<std::uint32_t>(data.size());
    for (int i = 0; i < 4; ++i)
        data[sheetOffsetAt + i] = static_cast<std::uint8_t>(sheetOffset >> (8 * i));
    data.insert(data.end(), sheet.begin(), sheet.end());
    return data;
}

TEST(Workbook, RecordsOfOtherWritersInBothSectorSizes) {
    using workbook::CellError;
    using workbook::CellValue;
    for (const unsigned shift : {9u, 12u}) {
        for (const std::size_t padding : {std::size_t{0}, std::size_t{5000}}) {
            SCOPED_TRACE("sector shift " + std::to_string(shift) + ", padding " +
                         std::to_string(padding));
            const workbook::Workbook book =
                workbook::readWorkbook(compoundFile(handMadeWorkbook(padding), shift));
            ASSERT_EQ(book.sheets.size(), 1u);
            const workbook::Sheet& sheet = book.sheets[0];
            EXPECT_EQ(sheet.name, u"Sayfa1");
            const std::vector<std::vector<std::optional<CellValue>>> expected = {
                {u"ay", u"gün"},           {4.0, 1.0, 2.5},
                {4.0, u"pilav", u""},      {true, CellError{7}, false},
                {CellError{0x2A}, u"gün"}, {u"KEK, SÜT", std::nullopt, u"x"},
            };
            EXPECT_EQ(sheet.rows, expected);
            ASSERT_EQ(book.names.size(), 1u);
            EXPECT_EQ(book.names[0].name, u"Menu");
            EXPECT_EQ(book.names[0].range.lastRow, 2u);
            EXPECT_EQ(workbook::tableNames(book),
                      (std::vector<std::u16string>{u"Sayfa1$", u"Menu"}));
            // Types from the first rows: two texts outvote a number, a tie of a number,
            // a text and a boolean goes to number.
            const workbook::SheetTable table = workbook::readTable(book, u"Sayfa1$", true);
            EXPECT_EQ(table.columnNames, (std::vector<std::u16string>{u"ay", u"gün", u"F3"}));
            const Value null;
            EXPECT_EQ(table.rows, (std::vector<std::vector<Value>>{
                                      {Value::real(4), null, Value::real(2.5)},
                                      {Value::real(4), Value::text(u"pilav"), null},
                                      {null, null, null},
                                      {null, Value::text(u"gün"), null},
                                      {null, null, null}}));
            EXPECT_EQ(workbook::readTable(book, u"menu", true).rows.size(), 2u);
        }
    }
}

WorkbookError::Kind refusal(const std::filesystem::path& path) {
    Connection connection;
    try {
        connection.Open(odbcString(path.string()));
    } catch (const WorkbookError& error) {
        EXPECT_FALSE(connection.isOpen());
        return error.kind();
    }
    ADD_FAILURE() << path << " was opened";
    return WorkbookError::Kind::TableNotFound;
}

std::vector<unsigned char> patched(std::vector<unsigned char> bytes,
                                   const std::vector<unsigned char>& from,
                                   const std::vector<unsigned char>& to) {
    const auto at = std::search(bytes.begin(), bytes.end(), from.begin(), from.end());
    EXPECT_NE(at, bytes.end());
    if (at != bytes.end())
        std::copy(to.begin(), to.end(), at);
    return bytes;
}

TEST(Workbook, WhatIsNoReadableWorkbookIsRefusedByKind) {
    SKIP_WITHOUT_FIXTURES();
    using Kind = WorkbookError::Kind;
    jet::testing::TempDir dir;
    auto write = [&](const std::string& name, const std::vector<unsigned char>& bytes) {
        jet::testing::writeFileBytes(dir.path() / name, bytes);
        return dir.path() / name;
    };
    EXPECT_EQ(refusal(workbookFixture("template.xlsx")), Kind::NewerFormat);
    const std::string csv = "ay;gun;sabah\n4;1;ÇAY\n";
    EXPECT_EQ(refusal(write("menu.xls", {csv.begin(), csv.end()})), Kind::NotAWorkbook);
    EXPECT_EQ(refusal(write("empty.xls", {})), Kind::NotAWorkbook);

    const std::vector<unsigned char> book =
        jet::testing::readFileBytes(workbookFixture("template.xls"));
    for (const std::size_t size :
         {std::size_t{600}, std::size_t{4096}, book.size() / 2, book.size() - 1024}) {
        const std::vector<unsigned char> cut(book.begin(), book.begin() + long(size));
        EXPECT_EQ(refusal(write("cut.xls", cut)), Kind::Damaged) << size << " bytes";
    }
    // The globals' BOF of Excel 95, and a FILEPASS in place of the record after it.
    const std::vector<unsigned char> bof = {0x09, 0x08, 0x10, 0x00, 0x00, 0x06, 0x05, 0x00};
    std::vector<unsigned char> biff5 = bof;
    biff5[5] = 0x05;
    EXPECT_EQ(refusal(write("biff5.xls", patched(book, bof, biff5))), Kind::OlderFormat);
    std::vector<unsigned char> locked = book;
    const std::size_t at =
        std::search(book.begin(), book.end(), bof.begin(), bof.end()) - book.begin();
    const std::size_t afterBof = at + 4 + (book[at + 2] | book[at + 3] << 8);
    locked[afterBof] = 0x2F;
    locked[afterBof + 1] = 0x00;
    EXPECT_EQ(refusal(write("locked.xls", locked)), Kind::PasswordProtected);

    // A stray text at IV65501 stretches the sheet beyond any menu.
    std::vector<unsigned char> far = book;
    const std::vector<unsigned char> labelSst = {0xFD, 0x00, 0x0A, 0x00};
    const std::size_t cell =
        std::search(book.begin(), book.end(), labelSst.begin(), labelSst.end()) - book.begin();
    far[cell + 4] = 0xDC;
    far[cell + 5] = 0xFF;
    far[cell + 6] = 0xFF;
    write("far.xls", far);
    Connection connection;
    connection.Open(odbcString((dir.path() / "far.xls").string()));
    try {
        connection.Execute(u"select* from `Sayfa1$`");
        ADD_FAILURE() << "a sheet of 16 million cells was read";
    } catch (const WorkbookError& error) {
        EXPECT_EQ(error.kind(), Kind::Damaged);
    }
    connection.Close();

    connection.Open(odbcString(workbookFixture("template.xls").string()));
    try {
        connection.Execute(u"select* from `Sayfa9$`");
        ADD_FAILURE() << "an absent sheet was read";
    } catch (const WorkbookError& error) {
        EXPECT_EQ(error.kind(), Kind::TableNotFound);
    }
    EXPECT_THROW(connection.Execute(u"select* from Menu where ay=4"), DataError);
    EXPECT_THROW(connection.Execute(u"delete from Menu"), DataError);
    EXPECT_THROW(connection.Execute(u"select yil from Menu"), DataError);

    // What the workbook fuzzer once broke the reader with.
    for (const auto& entry : std::filesystem::directory_iterator(FUZZ_REGRESSIONS_DIR)) {
        try {
            const workbook::Workbook found = workbook::readWorkbookFile(entry.path());
            for (const std::u16string& name : workbook::tableNames(found)) {
                workbook::readTable(found, name, true);
            }
        } catch (const jet::Error&) {
        }
    }
}

}  // namespace
}  // namespace store
