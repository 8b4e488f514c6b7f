#include "catalog.h"

#include <algorithm>

#include "error.h"
#include "text.h"
#include "format.h"
#include "table_cursor.h"
#include "table_definition.h"

namespace jet {

bool CatalogEntry::isTable() const { return type == format::kObjectTypeTable; }
bool CatalogEntry::isSystemTable() const {
    return isTable() && (flags & format::kObjectFlagsSystem) != 0;
}
bool CatalogEntry::isUserTable() const {
    return isTable() && (flags & format::kObjectFlagsSystem) == 0;
}

std::vector<CatalogEntry> readCatalog(const PageSource& file) {
    const TableDefinition objects = readTableDefinition(file, format::kCatalogPage);
    int idColumn = -1;
    int parentColumn = -1;
    int nameColumn = -1;
    int typeColumn = -1;
    int flagsColumn = -1;
    for (std::size_t i = 0; i < objects.columns.size(); ++i) {
        const std::u16string& name = objects.columns[i].name;
        const int index = static_cast<int>(i);
        if (name == u"Id") idColumn = index;
        if (name == u"ParentId") parentColumn = index;
        if (name == u"Name") nameColumn = index;
        if (name == u"Type") typeColumn = index;
        if (name == u"Flags") flagsColumn = index;
    }
    if (idColumn < 0 || parentColumn < 0 || nameColumn < 0 || typeColumn < 0 || flagsColumn < 0) {
        throw Error("the catalog on page 2 lacks one of the columns Id, ParentId, Name, Type " +
                    std::string("and Flags: the file is damaged"));
    }

    std::vector<CatalogEntry> entries;
    TableCursor cursor(file, objects);
    std::vector<Value> values;
    const auto integerOf = [&](int column) -> std::int32_t {
        const Value& value = values[static_cast<std::size_t>(column)];
        return value.kind() == Value::Kind::Integer ? value.asInteger() : 0;
    };
    while (cursor.next()) {
        cursor.values(values);
        CatalogEntry entry;
        const Value& name = values[static_cast<std::size_t>(nameColumn)];
        if (name.kind() == Value::Kind::Text) entry.name = name.asText();
        entry.id = integerOf(idColumn);
        entry.parentId = integerOf(parentColumn);
        entry.type = static_cast<std::int16_t>(integerOf(typeColumn));
        entry.flags = static_cast<std::uint32_t>(integerOf(flagsColumn));
        entries.push_back(std::move(entry));
    }
    return entries;
}

namespace {

bool equalIgnoringAsciiCase(std::u16string_view a, std::u16string_view b) {
    const auto lower = [](char16_t c) {
        return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c;
    };
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(),
                      [&](char16_t x, char16_t y) { return lower(x) == lower(y); });
}

}  // namespace

TableDefinition findTable(const PageSource& file, std::u16string_view name) {
    const std::vector<CatalogEntry> entries = readCatalog(file);
    const auto exact = std::find_if(entries.begin(), entries.end(), [&](const CatalogEntry& e) {
        return e.isTable() && e.name == name;
    });
    const auto found = exact != entries.end()
                           ? exact
                           : std::find_if(entries.begin(), entries.end(), [&](const CatalogEntry& e) {
                                 return e.isTable() && equalIgnoringAsciiCase(e.name, name);
                             });
    if (found == entries.end()) throw Error("table " + toUtf8(name) + " does not exist");
    TableDefinition definition = readTableDefinition(file, found->definitionPage());
    definition.name = found->name;
    return definition;
}

}  // namespace jet
