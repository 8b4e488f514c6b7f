#pragma once

#include <functional>
#include <vector>

#include "table_definition.h"
#include "value.h"

namespace jet {

// Stores a memo or OLE value and returns the 12-byte reference to keep in
// the row, followed by the value itself when it is kept inline.
using LongValueStore = std::function<Bytes(const Column& column, const Bytes& stored)>;

// The largest row a Jet 4 data page takes.
inline constexpr std::size_t kMaxRowSize = 4060;

// Builds the stored bytes of a row from its values, given in the order of
// TableDefinition::columns: the inverse of decodeRow. Throws Error, naming
// the column, for a value of the wrong kind, a number out of the column's
// range, a text longer than the column, or a row longer than a page.
Bytes encodeRow(const TableDefinition& table, const std::vector<Value>& values,
                const LongValueStore& storeLongValue);

// The stored form of a text: the compressed form when every character fits
// in one byte and the column allows it, UTF-16LE otherwise.
Bytes encodeText(const std::u16string& text, bool compress);

}  // namespace jet
