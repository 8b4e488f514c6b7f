#pragma once

#include <cstdint>
#include <string_view>

#include "table_definition.h"
#include "table_definition_builder.h"
#include "value.h"

namespace jet {

class WriteStatement;

// Parses a CREATE TABLE statement of Jet SQL:
//
//   CREATE TABLE name (column type [(size)] [NOT NULL | NULL] [PRIMARY KEY | UNIQUE]
//                      [WITH COMPRESSION], ...
//                      [, [CONSTRAINT name] {PRIMARY KEY | UNIQUE} (column, ...)] ...) [;]
//
// Keywords and type names without regard to case; names bare or in
// [brackets]. Types as Jet reads them: TEXT, VARCHAR and their synonyms a
// variable text (255 characters without a size), CHAR a fixed text padded
// to its size (255 without one), MEMO, LONG and INTEGER a Long Integer,
// SHORT and SMALLINT an Integer, BYTE, DOUBLE and FLOAT a Double, SINGLE and
// REAL a Single, CURRENCY, DATETIME, YESNO and BIT a Boolean, COUNTER and
// AUTOINCREMENT an AutoNumber, BINARY, LONGBINARY, GUID. A constraint
// without a name is named as Access names it: PrimaryKey for a primary key,
// else the name of its first column (made unique with a number).
// Throws Error naming the token that was not understood.
NewTable parseCreateTable(std::u16string_view sql);

// Makes the table within the statement: its definition pages, its empty
// usage maps and index root pages, and its entry in the catalog (through
// TableWriter, which keeps the catalog's indexes in step). Throws Error,
// before anything changed, when a table or other catalog object of that name
// exists (names compared as Access does, without regard to case) or the
// table cannot be laid out.
TableDefinition createTable(WriteStatement& statement, const NewTable& table);

// The same for a table whose columns and indexes are laid out already (as
// layOutTable does; pages, usage maps and row counts are assigned here),
// listed in the catalog with those flags and, when not empty, those
// properties (the LvProp value in which Access keeps the table's and its
// columns' properties).
TableDefinition createTable(WriteStatement& statement, TableDefinition table,
                            std::uint32_t catalogFlags, const Bytes& properties);

}  // namespace jet
