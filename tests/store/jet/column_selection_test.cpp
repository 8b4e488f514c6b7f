// Decoding a chosen subset of a row's columns gives what decoding the whole
// row gives for those columns, and Null for the others, through the cursor
// and through the row reader alike.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"

namespace jet {
namespace {

// Every subset for tables of few columns; for wider ones each column alone
// and all the others without it.
std::vector<ColumnSelection> selectionsFor(std::size_t columns) {
    std::vector<ColumnSelection> selections;
    if (columns <= 8) {
        for (std::size_t mask = 0; mask < (std::size_t{1} << columns); ++mask) {
            ColumnSelection selection(columns);
            for (std::size_t c = 0; c < columns; ++c)
                selection[c] = ((mask >> c) & 1) != 0;
            selections.push_back(selection);
        }
        return selections;
    }
    for (std::size_t c = 0; c < columns; ++c) {
        ColumnSelection alone(columns, false);
        alone[c] = true;
        selections.push_back(alone);
        alone.flip();
        selections.push_back(alone);
    }
    return selections;
}

TEST(ColumnSelection, SelectedColumnsDecodeAsInTheWholeRow) {
    SKIP_WITHOUT_FIXTURES();
    std::size_t checkedRows = 0;
    for (const std::filesystem::path& file : testing::fixtureDatabases()) {
        const Database database(file.string());
        for (const std::u16string& name : database.userTableNames()) {
            SCOPED_TRACE(file.filename().string() + " " + toUtf8(name));
            const TableDefinition table = database.table(name);
            const std::vector<ColumnSelection> selections = selectionsFor(table.columns.size());
            RowReader reader(database.file(), table);
            TableCursor cursor = database.scan(table);
            std::vector<Value> whole;
            std::vector<Value> scanned;
            std::vector<Value> read;
            for (int row = 0; row < 20 && cursor.next(); ++row) {
                cursor.values(whole);
                for (const ColumnSelection& selection : selections) {
                    cursor.values(scanned, selection);
                    ASSERT_TRUE(reader.read(cursor.rowId(), read, selection));
                    for (std::size_t c = 0; c < whole.size(); ++c) {
                        const Value expected = selection[c] ? whole[c] : Value();
                        ASSERT_EQ(scanned[c], expected) << "column " << c;
                        ASSERT_EQ(read[c], expected) << "column " << c;
                    }
                }
                ++checkedRows;
            }
        }
    }
    EXPECT_GT(checkedRows, 100u);
}

}  // namespace
}  // namespace jet
