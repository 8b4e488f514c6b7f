#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "catalog.h"
#include "header.h"
#include "page_file.h"
#include "table_cursor.h"
#include "table_definition.h"

namespace jet {

// An open Jet 4 database file, for reading. Each call reads what it needs
// from the file afresh, so that it sees what another program wrote since.
class Database {
public:
    // Opens the file and reads its header. Throws Error for a file that is
    // missing, unreadable, or not a Jet 4 database.
    explicit Database(const std::string& path);

    const std::string& path() const { return file_.path(); }
    const DatabaseHeader& header() const { return header_; }
    const PageFile& file() const { return file_; }

    std::vector<CatalogEntry> catalog() const;
    // Names of the user tables (not system tables), in catalog order.
    std::vector<std::u16string> userTableNames() const;

    // The definition of the table of that name: the exact name, or else the
    // one name that differs only in the case of ASCII letters. Throws Error
    // when there is none.
    TableDefinition table(std::u16string_view name) const;

    // REQUIRES: `table` outlives the cursor.
    TableCursor scan(const TableDefinition& table) const { return TableCursor(file_, table); }

private:
    PageFile file_;
    DatabaseHeader header_;
};

}  // namespace jet
