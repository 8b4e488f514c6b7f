#pragma once

#include <vector>

#include "table_definition.h"
#include "value.h"

namespace jet {

// Index keys as Jet 4 writes them: byte strings whose plain byte order is the
// index order. Each column adds a flag byte (0x7f a value, 0x00 Null; for a
// descending column 0x80 and 0xff) and, for a value, its encoding, whose
// bytes a descending column inverts.
//
// Text and memo are keyed in the General sort order of Access 2000 (sort order 0x409,
// version 0), for the characters of ASCII, Latin-1 and the Turkish alphabet;
// letters key without regard to case. Any other sort order or character
// throws Error rather than give a key that might differ from Jet's. A memo
// is keyed as a text; one longer than the longest text (255 characters) is
// refused, as it is not known where Jet cuts it.

// Whether Jet keeps an entry for a row with these values: an index that
// ignores nulls leaves out the rows whose key columns are all Null.
// REQUIRES: values are in the order of table.columns.
bool isRowIndexed(const TableDefinition& table, const RealIndex& index,
                  const std::vector<Value>& values);

// The key of a row in the index. Throws Error when a value cannot be keyed.
// REQUIRES: values are in the order of table.columns.
Bytes encodeIndexKey(const TableDefinition& table, const RealIndex& index,
                     const std::vector<Value>& values);

// Throws Error when no value of the column can be keyed: a type without
// known keys, or text in another sort order than General.
void checkKeyableColumn(const Column& column);

// Appends one column's part of a key. Throws Error when the value is not of
// the column's kind or cannot be keyed.
void appendColumnKey(Bytes& key, const Column& column, bool ascending, const Value& value);

}  // namespace jet
