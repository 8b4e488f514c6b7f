#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "catalog.h"
#include "table_definition.h"
#include "table_definition_builder.h"
#include "value.h"

namespace jet {

struct NewDatabaseOptions {
    std::u16string password;        // the database password, at most 20 characters; empty: none
    std::uint32_t encodingKey = 0;  // non-zero: every page but the header RC4-encoded with it
    std::optional<Date> created;    // the creation date; the current local time when absent
};

// Writes a new, empty Jet 4 database (Access 2000 format, General sort
// order, code page 1252) at `path`, which must not exist. It holds what the
// Jet engine makes in every database: the catalog MSysObjects with its two
// indexes, the empty system tables MSysACEs, MSysQueries and
// MSysRelationships, and the catalog entries of the containers Tables,
// Databases and Relationships, of the database (MSysDb) and of the four
// tables. Access adds its own objects (MSysAccessObjects, Forms, Reports...)
// when it first opens the file. The file is written under a temporary name
// and renamed, so that `path` never names half a database.
// Throws Error when the path exists or cannot be written, or the password
// is too long.
void createDatabase(const std::string& path, const NewDatabaseOptions& options);

// The system tables as Jet makes them, in the order of their definition
// pages 2 to 5.
std::vector<NewTable> systemTables();

// The row of MSysObjects that lists `entry`, made and updated at `date`,
// values in the order of objects.columns (matched by name; other columns Null).
std::vector<Value> catalogRow(const TableDefinition& objects, const CatalogEntry& entry, Date date);

// An empty inline usage map row whose window begins at `firstPage`.
Bytes emptyUsageMap(std::uint32_t firstPage);

// The current local time, to the second, as Access dates objects.
Date currentDate();

}  // namespace jet
