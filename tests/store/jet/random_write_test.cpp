// A randomized differential test of the write path: thousands of inserts,
// updates and deletes, each batch checked against an in-memory model of the
// table after the file is reopened, and read back by mdbtools too.

#include <algorithm>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "store/jet/database.h"
#include "store/jet/integrity_check.h"
#include "store/jet/text.h"
#include "tests/store/jet/test_files.h"
#include "tools/mdb_export_format.h"

namespace jet {
namespace {

using testing::runCommand;
using testing::shellQuote;

// Letters of the values: ASCII, Latin-1 and Turkish, a quote and a line break.
const std::u16string kLetters = u"abcçdefgğhıijklmnoöprsştuüvyzABCÇDEFGĞHIİJKLMNOÖPRSŞTUÜVYZ0123456789 '-\n,.éàñß";

struct ModelRow {
    RowId id;
    std::vector<Value> values;
};

class RandomValues {
public:
    explicit RandomValues(unsigned seed) : random_(seed) {}

    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    std::u16string text(std::size_t maxLength) {
        std::u16string text(static_cast<std::size_t>(below(static_cast<int>(maxLength) + 1)), u' ');
        for (char16_t& c : text) c = kLetters[static_cast<std::size_t>(below(static_cast<int>(kLetters.size())))];
        return text;
    }

    // A value the column holds; Null now and then. AutoNumber stays Null.
    Value of(const Column& column) {
        if (column.isAutoNumber()) return Value();
        if (column.type != ColumnType::Boolean && below(8) == 0) return Value();
        switch (column.type) {
            case ColumnType::Boolean: return Value::boolean(below(2) == 0);
            case ColumnType::Byte: return Value::integer(below(256));
            case ColumnType::Integer: return Value::integer(below(65536) - 32768);
            case ColumnType::LongInteger: return Value::integer(static_cast<std::int32_t>(random_()));
            case ColumnType::Currency:
                return Value::currency(
                    Currency{static_cast<std::int64_t>(random_() % 2000000000000ull) - 1000000000000});
            case ColumnType::Single: return Value::real(below(1 << 20) / 4.0);
            case ColumnType::Double: return Value::real((static_cast<double>(random_()) - 2e9) / 7.0);
            case ColumnType::DateTime:
                return Value::date(Date{36000 + below(20000) + below(86400) / 86400.0});
            case ColumnType::Text: return Value::text(text(column.length / 2));
            case ColumnType::Memo: {
                // Short, one page, or several pages long.
                const int size = below(3);
                return Value::text(text(size == 0 ? 60 : size == 1 ? 1800 : 12000));
            }
            case ColumnType::Decimal: {
                Decimal decimal;
                decimal.scale = column.scale;
                decimal.negative = below(2) == 0;
                decimal.low = random_() % 1000000000000ull;
                if (decimal.low == 0) decimal.negative = false;
                return Value::decimal(decimal);
            }
            default: return Value();
        }
    }

    // A row the table accepts: columns of unique indexes get values never
    // given before, so that no key repeats and none is Null.
    std::vector<Value> row(const TableDefinition& table) {
        std::set<std::uint16_t> uniqueColumns;
        for (const RealIndex& index : table.realIndexes) {
            if (!index.isUnique()) continue;
            for (const IndexColumn& column : index.columns) uniqueColumns.insert(column.columnNumber);
        }
        std::vector<Value> values;
        for (const Column& column : table.columns) {
            values.push_back(uniqueColumns.count(column.number) ? fresh(column) : of(column));
        }
        return values;
    }

private:
    Value fresh(const Column& column) {
        ++serial_;
        switch (column.type) {
            case ColumnType::Text:
                return Value::text((fromUtf8(std::to_string(serial_)) + u"-" + text(column.length / 2))
                                       .substr(0, column.length / 2));
            case ColumnType::Integer:
            case ColumnType::LongInteger: return Value::integer(serial_);
            case ColumnType::Double: return Value::real(serial_ + 0.5);
            default: return of(column);
        }
    }

    std::mt19937_64 random_;
    std::int32_t serial_ = 0;  // values of unique columns given so far
};

std::vector<ModelRow> scanWithIds(const Database& database, const TableDefinition& table) {
    std::vector<ModelRow> rows;
    TableCursor cursor = database.scan(table);
    while (cursor.next()) {
        ModelRow row{cursor.rowId(), {}};
        cursor.values(row.values);
        rows.push_back(std::move(row));
    }
    return rows;
}

// AutoNumber values are the engine's to give: equal to the model's where the
// model knows them, otherwise taken from the file.
void expectSameRows(const TableDefinition& table, std::vector<ModelRow>& model,
                    const std::vector<ModelRow>& stored, const std::string& where) {
    ASSERT_EQ(stored.size(), model.size()) << where;
    for (std::size_t i = 0; i < model.size(); ++i) {
        ASSERT_EQ(stored[i].id, model[i].id) << where << ", row " << i;
        for (std::size_t c = 0; c < table.columns.size(); ++c) {
            if (table.columns[c].isAutoNumber() && model[i].values[c].isNull()) {
                model[i].values[c] = stored[i].values[c];
            }
            ASSERT_EQ(stored[i].values[c], model[i].values[c])
                << where << ", row " << i << ", column " << toUtf8(table.columns[c].name);
        }
    }
}

void expectMdbExportReadsTheSame(const std::string& file, const TableDefinition& table,
                                 const std::vector<ModelRow>& rows) {
    if (std::string_view(MDB_EXPORT_EXECUTABLE).empty()) return;  // no mdbtools, as on Windows
    std::string ours;
    appendMdbExportHeader(ours, table);
    for (const ModelRow& row : rows) appendMdbExportRow(ours, table, row.values);
    const std::string theirs = runCommand(shellQuote(MDB_EXPORT_EXECUTABLE) + " " + shellQuote(file) +
                                          " " + shellQuote(toUtf8(table.name)));
    EXPECT_TRUE(testing::csvRecords(ours) == testing::csvRecords(theirs)) << toUtf8(table.name);
}

void runRandomWrites(const std::filesystem::path& fixture, std::u16string_view tableName,
                     unsigned seed, int batches) {
    testing::TempDir dir;
    const std::string file = (dir.path() / "random.mdb").string();
    std::filesystem::copy_file(testing::fixturesDir() / fixture, file);
    RandomValues random(seed);

    std::vector<ModelRow> model;
    {
        const Database database(file);
        model = scanWithIds(database, database.table(tableName));
    }
    for (int batch = 0; batch < batches; ++batch) {
        const std::string where = toUtf8(tableName) + " batch " + std::to_string(batch);
        {
            Database database(file, PageFile::Mode::ReadWrite);
            const TableDefinition table = database.table(tableName);
            for (int step = 0; step < 12; ++step) {
                const int choice = random.below(10);
                if (choice < 5 || model.empty()) {
                    std::vector<std::vector<Value>> rows;
                    const int count = 1 + random.below(choice == 0 ? 40 : 4);
                    for (int i = 0; i < count; ++i) rows.push_back(random.row(table));
                    const std::vector<RowId> ids = database.insertRows(tableName, rows);
                    for (std::size_t i = 0; i < ids.size(); ++i) model.push_back({ids[i], rows[i]});
                } else if (choice < 8) {
                    ModelRow& row = model[static_cast<std::size_t>(random.below(static_cast<int>(model.size())))];
                    std::vector<Value> values = random.row(table);
                    for (std::size_t c = 0; c < table.columns.size(); ++c) {
                        if (table.columns[c].isAutoNumber()) values[c] = row.values[c];
                    }
                    database.updateRow(tableName, row.id, values);
                    row.values = values;
                } else {
                    std::vector<RowId> gone;
                    const int count = 1 + random.below(3);
                    for (int i = 0; i < count && !model.empty(); ++i) {
                        const auto at = model.begin() + random.below(static_cast<int>(model.size()));
                        gone.push_back(at->id);
                        model.erase(at);
                    }
                    database.deleteRows(tableName, gone);
                }
            }
        }
        const Database reopened(file);
        const TableDefinition table = reopened.table(tableName);
        expectSameRows(table, model, scanWithIds(reopened, table), where);
        EXPECT_EQ(table.rowCount, model.size()) << where;
        EXPECT_EQ(checkIntegrity(reopened.file()), std::vector<std::string>{}) << where;
        if (::testing::Test::HasFatalFailure()) return;
        if (batch % 10 == 9 || batch == batches - 1) expectMdbExportReadsTheSame(file, table, model);
    }
}

TEST(RandomWrites, PermitsTableOfTheSchool) {
    SKIP_WITHOUT_FIXTURES();
    runRandomWrites("kvl/kvl.mdb", u"IZINLER", 1, 60);
}

TEST(RandomWrites, EveryNumberKindAndTextWithIndexes) {
    SKIP_WITHOUT_FIXTURES();
    runRandomWrites("access/testV2000.mdb", u"Table1", 2, 60);
}

TEST(RandomWrites, MemoValuesOfEverySize) {
    SKIP_WITHOUT_FIXTURES();
    runRandomWrites("access/fixedNumericTestV2000.mdb", u"test", 3, 40);
}

}  // namespace
}  // namespace jet
