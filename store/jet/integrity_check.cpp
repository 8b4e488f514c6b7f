#include "integrity_check.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "catalog.h"
#include "data_page.h"
#include "error.h"
#include "format.h"
#include "index_key.h"
#include "index_page.h"
#include "table_cursor.h"
#include "text.h"
#include "usage_map.h"

namespace jet {
namespace {

struct KeyedRow {
    Bytes key;
    RowId row;
    friend bool operator<(const KeyedRow& a, const KeyedRow& b) {
        return std::tie(a.key, a.row.page, a.row.row) < std::tie(b.key, b.row.page, b.row.row);
    }
};

class Checker {
public:
    explicit Checker(const PageSource& file) : file_(file) {}

    std::vector<std::string> run() {
        for (const CatalogEntry& entry : readCatalog(file_)) {
            if (!entry.isTable()) continue;
            const std::string name = toUtf8(entry.name);
            try {
                TableDefinition table = readTableDefinition(file_, entry.definitionPage());
                table.name = entry.name;
                checkTable(table, entry.isUserTable());
            } catch (const Error& error) {
                problems_.push_back("table " + name + ": " + error.what());
            }
        }
        const std::vector<std::uint32_t> freeList = readFreePages(file_);
        const std::set<std::uint32_t> free(freeList.begin(), freeList.end());
        for (const auto& [page, owner] : owners_) {
            if (free.count(page) != 0) {
                problems_.push_back("page " + std::to_string(page) + " of " + owner +
                                    " is marked free in the map of free pages");
            }
        }
        return problems_;
    }

private:
    void claim(std::uint32_t page, const std::string& owner) {
        const auto [at, added] = owners_.emplace(page, owner);
        if (!added && at->second != owner) {
            problems_.push_back("page " + std::to_string(page) + " is claimed by " + at->second +
                                " and by " + owner);
        }
    }

    void checkTable(const TableDefinition& table, bool userTable) {
        const std::string name = "table " + toUtf8(table.name);
        for (const std::uint32_t page : table.pages) claim(page, name);
        // Access leaves stale bits for pages that now belong to another
        // table; only the pages that name this table as owner are its own.
        Page page{};
        for (const std::uint32_t number : readUsageMap(file_, table.usageMap)) {
            file_.read(number, page);
            if (page[0] == format::kPageData && DataPage(page, number).owner() == table.page) {
                claim(number, name);
            }
        }

        std::vector<std::vector<KeyedRow>> expected(table.realIndexes.size());
        std::vector<bool> keysKnown(table.realIndexes.size(), true);
        std::uint32_t rows = 0;
        std::vector<Value> values;
        TableCursor cursor(file_, table);
        while (cursor.next()) {
            cursor.values(values);
            ++rows;
            for (std::size_t i = 0; i < table.realIndexes.size(); ++i) {
                const RealIndex& index = table.realIndexes[i];
                if (!isRowIndexed(table, index, values)) continue;
                try {
                    expected[i].push_back({encodeIndexKey(table, index, values), cursor.rowId()});
                } catch (const Error&) {
                    // A character outside what this engine keys: the entry
                    // is still counted, its key not compared.
                    keysKnown[i] = false;
                    expected[i].push_back({{}, cursor.rowId()});
                }
            }
        }
        // System tables' counts are not kept exact by Access.
        if (userTable && rows != table.rowCount) {
            problems_.push_back(name + " has " + std::to_string(rows) +
                                " rows, its definition says " + std::to_string(table.rowCount));
        }
        for (std::size_t i = 0; i < table.realIndexes.size(); ++i) {
            checkIndex(table, i, expected[i], keysKnown[i]);
        }
    }

    void checkIndex(const TableDefinition& table, std::size_t number, std::vector<KeyedRow>& expected,
                    bool keysKnown) {
        const RealIndex& index = table.realIndexes[number];
        const std::string name = "index " + std::to_string(number) + " of table " + toUtf8(table.name);
        Page page{};
        for (const std::uint32_t pageNumber : readUsageMap(file_, index.usageMap)) {
            file_.read(pageNumber, page);
            if (page[0] != format::kPageIndexLeaf && page[0] != format::kPageIndexIntermediate) {
                problems_.push_back(name + ": its usage map names page " + std::to_string(pageNumber) +
                                    ", which is not an index page");
                continue;
            }
            claim(pageNumber, name);
        }
        if (!keysKnown) {
            for (KeyedRow& row : expected) row.key.clear();
        }
        // readIndexEntries itself refuses entries out of key order.
        std::vector<KeyedRow> stored;
        for (const IndexEntry& entry : readIndexEntries(file_, index)) {
            stored.push_back({keysKnown ? entry.key : Bytes{}, entry.row});
        }
        std::sort(stored.begin(), stored.end());
        std::sort(expected.begin(), expected.end());
        if (stored.size() != expected.size()) {
            problems_.push_back(name + " holds " + std::to_string(stored.size()) +
                                " entries for " + std::to_string(expected.size()) + " rows");
            return;
        }
        for (std::size_t k = 0; k < stored.size(); ++k) {
            if (stored[k].key != expected[k].key || !(stored[k].row == expected[k].row)) {
                problems_.push_back(name + ": the entry for the row in slot " +
                                    std::to_string(expected[k].row.row) + " of page " +
                                    std::to_string(expected[k].row.page) +
                                    " is missing or holds another key");
                return;
            }
        }
    }

    const PageSource& file_;
    std::map<std::uint32_t, std::string> owners_;  // page -> what claims it
    std::vector<std::string> problems_;
};

}  // namespace

std::vector<std::string> checkIntegrity(const PageSource& file) { return Checker(file).run(); }

}  // namespace jet
