#pragma once

#include <vector>

#include "bytes.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

class PageSource;

// Turns the stored bytes of one row into values, in the order of
// TableDefinition::columns. A row holds its column count, the fixed-length
// values, the variable-length values, their offset table (stored backwards,
// with the end of the data as last entry), the count of variable columns and
// the null mask, in that order. Columns added after the row was written, and
// columns whose null bit is clear, are Null; a Boolean is its null bit.
// Throws Error when the row's offsets do not fit its bytes.
void decodeRow(const PageSource& file, const TableDefinition& table, ByteView row,
               std::vector<Value>& values);

}  // namespace jet
