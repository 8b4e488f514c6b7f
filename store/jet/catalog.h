#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "table_definition.h"

namespace jet {

class PageSource;

// One object of the database as the system table MSysObjects lists it.
struct CatalogEntry {
    std::u16string name;
    std::int32_t id = 0;     // for tables: the page of the table definition, in the low 24 bits
    std::int32_t parentId = 0;
    std::int16_t type = 0;   // format::kObjectTypeTable for tables
    std::uint32_t flags = 0;

    bool isTable() const;
    bool isSystemTable() const;
    bool isUserTable() const;
    std::uint32_t definitionPage() const { return static_cast<std::uint32_t>(id) & 0x00ffffff; }
};

// Every object of the catalog, in its stored order.
std::vector<CatalogEntry> readCatalog(const PageSource& file);

// The definition of the table of that name: the exact name, or else the
// first that differs only in the case of ASCII letters. Throws Error when
// there is none.
TableDefinition findTable(const PageSource& file, std::u16string_view name);

}  // namespace jet
