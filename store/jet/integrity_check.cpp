#include "integrity_check.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "catalog.h"
#include "data_page.h"
#include "error.h"
#include "format.h"
#include "index_key.h"
#include "index_page.h"
#include "page_file.h"
#include "row_decoder.h"
#include "table_cursor.h"
#include "table_definition.h"
#include "text.h"

namespace jet {
namespace {

namespace d = format::data;
namespace l = format::lval;
namespace u = format::usage;

// A page type that no format description names but Access files hold: the
// page still reads "LVAL" where a long value page names its owner, and no row
// or map refers to it. Taken for a long value page Access gave up.
constexpr std::uint8_t kPageRetiredLongValues = 0x09;

// Faults of one kind in one index are listed up to this many, then counted.
constexpr std::size_t kListedPerKind = 10;

std::string pageText(std::uint32_t page) {
    return "page " + std::to_string(page);
}

std::string rowText(RowId row) {
    return "row " + std::to_string(row.row) + " of page " + std::to_string(row.page);
}

std::string pointerText(std::uint32_t pointer) {
    return rowText(RowId{pointerPage(pointer), pointerRow(pointer)});
}

// A row's identity as one ordered number.
std::uint64_t rowKey(RowId row) {
    return (std::uint64_t{row.page} << 16) | row.row;
}
RowId rowOfKey(std::uint64_t key) {
    return RowId{static_cast<std::uint32_t>(key >> 16), static_cast<std::uint16_t>(key & 0xffff)};
}

// What a page is used for.
enum class Use : std::uint8_t {
    None,
    Header,
    MapRows,     // a data page holding usage maps; shared by any number of maps
    MapPage,     // a usage map page of one map by reference
    Definition,  // a page of a table's definition
    Rows,        // a data page of a table
    LongValues,  // a long value page of a table
    Index,       // a page of one real index
};

struct Claim {
    Use use = Use::None;
    std::uint32_t table = 0;   // the table's definition page
    std::uint32_t detail = 0;  // Index: the real index's position; MapPage: the map's row pointer
    friend bool operator==(const Claim&, const Claim&) = default;
};

// What the first pass over the file learns of a page, and who claims it.
struct PageInfo {
    std::uint8_t type = 0;
    bool blank = false;            // every byte zero
    bool longValues = false;       // marked "LVAL" where a data page names its table
    bool definitionStart = false;  // a table definition page that begins a definition
    std::uint32_t owner = 0;       // data and index pages: the table definition page they name
    bool free = false;             // marked free in the map of free pages
    // Whether the map of free pages covers the page. An inline map covers a
    // window of pages, a map by reference the ranges of its map pages; it can
    // call the pages outside neither free nor used.
    bool freeMapReaches = true;
    Claim claim;
};

struct TableInfo {
    TableDefinition definition;
    std::string name;  // for messages
    bool user = false;
};

// The key an index should hold for a row; unknown when this engine cannot
// compute it.
struct ExpectedEntry {
    Bytes key;
    bool keyKnown = false;
    bool matched = false;  // an entry of the index was found for the row
};

// Collects the faults of one kind, listing the first few.
class FaultList {
public:
    explicit FaultList(std::vector<std::string>& out) : out_(out) {}
    void add(const std::string& text) {
        if (count_++ < kListedPerKind)
            out_.push_back(text);
    }
    void finish(const std::string& what) {
        if (count_ > kListedPerKind) {
            out_.push_back(what + ": " + std::to_string(count_ - kListedPerKind) +
                           " more like the above");
        }
    }

private:
    std::vector<std::string>& out_;
    std::size_t count_ = 0;
};

std::string hex(const Bytes& bytes) {
    static const char* const digits = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        if (!text.empty())
            text.push_back(' ');
        text.push_back(digits[byte >> 4]);
        text.push_back(digits[byte & 0x0f]);
    }
    return text;
}

class Checker {
public:
    explicit Checker(const PageSource& file) : file_(file), pageCount_(file.pageCount()) {}

    IntegrityReport run() {
        if (pageCount_ < 3) {
            problem("the file has " + std::to_string(pageCount_) +
                    " pages, too few for a database (header, page map, catalog)");
            return std::move(report_);
        }
        readPages();
        readFreePages();
        claim(0, Claim{Use::Header});
        if (!readTables())
            return std::move(report_);
        for (auto& [page, table] : tables_) {
            // The check bounds what it reads before reading it; should a
            // reader it calls still throw, only that table's check ends.
            try {
                checkTable(table);
            } catch (const Error& error) {
                problem("table " + table.name + ": " + error.what());
            }
        }
        checkUnclaimedPages();
        return std::move(report_);
    }

private:
    void problem(const std::string& text) { report_.problems.push_back(text); }
    void note(const std::string& text) { report_.notes.push_back(text); }

    const std::string& tableName(std::uint32_t definitionPage) const {
        static const std::string unknown = "(unknown)";
        const auto found = tables_.find(definitionPage);
        return found == tables_.end() ? unknown : found->second.name;
    }

    std::string indexName(const TableInfo& table, std::size_t realIndex) const {
        std::string names;
        for (const LogicalIndex& index : table.definition.indexes) {
            if (index.realIndex != realIndex)
                continue;
            if (!names.empty())
                names += ", ";
            names += toUtf8(index.name);
        }
        return "index " + (names.empty() ? "#" + std::to_string(realIndex) : names) + " of table " +
               table.name;
    }

    std::string describe(const Claim& claim) const {
        switch (claim.use) {
            case Use::None:
                return "nothing";
            case Use::Header:
                return "the header";
            case Use::MapRows:
                return "usage maps";
            case Use::MapPage:
                return "the usage map in " + pointerText(claim.detail);
            case Use::Definition:
                return "the definition of table " + tableName(claim.table);
            case Use::Rows:
                return "rows of table " + tableName(claim.table);
            case Use::LongValues:
                return "memo and OLE values of table " + tableName(claim.table);
            case Use::Index: {
                const auto found = tables_.find(claim.table);
                if (found == tables_.end())
                    return "an index";
                return indexName(found->second, claim.detail);
            }
        }
        return "nothing";
    }

    // Records that `page` is used as `claim`. A page has one use; only pages
    // holding usage maps are shared, by the maps of any tables.
    bool claim(std::uint32_t page, const Claim& claim) {
        PageInfo& info = pages_[page];
        if (info.claim == claim)
            return true;
        if (info.claim.use != Use::None) {
            problem(pageText(page) + " is used both for " + describe(info.claim) + " and for " +
                    describe(claim));
            return false;
        }
        info.claim = claim;
        if (info.free) {
            problem(pageText(page) + " is marked free in the map of free pages but holds " +
                    describe(claim));
        }
        return true;
    }

    // First pass: the type and owner of every page.
    void readPages() {
        pages_.resize(pageCount_);
        Page page{};
        for (std::uint32_t number = 1; number < pageCount_; ++number) {
            file_.read(number, page);
            PageInfo& info = pages_[number];
            info.type = page[0];
            info.blank =
                std::all_of(page.begin(), page.end(), [](std::uint8_t b) { return b == 0; });
            const ByteView bytes(page.data(), page.size());
            info.owner = bytes.u32(d::kOwnerOffset);
            info.longValues = std::memcmp(page.data() + d::kOwnerOffset, "LVAL", 4) == 0;
            info.definitionStart =
                page[0] == format::kPageTableDefinition &&
                bytes.u32(format::tdef::kMagicOffset) == format::tdef::kTableMagic;
        }
    }

    // Decodes the usage map in row `pointer`, claiming the page that holds
    // it and, for a map by reference, its usage map pages. The pages it
    // marks, or nothing when it cannot be read. This is not readUsageMap:
    // the check needs the map's own pages, and goes on past a bad bit.
    // `reach` receives the ranges of pages the map covers, [first, end).
    std::optional<std::vector<std::uint32_t>> readMap(
        std::uint32_t pointer, const std::string& what,
        std::vector<std::pair<std::uint64_t, std::uint64_t>>* reach = nullptr) {
        const std::uint32_t holder = pointerPage(pointer);
        if (holder == 0 || holder >= pageCount_ || pages_[holder].type != format::kPageData) {
            problem(what + " should be in " + pointerText(pointer) +
                    ", which is not a row of a data page");
            return std::nullopt;
        }
        Page page{};
        file_.read(holder, page);
        ByteView map;
        try {
            const DataPage data(page, holder);
            const RowSlot slot = data.slot(pointerRow(pointer));
            if (slot.deleted) {
                problem(what + " in " + pointerText(pointer) + " is a deleted row");
                return std::nullopt;
            }
            map = data.rowBytes(slot);
        } catch (const Error& error) {
            problem(what + ": " + error.what());
            return std::nullopt;
        }
        claim(holder, Claim{Use::MapRows});

        // The map of free pages covers a window that runs past the end of
        // the file: those pages are free to be added. In any other map a page
        // past the end is damage.
        const bool freePagesMap = pointer == u::kFreePagesMap;
        std::vector<std::uint32_t> marked;
        bool pastEnd = false;
        const auto collect = [&](ByteView bitmap, std::uint64_t first) {
            if (reach != nullptr)
                reach->emplace_back(first, first + 8 * bitmap.size());
            for (std::size_t byte = 0; byte < bitmap.size(); ++byte) {
                const std::uint8_t bits = bitmap.u8(byte);
                for (unsigned bit = 0; bits != 0 && bit < 8; ++bit) {
                    if ((bits & (1u << bit)) == 0)
                        continue;
                    const std::uint64_t number = first + 8 * byte + bit;
                    if (number < pageCount_) {
                        marked.push_back(static_cast<std::uint32_t>(number));
                    } else if (!freePagesMap && !pastEnd) {
                        pastEnd = true;
                        problem(what + " in " + pointerText(pointer) + " marks page " +
                                std::to_string(number) + ", past the end of the file (" +
                                std::to_string(pageCount_) + " pages)");
                    }
                }
            }
        };
        if (map.size() < 1) {
            problem(what + " in " + pointerText(pointer) + " is empty");
            return std::nullopt;
        }
        switch (map.u8(0)) {
            case u::kInlineMap:
                if (map.size() < 5) {
                    problem(what + " in " + pointerText(pointer) + " is too short");
                    return std::nullopt;
                }
                collect(map.from(5), map.u32(1));
                break;
            case u::kReferenceMap: {
                Page mapPage{};
                for (std::size_t k = 0; 1 + 4 * (k + 1) <= map.size(); ++k) {
                    const std::uint32_t number = map.u32(1 + 4 * k);
                    if (number == 0)
                        continue;
                    // Access leaves junk (FF FF FF 80) in slots of the map of
                    // free pages whose window lies wholly past the end of the
                    // file; nothing reads them until the file grows there.
                    if (freePagesMap && std::uint64_t{k} * u::kPagesPerMapPage >= pageCount_) {
                        continue;
                    }
                    if (number >= pageCount_ || pages_[number].type != format::kPageUsageMap) {
                        problem(what + " in " + pointerText(pointer) + " names " +
                                pageText(number) + " as one of its pages, which is not a usage " +
                                "map page");
                        continue;
                    }
                    claim(number, Claim{Use::MapPage, 0, pointer});
                    file_.read(number, mapPage);
                    collect(ByteView(mapPage.data() + u::kMapPageBitmapOffset,
                                     mapPage.size() - u::kMapPageBitmapOffset),
                            std::uint64_t{k} * u::kPagesPerMapPage);
                }
                break;
            }
            default:
                problem(what + " in " + pointerText(pointer) + " is of unknown kind " +
                        std::to_string(map.u8(0)));
                return std::nullopt;
        }
        return marked;
    }

    void readFreePages() {
        std::vector<std::pair<std::uint64_t, std::uint64_t>> reach;
        const auto free = readMap(u::kFreePagesMap, "the map of free pages", &reach);
        if (!free)
            return;
        for (PageInfo& info : pages_)
            info.freeMapReaches = false;
        for (const auto& [first, end] : reach) {
            for (std::uint64_t page = first; page < end && page < pageCount_; ++page) {
                pages_[page].freeMapReaches = true;
            }
        }
        for (const std::uint32_t page : *free)
            pages_[page].free = true;
        if (pages_[0].free || pages_[1].free) {
            problem("the map of free pages marks the header or itself free");
        }
    }

    // Reads the catalog and every table's definition, claiming its pages.
    bool readTables() {
        std::vector<CatalogEntry> catalog;
        try {
            catalog = readCatalog(file_);
        } catch (const Error& error) {
            problem("the catalog (table MSysObjects, page 2) cannot be read: " +
                    std::string(error.what()));
            return false;
        }
        for (const CatalogEntry& entry : catalog) {
            if (!entry.isTable())
                continue;
            const std::uint32_t page = entry.definitionPage();
            const std::string name = toUtf8(entry.name);
            if (tables_.count(page) != 0 || unreadableTables_.count(page) != 0) {
                problem("tables " + tableName(page) + " and " + name + " share the definition on " +
                        pageText(page));
                continue;
            }
            try {
                TableInfo table;
                table.definition = readTableDefinition(file_, page);
                table.definition.name = entry.name;
                table.name = name;
                table.user = entry.isUserTable();
                tables_.emplace(page, std::move(table));
            } catch (const Error& error) {
                unreadableTables_.insert(page);
                problem("table " + name + ": " + error.what());
            }
        }
        for (const auto& [page, table] : tables_) {
            for (const std::uint32_t definitionPage : table.definition.pages) {
                claim(definitionPage, Claim{Use::Definition, page});
            }
        }
        return true;
    }

    void checkTable(TableInfo& table) {
        const TableDefinition& definition = table.definition;
        const std::string& name = table.name;
        // Access leaves a table's usage map marking pages it has since given
        // to another table or freed: the owner field of a data page decides
        // whose it is (TableCursor passes over the others too). Pages that
        // name the table but are missing from its map are caught at the end.
        std::vector<std::uint32_t> dataPages;
        if (const auto marked = readMap(definition.usageMap, "the usage map of table " + name)) {
            for (const std::uint32_t page : *marked) {
                const PageInfo& info = pages_[page];
                if (info.type != format::kPageData || info.longValues ||
                    info.owner != definition.page) {
                    continue;
                }
                claim(page, Claim{Use::Rows, definition.page});
                dataPages.push_back(page);
            }
        }
        // The map of pages with free space holds hints only; it must decode.
        readMap(definition.freeSpaceMap, "the free space map of table " + name);

        std::vector<std::map<std::uint64_t, ExpectedEntry>> expected(definition.realIndexes.size());
        std::vector<std::string> unkeyable(definition.realIndexes.size());
        const std::uint32_t live = checkRows(table, dataPages, expected, unkeyable);
        // Access keeps the row counts of system tables loosely (MSysACEs of
        // an Access file may count fewer rows than it has); user tables'
        // counts are exact.
        if (table.user && live != definition.rowCount) {
            problem("table " + name + " has " + std::to_string(live) +
                    " live rows, but its definition counts " + std::to_string(definition.rowCount));
        }
        for (std::size_t index = 0; index < definition.realIndexes.size(); ++index) {
            checkIndex(table, index, expected[index], unkeyable[index]);
        }
    }

    // Walks the table's rows, checking each; returns how many are live.
    std::uint32_t checkRows(const TableInfo& table, const std::vector<std::uint32_t>& dataPages,
                            std::vector<std::map<std::uint64_t, ExpectedEntry>>& expected,
                            std::vector<std::string>& unkeyable) {
        // The same definition with memo and OLE columns read as binary: the
        // row's 12-byte references, to check where they lead.
        TableDefinition references = table.definition;
        for (Column& column : references.columns) {
            if (column.isLongValue())
                column.type = ColumnType::Binary;
        }
        std::set<std::uint64_t> movedData;    // rows flagged as a moved row's data
        std::set<std::uint64_t> reachedData;  // such rows a moved row points to
        std::uint32_t live = 0;
        Page page{};
        Page target{};
        std::vector<Value> values;
        for (const std::uint32_t number : dataPages) {
            file_.read(number, page);
            const DataPage data(page, number);
            for (std::uint16_t row = 0; row < data.rowCount(); ++row) {
                const RowId id{number, row};
                RowSlot slot;
                try {
                    slot = data.slot(row);
                } catch (const Error& error) {
                    problem("table " + table.name + ": " + error.what());
                    continue;
                }
                // Jet marks a deleted row with both flags, and the new home
                // of a moved row's data with the deleted flag alone.
                if (slot.deleted && slot.overflow)
                    continue;
                if (slot.deleted) {
                    movedData.insert(rowKey(id));
                    continue;
                }
                ++live;
                ByteView bytes = data.rowBytes(slot);
                if (slot.overflow) {
                    const auto moved = movedRow(table, id, bytes, target, reachedData);
                    if (!moved)
                        continue;
                    bytes = *moved;
                }
                checkRow(table, references, id, bytes, values, expected, unkeyable);
            }
        }
        for (const std::uint64_t key : movedData) {
            if (reachedData.count(key) == 0) {
                problem(rowText(rowOfKey(key)) + " of table " + table.name +
                        " is marked as the data of a moved row, but no row points to it");
            }
        }
        return live;
    }

    // The bytes a moved row's pointer leads to, in `target`.
    std::optional<ByteView> movedRow(const TableInfo& table, RowId home, ByteView pointerBytes,
                                     Page& target, std::set<std::uint64_t>& reachedData) {
        const std::string where = rowText(home) + " of table " + table.name;
        if (pointerBytes.size() < 4) {
            problem(where + " is marked as moved but is too short to hold a pointer");
            return std::nullopt;
        }
        const std::uint32_t pointer = pointerBytes.u32(0);
        const std::uint32_t number = pointerPage(pointer);
        if (number == 0 || number >= pageCount_ || pages_[number].type != format::kPageData ||
            pages_[number].longValues || pages_[number].owner != table.definition.page) {
            problem(where + " is moved to " + pointerText(pointer) +
                    ", which is not on a data page of the table");
            return std::nullopt;
        }
        // A page reached through a pointer alone is not claimed by a map: it
        // must not be free to be handed out.
        if (pages_[number].free) {
            problem(where + " is moved to " + pointerText(pointer) +
                    ", on a page the map of free pages marks free");
            return std::nullopt;
        }
        file_.read(number, target);
        const DataPage data(target, number);
        RowSlot slot;
        try {
            slot = data.slot(pointerRow(pointer));
        } catch (const Error& error) {
            problem(where + " is moved to " + pointerText(pointer) + ": " + error.what());
            return std::nullopt;
        }
        if (!slot.deleted || slot.overflow) {
            problem(where + " is moved to " + pointerText(pointer) +
                    ", which is not marked as the data of a moved row");
            return std::nullopt;
        }
        if (!reachedData.insert(rowKey(RowId{number, pointerRow(pointer)})).second) {
            problem(where + " is moved to " + pointerText(pointer) +
                    ", which another row points to as well");
            return std::nullopt;
        }
        return data.rowBytes(slot);
    }

    void checkRow(const TableInfo& table, const TableDefinition& references, RowId id,
                  ByteView bytes, std::vector<Value>& values,
                  std::vector<std::map<std::uint64_t, ExpectedEntry>>& expected,
                  std::vector<std::string>& unkeyable) {
        const TableDefinition& definition = table.definition;
        const std::string where = rowText(id) + " of table " + table.name;
        try {
            decodeRow(file_, references, bytes, values);
        } catch (const Error& error) {
            problem(where + " does not decode: " + error.what());
            return;
        }
        bool longValuesSound = true;
        for (std::size_t i = 0; i < definition.columns.size(); ++i) {
            if (!definition.columns[i].isLongValue() || values[i].isNull())
                continue;
            const Bytes& reference = values[i].asBytes();
            longValuesSound &=
                checkLongValue(table, where + ", column " + toUtf8(definition.columns[i].name),
                               ByteView(reference.data(), reference.size()));
        }
        if (!longValuesSound)
            return;
        try {
            decodeRow(file_, definition, bytes, values);
        } catch (const Error& error) {
            problem(where + " does not decode: " + error.what());
            return;
        }
        for (std::size_t i = 0; i < definition.realIndexes.size(); ++i) {
            const RealIndex& index = definition.realIndexes[i];
            ExpectedEntry entry;
            try {
                if (!isRowIndexed(definition, index, values))
                    continue;
                entry.key = encodeIndexKey(definition, index, values);
                entry.keyKnown = true;
            } catch (const Error& error) {
                if (unkeyable[i].empty())
                    unkeyable[i] = error.what();
            }
            expected[i].emplace(rowKey(id), std::move(entry));
        }
    }

    // Follows a memo or OLE reference: inline, one long value row, or a
    // chain of them, each starting with the pointer to the next. Claims the
    // long value pages for the table. False when the value is damaged.
    bool checkLongValue(const TableInfo& table, const std::string& where, ByteView reference) {
        if (reference.size() < l::kReferenceSize) {
            problem(where + ": the memo or OLE reference has " + std::to_string(reference.size()) +
                    " bytes, fewer than 12");
            return false;
        }
        const std::uint32_t header = reference.u32(0);
        const std::size_t length = header & l::kLengthMask;
        const std::uint32_t pointer = reference.u32(4);
        if ((header & l::kInline) != 0) {
            if (reference.size() - l::kReferenceSize != length) {
                problem(where + ": the inline value claims " + std::to_string(length) +
                        " bytes but holds " + std::to_string(reference.size() - 12));
                return false;
            }
            return true;
        }
        if ((header & l::kSinglePage) != 0) {
            const auto row = longValueRow(table, where, pointer);
            if (!row)
                return false;
            if (row->size() < length) {
                problem(where + ": the value in " + pointerText(pointer) + " claims " +
                        std::to_string(length) + " bytes but holds " + std::to_string(row->size()));
                return false;
            }
            return true;
        }
        std::set<std::uint32_t> seen;
        std::size_t total = 0;
        for (std::uint32_t next = pointer; total < length || next != 0;) {
            if (next == 0) {
                problem(where + ": the chain of the value ends after " + std::to_string(total) +
                        " of its " + std::to_string(length) + " bytes");
                return false;
            }
            if (total >= length) {
                problem(where + ": the chain of the value goes on to " + pointerText(next) +
                        " after all its " + std::to_string(length) + " bytes");
                return false;
            }
            if (!seen.insert(next).second) {
                problem(where + ": the chain of the value loops back to " + pointerText(next));
                return false;
            }
            const auto row = longValueRow(table, where, next);
            if (!row)
                return false;
            if (row->size() < 4) {
                problem(where + ": the part in " + pointerText(next) + " is too short");
                return false;
            }
            total += row->size() - 4;
            next = row->u32(0);
        }
        return true;
    }

    // The row a long value pointer names, in longValuePage_, claimed for
    // the table; each long value row belongs to one value.
    std::optional<ByteView> longValueRow(const TableInfo& table, const std::string& where,
                                         std::uint32_t pointer) {
        const std::uint32_t number = pointerPage(pointer);
        if (number == 0 || number >= pageCount_ || pages_[number].type != format::kPageData ||
            !pages_[number].longValues) {
            problem(where + ": the value points to " + pointerText(pointer) +
                    ", which is not on a long value page");
            return std::nullopt;
        }
        claim(number, Claim{Use::LongValues, table.definition.page});
        file_.read(number, longValuePage_);
        const DataPage data(longValuePage_, number);
        RowSlot slot;
        try {
            slot = data.slot(pointerRow(pointer));
        } catch (const Error& error) {
            problem(where + ": " + error.what());
            return std::nullopt;
        }
        if (slot.deleted) {
            problem(where + ": the value points to " + pointerText(pointer) + ", a deleted row");
            return std::nullopt;
        }
        if (!longValueRows_.insert(pointer).second) {
            problem(where + ": " + pointerText(pointer) + " is part of another value as well");
            return std::nullopt;
        }
        return data.rowBytes(slot);
    }

    // One real index: its pages form a tree of this table's index pages,
    // its leaves a linked chain in key order, and it holds one entry per
    // indexed row with that row's key.
    void checkIndex(const TableInfo& table, std::size_t number,
                    std::map<std::uint64_t, ExpectedEntry>& expected,
                    const std::string& unkeyable) {
        const RealIndex& index = table.definition.realIndexes[number];
        const std::string name = indexName(table, number);
        const auto mapPages = readMap(index.usageMap, "the usage map of " + name);

        std::vector<const IndexPage*> leaves;
        std::map<std::uint32_t, IndexPage> tree;
        if (!readIndexTree(table, number, name, mapPages, leaves, tree))
            return;

        FaultList order(report_.problems);
        FaultList strays(report_.problems);
        FaultList keys(report_.problems);
        Bytes previous;
        bool first = true;
        for (const IndexPage* leaf : leaves) {
            for (const IndexPageEntry& entry : leaf->entries()) {
                Bytes sortBytes = indexEntryOrder(entry);
                if (!first && !std::lexicographical_compare(previous.begin(), previous.end(),
                                                            sortBytes.begin(), sortBytes.end())) {
                    order.add(name + ": on index " + pageText(leaf->number()) + ", the entry for " +
                              rowText(entry.row) + " is out of key order");
                }
                previous = std::move(sortBytes);
                first = false;

                const auto found = expected.find(rowKey(entry.row));
                if (found == expected.end() || found->second.matched) {
                    strays.add(name + ": index " + pageText(leaf->number()) +
                               " holds an entry for " + rowText(entry.row) + ", which " +
                               (found == expected.end() ? "is no row the index should hold"
                                                        : "has another entry already"));
                    continue;
                }
                found->second.matched = true;
                if (found->second.keyKnown && found->second.key != entry.key) {
                    keys.add(name + ": the entry for " + rowText(entry.row) + " on index " +
                             pageText(leaf->number()) + " holds the key " + hex(entry.key) +
                             ", but the row's values give " + hex(found->second.key));
                }
            }
        }
        FaultList missing(report_.problems);
        for (const auto& [key, entry] : expected) {
            if (!entry.matched)
                missing.add(name + " has no entry for " + rowText(rowOfKey(key)));
        }
        order.finish(name + ", entries out of order");
        strays.finish(name + ", entries for no row");
        keys.finish(name + ", entries with other keys");
        missing.finish(name + ", rows without entries");
        if (!unkeyable.empty()) {
            note(name + ": keys not verified, only the rows and the order of the entries (" +
                 unkeyable + ")");
        }
    }

    // Reads every page of the index's tree, claiming each; `leaves` receives
    // the leaves from left to right. An intermediate page holds an entry per
    // child but the last, which is its tail page; a page with one child keeps
    // it as an entry. Each entry is the last entry under its child. Checks
    // that each page is an index page of the table marked in the index's
    // usage map, that the tree has no loops, that all leaves lie at one depth
    // and are linked in the tree's order. False when the tree cannot be read
    // whole.
    bool readIndexTree(const TableInfo& table, std::size_t number, const std::string& name,
                       const std::optional<std::vector<std::uint32_t>>& mapPages,
                       std::vector<const IndexPage*>& leaves,
                       std::map<std::uint32_t, IndexPage>& tree) {
        const RealIndex& index = table.definition.realIndexes[number];
        struct Visit {
            std::uint32_t page;
            std::uint32_t parent;  // 0 for the root
            std::size_t depth;
        };
        struct ParentEntry {
            std::uint32_t parent;
            const IndexPageEntry* entry;  // in tree[parent]
        };
        std::vector<Visit> stack{{index.firstPage, 0, 0}};
        std::vector<ParentEntry> parentEntries;
        std::optional<std::size_t> leafDepth;
        Page bytes{};
        bool sound = true;
        while (!stack.empty()) {
            const Visit visit = stack.back();
            stack.pop_back();
            const std::string from =
                visit.parent == 0 ? "its first page" : "index " + pageText(visit.parent);
            if (visit.page == 0 || visit.page >= pageCount_) {
                problem(name + ": " + from + " points to " + pageText(visit.page) +
                        ", outside the file");
                sound = false;
                continue;
            }
            if (tree.count(visit.page) != 0) {
                problem(name + ": " + from + " leads back to " + pageText(visit.page) +
                        ", a loop among the index's pages");
                sound = false;
                continue;
            }
            const PageInfo& info = pages_[visit.page];
            if ((info.type != format::kPageIndexLeaf &&
                 info.type != format::kPageIndexIntermediate) ||
                info.owner != table.definition.page) {
                problem(name + ": " + from + " points to " + pageText(visit.page) +
                        ", which is not an index page of the table");
                sound = false;
                continue;
            }
            claim(visit.page,
                  Claim{Use::Index, table.definition.page, static_cast<std::uint32_t>(number)});
            if (mapPages && !std::binary_search(mapPages->begin(), mapPages->end(), visit.page)) {
                problem(name + ": index " + pageText(visit.page) +
                        " is not marked in the index's usage map");
            }
            file_.read(visit.page, bytes);
            IndexPage* page = nullptr;
            try {
                page = &tree.emplace(visit.page, IndexPage(bytes, visit.page)).first->second;
            } catch (const Error& error) {
                problem(name + ": " + error.what());
                sound = false;
                continue;
            }
            if (page->isLeaf()) {
                if (leafDepth && *leafDepth != visit.depth) {
                    problem(name + ": leaf index " + pageText(visit.page) + " lies at depth " +
                            std::to_string(visit.depth) + ", other leaves at depth " +
                            std::to_string(*leafDepth));
                    sound = false;
                }
                leafDepth = visit.depth;
                leaves.push_back(page);
                continue;
            }
            if (page->entries().empty() && page->tailPage() == 0) {
                problem(name + ": intermediate index " + pageText(visit.page) + " has no children");
                sound = false;
                continue;
            }
            // Pushed last to first, so that the leftmost child is read next.
            if (page->tailPage() != 0)
                stack.push_back(Visit{page->tailPage(), visit.page, visit.depth + 1});
            const auto& entries = page->entries();
            for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry) {
                stack.push_back(Visit{entry->childPage, visit.page, visit.depth + 1});
                parentEntries.push_back(ParentEntry{visit.page, &*entry});
            }
        }
        if (!sound)
            return false;

        // The walk found a tree: following last children ends at a leaf.
        const auto lastEntryUnder = [&](std::uint32_t page) -> const IndexPageEntry* {
            for (;;) {
                const IndexPage& node = tree.at(page);
                if (node.isLeaf())
                    return node.entries().empty() ? nullptr : &node.entries().back();
                page = node.tailPage() != 0 ? node.tailPage() : node.entries().back().childPage;
            }
        };
        for (const ParentEntry& parent : parentEntries) {
            const IndexPageEntry* last = lastEntryUnder(parent.entry->childPage);
            if (last == nullptr || last->key != parent.entry->key ||
                !(last->row == parent.entry->row)) {
                problem(name + ": the entry of index " + pageText(parent.parent) + " for index " +
                        pageText(parent.entry->childPage) +
                        " is not the last entry under that page");
            }
        }
        for (std::size_t k = 0; k < leaves.size(); ++k) {
            const std::uint32_t prev = k == 0 ? 0 : leaves[k - 1]->number();
            const std::uint32_t next = k + 1 == leaves.size() ? 0 : leaves[k + 1]->number();
            if (leaves[k]->prevPage() != prev || leaves[k]->nextPage() != next) {
                problem(name + ": leaf index " + pageText(leaves[k]->number()) + " links to " +
                        std::to_string(leaves[k]->prevPage()) + " and " +
                        std::to_string(leaves[k]->nextPage()) + ", but its neighbours in the " +
                        "tree are " + std::to_string(prev) + " and " + std::to_string(next));
            }
        }
        return true;
    }

    // What is wrong with a page that nothing uses and that is not marked
    // free; empty for what Access leaves behind, which nothing reads.
    std::string unclaimedPageFault(std::uint32_t number, const PageInfo& info) const {
        // Access grows a file by more pages than it fills at once: the rest
        // stay zero until used.
        if (info.blank)
            return "";
        const std::string page = pageText(number);
        const auto table = tables_.find(info.owner);
        switch (info.type) {
            case format::kPageData:
                // Access does not free the long values of rows it deletes at
                // once: their pages stay, rows live, until the file is
                // compacted (an Access file has hundreds of them after its
                // table was emptied).
                if (info.longValues)
                    return "";
                if (table != tables_.end()) {
                    return "data " + page + " belongs to table " + table->second.name +
                           ", but the table's usage map does not mark it";
                }
                return "data " + page + " names " + pageText(info.owner) +
                       " as its table, which holds no table's definition";
            case format::kPageTableDefinition:
                // When Access rewrites a definition that spans pages it may
                // leave the old continuation pages behind (seen as copies of
                // a table's second page). A first page, though, is a table
                // the catalog lost.
                if (!info.definitionStart)
                    return "";
                return page + " begins the definition of a table that is not in the catalog";
            case format::kPageIndexIntermediate:
            case format::kPageIndexLeaf:
                return "index " + page + " belongs to no index" +
                       (table != tables_.end() ? " of table " + table->second.name : "");
            case format::kPageUsageMap:
                return "usage map " + page + " belongs to no usage map";
            case kPageRetiredLongValues:
                if (info.longValues)
                    return "";
                break;
            default:
                break;
        }
        return page + " is of unknown type " + std::to_string(info.type);
    }

    static bool isKnownType(const PageInfo& info) {
        return (info.type >= format::kPageData && info.type <= format::kPageUsageMap) ||
               (info.type == kPageRetiredLongValues && info.longValues);
    }

    // Every page that no owner claimed and the map of free pages does not
    // mark free. Access leaves some kinds of them behind, which are let be.
    void checkUnclaimedPages() {
        std::vector<std::uint32_t> unreached;
        for (std::uint32_t number = 1; number < pageCount_; ++number) {
            const PageInfo& info = pages_[number];
            if (info.claim.use != Use::None || info.free)
                continue;
            // A page naming a table whose definition could not be read has
            // been reported with that table.
            if (unreadableTables_.count(info.owner) != 0 || unreadableTables_.count(number) != 0)
                continue;
            const std::string fault = unclaimedPageFault(number, info);
            if (fault.empty())
                continue;
            // The map of free pages cannot mark a page outside its reach
            // free: a page given up there is lost to the file until it is
            // compacted, which wastes space but misleads no reader.
            if (!info.freeMapReaches && isKnownType(info)) {
                unreached.push_back(number);
                continue;
            }
            problem(fault);
        }
        if (!unreached.empty()) {
            std::string list;
            for (std::size_t k = 0; k < unreached.size() && k < kListedPerKind; ++k) {
                list += (k == 0 ? "" : ", ") + std::to_string(unreached[k]);
            }
            note(std::to_string(unreached.size()) +
                 " pages that nothing uses lie outside the reach of the map of free pages, "
                 "which can mark them neither free nor used: space lost, not damage (pages " +
                 list + (unreached.size() > kListedPerKind ? ", ..." : "") + ")");
        }
    }

    const PageSource& file_;
    const std::uint32_t pageCount_;
    std::vector<PageInfo> pages_;                // by page number
    std::map<std::uint32_t, TableInfo> tables_;  // by definition page
    std::set<std::uint32_t> unreadableTables_;   // definition pages that did not read
    std::set<std::uint32_t> longValueRows_;      // long value rows reached, as row pointers
    Page longValuePage_{};                       // the page longValueRow() read last
    IntegrityReport report_;
};

}  // namespace

IntegrityReport checkIntegrityInDetail(const PageSource& file) {
    return Checker(file).run();
}

std::vector<std::string> checkIntegrity(const PageSource& file) {
    return checkIntegrityInDetail(file).problems;
}

}  // namespace jet
