#pragma once

#include <vector>

#include "bytes.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

class PageSource;

// Which of a table's columns to read, by their index in
// TableDefinition::columns; an empty selection reads every column.
using ColumnSelection = std::vector<bool>;

// Turns the stored bytes of one row into values, in the order of
// TableDefinition::columns. A row holds its column count, the fixed-length
// values, the variable-length values, their offset table (stored backwards,
// with the end of the data as last entry), the count of variable columns and
// the null mask, in that order. Columns added after the row was written, and
// columns whose null bit is clear, are Null; a Boolean is its null bit.
// Throws Error when the row's offsets do not fit its bytes.
//
// With `columns`, only the columns it selects are decoded and the others
// are Null, for readers that need a few columns of many rows.
void decodeRow(const PageSource& file, const TableDefinition& table, ByteView row,
               std::vector<Value>& values, const ColumnSelection& columns = {});

}  // namespace jet
