#include "database_builder.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <filesystem>

#include "data_page_builder.h"
#include "error.h"
#include "format.h"
#include "header_builder.h"
#include "index_key.h"
#include "index_page_builder.h"
#include "os_file.h"
#include "row_encoder.h"
#include "text.h"

namespace jet {
namespace {

namespace u = format::usage;

constexpr std::size_t kUsageMapBitmapSize = 64;  // bytes of an inline map: 512 pages
constexpr std::uint32_t kGlobalMapPage = 1;

// System tables' text and binary columns hold 255 characters or 510 bytes.
NewColumn column(std::u16string name, ColumnType type) {
    const std::uint16_t length = type == ColumnType::Text     ? 255
                                 : type == ColumnType::Binary ? 510
                                                              : 0;
    NewColumn c;
    c.name = std::move(name);
    c.type = type;
    c.length = length;
    c.systemFlag = true;
    return c;
}

NewIndex index(std::u16string name, std::vector<std::u16string> columns) {
    NewIndex i;
    i.name = std::move(name);
    i.columns = std::move(columns);
    return i;
}

// The new database's pages, built in memory and written at the end.
struct Pages {
    std::vector<Page> pages;

    std::uint32_t add(const Page& page) {
        pages.push_back(page);
        return static_cast<std::uint32_t>(pages.size() - 1);
    }
    std::uint32_t addDataPage(std::uint32_t owner) {
        Page page{};
        initDataPage(page, owner);
        return add(page);
    }
};

std::uint32_t pointer(std::uint32_t page, std::uint16_t row) {
    return (page << 8) | row;
}

void setBit(Bytes& map, std::uint32_t page, bool on) {
    const std::size_t at = 5 + page / 8;
    const auto mask = static_cast<std::uint8_t>(1u << (page % 8));
    if (on) {
        map[at] |= mask;
    } else {
        map[at] &= static_cast<std::uint8_t>(~mask);
    }
}

void writeFile(const std::string& path, const std::vector<Page>& pages, std::uint32_t key) {
    {
        os::File create = os::File::open(path, os::File::Mode::Replace);
        if (!create.isOpen() || !create.close())
            throw Error("cannot create " + path + ": " + os::lastError());
    }
    PageFile file(path, PageFile::Mode::ReadWrite);
    file.setEncodingKey(key);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        file.write(static_cast<std::uint32_t>(i), pages[i]);
    }
    file.sync();
}

}  // namespace

std::vector<NewTable> systemTables() {
    using T = ColumnType;
    NewTable objects{
        u"MSysObjects",
        true,
        {column(u"Id", T::LongInteger), column(u"ParentId", T::LongInteger),
         column(u"Name", T::Text), column(u"Type", T::Integer), column(u"DateCreate", T::DateTime),
         column(u"DateUpdate", T::DateTime), column(u"Owner", T::Binary),
         column(u"Flags", T::LongInteger), column(u"Database", T::Memo),
         column(u"Connect", T::Memo), column(u"ForeignName", T::Text),
         column(u"RmtInfoShort", T::Binary), column(u"RmtInfoLong", T::Ole), column(u"Lv", T::Ole),
         column(u"LvProp", T::Ole), column(u"LvModule", T::Ole), column(u"LvExtra", T::Ole)},
        {index(u"ParentIdName", {u"ParentId", u"Name"}), index(u"Id", {u"Id"})}};
    objects.indexes[0].unique = true;
    objects.indexes[1].primaryKey = true;

    NewTable aces{u"MSysACEs",
                  true,
                  {column(u"ObjectId", T::LongInteger), column(u"SID", T::Binary),
                   column(u"ACM", T::LongInteger), column(u"FInheritable", T::Boolean)},
                  {index(u"ObjectId", {u"ObjectId"})}};
    aces.indexes[0].required = true;

    NewTable queries{u"MSysQueries",
                     true,
                     {column(u"ObjectId", T::LongInteger), column(u"Attribute", T::Byte),
                      column(u"Order", T::Binary), column(u"Name1", T::Text),
                      column(u"Name2", T::Text), column(u"Expression", T::Memo),
                      column(u"Flag", T::Integer), column(u"LvExtra", T::LongInteger)},
                     {index(u"ObjectIdAttribute", {u"ObjectId", u"Attribute", u"Order"})}};
    queries.indexes[0].primaryKey = true;

    NewTable relationships{
        u"MSysRelationships",
        true,
        {column(u"szRelationship", T::Text), column(u"grbit", T::LongInteger),
         column(u"ccolumn", T::LongInteger), column(u"icolumn", T::LongInteger),
         column(u"szObject", T::Text), column(u"szColumn", T::Text),
         column(u"szReferencedObject", T::Text), column(u"szReferencedColumn", T::Text)},
        {index(u"szRelationship", {u"szRelationship"}), index(u"szObject", {u"szObject"}),
         index(u"szReferencedObject", {u"szReferencedObject"})}};
    for (NewIndex& i : relationships.indexes)
        i.ignoreNulls = true;
    return {objects, aces, queries, relationships};
}

std::vector<Value> catalogRow(const TableDefinition& objects, const CatalogEntry& entry,
                              Date date) {
    std::vector<Value> values;
    for (const Column& c : objects.columns) {
        const std::u16string& name = c.name;
        if (name == u"Id") {
            values.push_back(Value::integer(entry.id));
        } else if (name == u"ParentId") {
            values.push_back(Value::integer(entry.parentId));
        } else if (name == u"Name") {
            values.push_back(Value::text(entry.name));
        } else if (name == u"Type") {
            values.push_back(Value::integer(entry.type));
        } else if (name == u"Flags") {
            values.push_back(Value::integer(static_cast<std::int32_t>(entry.flags)));
        } else if (name == u"DateCreate" || name == u"DateUpdate") {
            values.push_back(Value::date(date));
        } else {
            values.push_back(Value());
        }
    }
    return values;
}

Bytes emptyUsageMap(std::uint32_t firstPage) {
    Bytes map(5 + kUsageMapBitmapSize, 0);
    map[0] = u::kInlineMap;
    std::memcpy(map.data() + 1, &firstPage, 4);
    return map;
}

Date currentDate() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm local{};
    localtime_r(&now, &local);
    return Date::fromCivil(CivilDateTime{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday,
                                         local.tm_hour, local.tm_min, local.tm_sec});
}

void createDatabase(const std::string& path, const NewDatabaseOptions& options) {
    namespace fs = std::filesystem;
    std::error_code ignored;
    if (fs::exists(os::utf8Path(path), ignored))
        throw Error("cannot create " + path + ": the file exists");

    DatabaseHeader header;
    header.version = format::kVersionJet4;
    header.codePage = format::header::kCodePageWestern;
    header.encodingKey = options.encodingKey;
    header.sortOrder = format::kSortGeneral;
    header.created = options.created.value_or(currentDate());
    header.password = options.password;

    Pages file;
    file.add(buildHeader(header));
    const std::uint32_t globalMap = file.addDataPage(kGlobalMapPage);

    // Definitions on pages 2 to 5, where Jet keeps them; MSysObjects on 2.
    std::vector<TableDefinition> tables;
    for (const NewTable& wanted : systemTables()) {
        tables.push_back(layOutTable(wanted));
        tables.back().page = file.add(Page{});
        tables.back().pages = {tables.back().page};
    }
    // Access leaves the primary keys of system tables without the Required flag.
    for (TableDefinition& table : tables) {
        for (const LogicalIndex& logical : table.indexes) {
            if (logical.isPrimaryKey()) {
                table.realIndexes[logical.realIndex].flags &=
                    static_cast<std::uint8_t>(~format::kIndexRequired);
            }
        }
    }

    // One page for every usage map, in the order: each table's maps of owned
    // pages and of pages with free space, then its indexes' maps.
    const std::uint32_t mapPage = file.addDataPage(0);
    std::vector<Bytes> maps;
    const auto addMap = [&](std::uint32_t& target) {
        target = pointer(mapPage, static_cast<std::uint16_t>(maps.size()));
        maps.push_back(emptyUsageMap(0));
        return maps.size() - 1;
    };
    std::vector<std::size_t> tableMaps;
    std::vector<std::vector<std::size_t>> indexMaps(tables.size());
    for (std::size_t t = 0; t < tables.size(); ++t) {
        tableMaps.push_back(addMap(tables[t].usageMap));
        addMap(tables[t].freeSpaceMap);
        for (RealIndex& real : tables[t].realIndexes)
            indexMaps[t].push_back(addMap(real.usageMap));
    }
    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t i = 0; i < tables[t].realIndexes.size(); ++i) {
            tables[t].realIndexes[i].firstPage = file.add(Page{});
            setBit(maps[indexMaps[t][i]], tables[t].realIndexes[i].firstPage, true);
        }
    }

    // The catalog's rows, on one data page of MSysObjects.
    TableDefinition& objects = tables[0];
    const std::uint32_t rowsPage = file.addDataPage(objects.page);
    const auto root = format::kRootContainerId;
    const auto system = format::kObjectFlagsSystemObject;
    std::vector<CatalogEntry> entries = {
        {u"Tables", format::kTablesContainerId, root, format::kObjectTypeContainer, system},
        {u"Databases", format::kDatabasesContainerId, root, format::kObjectTypeContainer, system},
        {u"Relationships", format::kRelationshipsContainerId, root, format::kObjectTypeContainer,
         system},
        {u"MSysDb", format::kDatabaseObjectId, format::kDatabasesContainerId,
         format::kObjectTypeDatabase, system},
    };
    for (const TableDefinition& table : tables) {
        entries.push_back({table.name, static_cast<std::int32_t>(table.page),
                           format::kTablesContainerId, format::kObjectTypeTable, system});
    }
    std::vector<std::vector<IndexEntry>> keys(objects.realIndexes.size());
    for (const CatalogEntry& entry : entries) {
        const std::vector<Value> values = catalogRow(objects, entry, header.created);
        const Bytes row = encodeRow(objects, values, [](const Column&, const Bytes&) -> Bytes {
            throw Error("the catalog of a new database holds no long values");
        });
        const std::uint16_t slot = appendRow(file.pages[rowsPage], row);
        for (std::size_t i = 0; i < objects.realIndexes.size(); ++i) {
            keys[i].push_back(
                {encodeIndexKey(objects, objects.realIndexes[i], values), RowId{rowsPage, slot}});
        }
    }
    objects.rowCount = static_cast<std::uint32_t>(entries.size());
    setBit(maps[tableMaps[0]], rowsPage, true);
    setBit(maps[tableMaps[0] + 1], rowsPage, true);

    for (std::size_t t = 0; t < tables.size(); ++t) {
        for (std::size_t i = 0; i < tables[t].realIndexes.size(); ++i) {
            std::vector<IndexEntry> sorted = t == 0 ? keys[i] : std::vector<IndexEntry>{};
            std::sort(sorted.begin(), sorted.end(), [](const IndexEntry& a, const IndexEntry& b) {
                return a.key != b.key ? a.key < b.key
                                      : std::make_pair(a.row.page, a.row.row) <
                                            std::make_pair(b.row.page, b.row.row);
            });
            tables[t].realIndexes[i].rowCount = static_cast<std::uint32_t>(sorted.size());
            // One leaf holds them all; Access writes a new database's leaves
            // without a shared prefix.
            IndexPageContents leaf;
            leaf.owner = tables[t].page;
            for (const IndexEntry& entry : sorted) leaf.entries.push_back({entry.key, entry.row, 0});
            buildIndexPage(file.pages[tables[t].realIndexes[i].firstPage], leaf, 0);
        }
        file.pages[tables[t].page] = buildTableDefinition(tables[t]).at(0);
    }
    for (const Bytes& map : maps)
        appendRow(file.pages[mapPage], map);

    // The global map: a set bit is a free page; pages past the end are free.
    Bytes global = emptyUsageMap(0);
    for (std::uint32_t page = 0; page < 8 * kUsageMapBitmapSize; ++page) {
        setBit(global, page, page >= file.pages.size());
    }
    appendRow(file.pages[globalMap], global);

    const std::string temporary = path + ".new";
    try {
        writeFile(temporary, file.pages, options.encodingKey);
        if (!os::renameOver(temporary, path))
            throw Error(os::lastError());
    } catch (const std::exception& error) {
        os::removeFile(temporary);
        throw Error("cannot create " + path + ": " + error.what());
    }
}

}  // namespace jet
