// Workbooks saved by an office suite, read as the menu import reads them:
// through a connection of the ODBC kind and a record set on "Sayfa1$",
// checked against what each fixture is known to hold and, where FreeXL can
// open the file, cell by cell against FreeXL.

#include <algorithm>
#include <cstdint>
#include <filesystem>
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

std::vector<std::u16string> schemaNames(const std::string& connectionString) {
    Connection connection;
    connection.Open(connectionString);
    std::vector<std::u16string> names;
    for (const auto& row : connection.OpenSchema(Connection::kSchemaTables).rows) {
        EXPECT_EQ(row[3], Value::text(u"TABLE"));
        names.push_back(row[2].asText());
    }
    return names;
}

// The query's rows on a connection of its own; the record set keeps it.
Recordset opened(const std::string& connectionString, std::u16string_view query) {
    Connection connection;
    connection.Open(connectionString);
    Recordset records;
    records.open(query, connection);
    return records;
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
    return std::ranges::count(sheet.nulls, std::pair{row, std::u16string(column)}) > 0;
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
                for (const auto& [column, value] :
                     {std::pair{u"ay", Value::real(month)}, {u"gun", Value::real(day)}}) {
                    EXPECT_EQ(records.field(column), isNull(sheet, row, column) ? Value() : value)
                        << jet::toUtf8(column);
                }
                // A dish in every meal, but the snack in a day's first row only.
                for (const char16_t* meal : {u"sabah", u"ogle", u"aksam", u"ara_ogun"}) {
                    const bool snack = meal == std::u16string_view(u"ara_ogun");
                    if (snack && !sheet.snackColumn)
                        continue;
                    const Value value = records.field(meal);
                    if (snack && line > 0) {
                        EXPECT_EQ(value, sheet.blankSnacks ? Value() : Value::text(u""));
                    } else if (isNull(sheet, row, meal)) {
                        EXPECT_TRUE(value.isNull()) << jet::toUtf8(meal);
                    } else {
                        EXPECT_TRUE(value.kind() == Value::Kind::Text && !value.asText().empty())
                            << jet::toUtf8(meal);
                    }
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

// Every cell of every sheet that FreeXL reads, against ours; false when
// FreeXL cannot open the file (it opens many valid ones without a handle).
bool crossCheckWithFreeXl(const std::filesystem::path& path) {
    SCOPED_TRACE(path.filename().string());
    const void* handle = nullptr;
    if (freexl_open(path.c_str(), &handle) != FREEXL_OK || handle == nullptr)
        return false;
    const workbook::Workbook book = workbook::readWorkbookFile(path);
    [&] {
        unsigned int sheetCount = 0;
        ASSERT_EQ(freexl_get_info(handle, FREEXL_BIFF_SHEET_COUNT, &sheetCount), FREEXL_OK);
        ASSERT_EQ(book.sheets.size(), sheetCount);
        for (unsigned int index = 0; index < sheetCount; ++index) {
            const workbook::Sheet& sheet = book.sheets[index];
            const char* name = nullptr;
            unsigned int rows = 0;
            unsigned short columns = 0;
            ASSERT_EQ(freexl_get_worksheet_name(handle, static_cast<unsigned short>(index), &name),
                      FREEXL_OK);
            EXPECT_EQ(jet::toUtf8(sheet.name), name);
            ASSERT_EQ(freexl_select_active_worksheet(handle, static_cast<unsigned short>(index)),
                      FREEXL_OK);
            ASSERT_EQ(freexl_worksheet_dimensions(handle, &rows, &columns), FREEXL_OK);
            EXPECT_LE(sheet.rows.size(), rows);
            for (unsigned int row = 0; row < rows; ++row) {
                if (row < sheet.rows.size()) {
                    EXPECT_LE(sheet.rows[row].size(), columns);
                }
                for (unsigned short column = 0; column < columns; ++column) {
                    FreeXL_CellValue value;
                    ASSERT_EQ(freexl_get_cell_value(handle, row, column, &value), FREEXL_OK);
                    const std::string where = std::to_string(row) + "," + std::to_string(column);
                    std::optional<workbook::CellValue> expected;
                    if (value.type == FREEXL_CELL_INT)
                        expected = double(value.value.int_value);
                    else if (value.type == FREEXL_CELL_DOUBLE)
                        expected = value.value.double_value;
                    else if (value.type == FREEXL_CELL_TEXT || value.type == FREEXL_CELL_SST_TEXT)
                        expected = jet::fromUtf8(value.value.text_value);
                    else
                        EXPECT_EQ(value.type, FREEXL_CELL_NULL) << where;
                    EXPECT_EQ(sheet.cell(row, column), expected) << where;
                }
            }
        }
    }();
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
        const auto& last = months.back().second == 30 ? endOf30 : endOf31;
        return MenuSheet{
            std::move(file), std::move(table), std::move(months), first, last, true, false, {}};
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

    EXPECT_EQ(schemaNames(odbcString(workbookFixture("turkish-sheets.xls").string())),
              (std::vector<std::u16string>{u"'Kasım Menüsü$'", u"Aralık$", u"Sayfa3$"}));

    // The path as the program writes it: backslashes, blanks, Turkish letters.
    jet::testing::TempDir dir;
    std::filesystem::create_directory(dir.path() / "Menü Klasörü");
    std::filesystem::copy_file(workbookFixture("template.xls"),
                               dir.path() / "Menü Klasörü" / "Nisan Menüsü.xls");
    const std::string copy = odbcString(dir.path().string() + "\\Menü Klasörü\\Nisan Menüsü.xls");
    EXPECT_EQ(schemaNames(copy),
              (std::vector<std::u16string>{u"Menu", u"Sayfa1$", u"Sayfa2$", u"Sayfa3$"}));
    const Recordset empty = opened(copy, u"select* from [Sayfa2$]");
    EXPECT_EQ(empty.fieldNames(), std::vector<std::u16string>{u"F1"});
    EXPECT_EQ(empty.fieldTypes(), std::vector<jet::ColumnType>{jet::ColumnType::Text});
    EXPECT_EQ(empty.recordCount(), 0);
    Recordset some = opened(copy, u"select gun, [ogle] as yemek from `Sayfa1$`");
    EXPECT_EQ(some.fieldNames(), (std::vector<std::u16string>{u"gun", u"yemek"}));
    EXPECT_EQ(some.valueAt(120, 1), Value::text(u"SÜTLAÇ"));
    EXPECT_THROW(some.setField(0, Value::real(2)), DataError);  // read-only

    // No header row: the first menu row names the columns.
    const std::string noHeaderFile = workbookFixture("no-header.xls").string();
    Recordset noHeader = opened(odbcString(noHeaderFile), u"select* from `Sayfa1$`");
    EXPECT_EQ(noHeader.recordCount(), 123);
    EXPECT_EQ(noHeader.fieldNames()[0], u"1");
    EXPECT_EQ(noHeader.fieldNames()[2], u"ZEYTİN");
    EXPECT_THROW(noHeader.field(u"ay"), DataError);
    // ... unless the Jet string says HDR=NO: every row is data.
    noHeader = opened("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + noHeaderFile +
                          ";Extended Properties=\"Excel 8.0;HDR=NO;\"",
                      u"select* from `Sayfa1$`");
    EXPECT_EQ(noHeader.fieldNames(),
              (std::vector<std::u16string>{u"F1", u"F2", u"F3", u"F4", u"F5", u"F6"}));
    EXPECT_EQ(noHeader.recordCount(), 124);
    EXPECT_EQ(noHeader.valueAt(124, 1), Value::real(31));

    int crossChecked = 0;
    for (const auto& entry : std::filesystem::directory_iterator(workbookFixture(""))) {
        if (entry.path().extension() == ".xls" && crossCheckWithFreeXl(entry.path()))
            ++crossChecked;
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
Bytes bytes32(std::uint32_t value) {
    Bytes out;
    put32(out, value);
    return out;
}
void putLatin1(Bytes& out, std::string_view text) {
    for (const char c : text)
        out.push_back(static_cast<std::uint8_t>(c));
}
void putRecord(Bytes& out, unsigned type, const Bytes& data) {
    put16(out, type);
    put16(out, static_cast<unsigned>(data.size()));
    out.insert(out.end(), data.begin(), data.end());
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
    // Sectors first to first + count - 1 linked one after the other.
    auto chain = [&](std::size_t table, std::size_t first, std::size_t count) {
        for (std::size_t i = first; i < first + count; ++i)
            set32(table + 4 * i, i + 1 < first + count ? i + 1 : 0xFFFFFFFE);
    };
    const std::uint8_t signature[] = {0xD0, 0xCF, 0x11, 0xE0, 0xA1, 0xB1, 0x1A, 0xE1};
    std::copy(std::begin(signature), std::end(signature), file.begin());
    std::fill(file.begin() + 0x4C, file.begin() + 512, 0xFF);  // no more FAT sectors
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
    // The FAT and the mini FAT start all free.
    std::fill(file.begin() + at(0, 0), file.begin() + at(1, 0), 0xFF);
    std::fill(file.begin() + at(2, 0), file.begin() + at(3, 0), 0xFF);
    set32(at(0, 0), 0xFFFFFFFD);
    chain(at(0, 0), 1, 1);
    chain(at(0, 0), 2, 1);
    chain(at(0, 0), 3, dataSectors);
    chain(at(2, 0), 0, mini ? data.size() / 64 : 0);
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
    Bytes globals, sheet;
    Bytes bof = {0x00, 0x06, 0x05, 0x00};
    bof.resize(16);
    putRecord(globals, 0x0809, bof);
    auto boundSheet = [&](std::string_view name, std::uint8_t type) {
        // The sheet's offset, set below, then visibility, type and a 8-bit name.
        Bytes record = {0, 0, 0, 0, 0, type, static_cast<std::uint8_t>(name.size()), 0};
        putLatin1(record, name);
        putRecord(globals, 0x0085, record);
    };
    const std::size_t sheetOffsetAt = globals.size() + 4;
    boundSheet("Sayfa1", 0);
    boundSheet("Grafik1", 2);
    // SST: "ay"; "KEK, S" + (CONTINUE, now 16-bit) "ÜT"; a rich "gün" with one
    // run; a phonetic "x" with 3 bytes of phonetic data.
    Bytes sst;
    put32(sst, 4), put32(sst, 4);
    put16(sst, 2), sst.push_back(0), putLatin1(sst, "ay");
    put16(sst, 8), sst.push_back(0), putLatin1(sst, "KEK, S");
    Bytes more = {0x01};
    put16(more, u'Ü'), put16(more, u'T');
    put16(more, 3), more.push_back(0x08), put16(more, 1), putLatin1(more, "g\xFCn"), put32(more, 0);
    put16(more, 1), more.push_back(0x04), put32(more, 3), putLatin1(more, "x\1\2\3");
    putRecord(globals, 0x00FC, sst);
    putRecord(globals, 0x003C, more);
    putRecord(globals, 0x0017, {1, 0, 0, 0, 0, 0, 0, 0});  // EXTERNSHEET: one entry, sheet 0
    auto name = [&](std::string_view text, unsigned flags) {
        Bytes record;
        put16(record, flags);
        record.push_back(0), record.push_back(static_cast<std::uint8_t>(text.size()));
        put16(record, 11), put16(record, 0), put16(record, 0), put32(record, 0);
        record.push_back(0), putLatin1(record, text);
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
    auto cell = [&](unsigned type, unsigned row, unsigned column, const Bytes& value) {
        Bytes record;
        put16(record, row), put16(record, column), put16(record, 15);  // format
        record.insert(record.end(), value.begin(), value.end());
        putRecord(sheet, type, record);
    };
    cell(0x00FD, 0, 0, bytes32(0));                          // "ay"
    cell(0x0204, 0, 1, {3, 0, 1, 'g', 0, 0xFC, 0, 'n', 0});  // LABEL "gün", 16-bit
    cell(0x027E, 1, 0, bytes32(400u << 2 | 0x03));           // 4.00 as an integer in hundredths
    // MULRK in row 1 from column 1: 1 as an integer, 2.5 by its high bits.
    Bytes mulRk = {1, 0, 1, 0, 15, 0};
    put32(mulRk, 1u << 2 | 0x02), put16(mulRk, 15), put32(mulRk, 0x40040000), put16(mulRk, 2);
    putRecord(sheet, 0x00BD, mulRk);
    // A result, then options, chain and an empty expression: all zero.
    auto formula = [&](unsigned row, unsigned column, Bytes result) {
        result.resize(result.size() + 8);
        cell(0x0006, row, column, result);
    };
    formula(2, 0, {0, 0, 0, 0, 0, 0, 0x10, 0x40});  // 4
    formula(2, 1, {0, 0, 0, 0, 0, 0, 0xFF, 0xFF});  // a string ...
    Bytes text = {5, 0, 0};
    putLatin1(text, "pilav");
    putRecord(sheet, 0x0207, text);                 // ... in the STRING after it
    formula(2, 2, {3, 0, 0, 0, 0, 0, 0xFF, 0xFF});  // an empty string
    formula(3, 0, {1, 0, 1, 0, 0, 0, 0xFF, 0xFF});  // TRUE
    formula(3, 1, {2, 0, 7, 0, 0, 0, 0xFF, 0xFF});  // #DIV/0!
    cell(0x0205, 3, 2, {0, 0});                     // FALSE
    cell(0x0205, 4, 0, {0x2A, 1});                  // #N/A
    for (const auto& [row, column, index] : {std::tuple{4u, 1u, 2u}, {5u, 0u, 1u}, {5u, 2u, 3u}})
        cell(0x00FD, row, column, bytes32(index));
    cell(0x0201, 5, 1, {});  // BLANK
    putRecord(sheet, 0x000A, {});

    const auto sheetOffset = static_cast<std::uint32_t>(globals.size());
    for (int i = 0; i < 4; ++i)
        globals[sheetOffsetAt + i] = static_cast<std::uint8_t>(sheetOffset >> (8 * i));
    globals.insert(globals.end(), sheet.begin(), sheet.end());
    return globals;
}

TEST(Workbook, RecordsOfOtherWritersInBothSectorSizes) {
    using workbook::CellError;
    using workbook::CellValue;
    for (const unsigned shift : {9u, 12u}) {
        for (const std::size_t padding : {0, 5000}) {
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

// Why the workbook is refused: on opening, or with a query, on running it.
WorkbookError::Kind refusal(const std::filesystem::path& path, std::u16string_view query = {}) {
    Connection connection;
    try {
        connection.Open(odbcString(path.string()));
        if (!query.empty())
            connection.Execute(query);
    } catch (const WorkbookError& error) {
        EXPECT_EQ(connection.isOpen(), !query.empty());
        return error.kind();
    }
    ADD_FAILURE() << path << " was read";
    return WorkbookError::Kind::TableNotFound;
}

// The bytes with `to` written over them `offset` bytes after the first `from`.
std::vector<unsigned char> patched(std::vector<unsigned char> bytes,
                                   const std::vector<unsigned char>& from,
                                   const std::vector<unsigned char>& to, std::size_t offset = 0) {
    const auto at = std::search(bytes.begin(), bytes.end(), from.begin(), from.end());
    EXPECT_NE(at, bytes.end());
    if (at != bytes.end())
        std::copy(to.begin(), to.end(), at + static_cast<long>(offset));
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
    // The globals' BOF of Excel 95, and a FILEPASS in place of the record
    // after the BOF's 16 bytes.
    const std::vector<unsigned char> bof = {0x09, 0x08, 0x10, 0x00, 0x00, 0x06, 0x05, 0x00};
    EXPECT_EQ(refusal(write("biff5.xls", patched(book, bof, {0x05}, 5))), Kind::OlderFormat);
    EXPECT_EQ(refusal(write("locked.xls", patched(book, bof, {0x2F, 0x00}, 20))),
              Kind::PasswordProtected);
    // A stray text at IV65501 stretches the sheet beyond any menu.
    const std::filesystem::path far =
        write("far.xls", patched(book, {0xFD, 0x00, 0x0A, 0x00}, {0xDC, 0xFF, 0xFF}, 4));
    EXPECT_EQ(refusal(far, u"select* from `Sayfa1$`"), Kind::Damaged);

    const std::filesystem::path menu = workbookFixture("template.xls");
    EXPECT_EQ(refusal(menu, u"select* from `Sayfa9$`"), Kind::TableNotFound);
    Connection connection;
    connection.Open(odbcString(menu.string()));
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
