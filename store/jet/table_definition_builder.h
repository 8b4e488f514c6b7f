#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "page_file.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

// A column of a table to be made, before its place in rows is decided.
struct NewColumn {
    std::u16string name;
    ColumnType type = ColumnType::Text;
    std::uint16_t length = 0;        // Text and Binary: characters or bytes; else ignored
    bool fixedLength = false;        // Text and Binary: padded to its length (CHAR)
    bool autoNumber = false;         // Long Integer numbered by the table
    bool compressedUnicode = false;  // Text and Memo may be stored compressed
    bool systemFlag = false;         // marks the columns of system tables (flag 0x10)
};

// An index of a table to be made; columns name NewColumn::name.
struct NewIndex {
    std::u16string name;
    std::vector<std::u16string> columns;
    std::vector<bool> descending;  // per column; empty: all ascending
    bool primaryKey = false;       // unique and required
    bool unique = false;
    bool ignoreNulls = false;
    bool required = false;
};

struct NewTable {
    std::u16string name;
    bool system = false;  // an MSys table: table type kTableTypeSystem
    std::vector<NewColumn> columns;
    std::vector<NewIndex> indexes;
};

// Whether two names of tables, columns or indexes are the same to Access:
// equal when letters of ASCII, Latin-1 and the Turkish alphabet are compared
// without regard to case (the dotted and dotless i both match I).
bool sameName(std::u16string_view a, std::u16string_view b);

// Lays a new table out as Jet does: column numbers in the given order, fixed
// columns packed from offset 0 in that order, variable columns numbered in
// that order, Booleans in the null mask; one real index per logical index.
// Usage maps, index pages and definition pages are left 0 for the caller.
// Throws Error, naming the table, for what Jet would refuse: no columns, more
// than 255, duplicate or empty names (without regard to case), a text longer
// than 255 characters, an index over an unknown column or of more than 10
// columns, more than one primary key.
TableDefinition layOutTable(const NewTable& table);

// How many pages the definition of `table` takes.
std::size_t tableDefinitionPageCount(const TableDefinition& table);

// The pages of the definition, chained, as readTableDefinition reads them.
// REQUIRES: table.pages holds tableDefinitionPageCount(table) page numbers,
// the first being table.page.
std::vector<Page> buildTableDefinition(const TableDefinition& table);

}  // namespace jet
