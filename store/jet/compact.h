#pragma once

#include <string>
#include <string_view>

namespace jet {

// Compacts a database as Access's "Compact and Repair" does: writes at `out`
// a fresh Jet 4 file with the user tables of `in` (their columns with types,
// sizes, flags and order; their rows in stored order, deleted ones left out;
// their indexes; their AutoNumber's next value; the table and column
// properties of the catalog), the database's properties, its password,
// encoding key and creation date, and nothing else: no free pages, no
// deleted rows, no space of deleted columns (the columns after one are
// renumbered). Relationships and queries are not carried over; an index
// that only serves a relationship is left out with it.
//
// Nobody may have `in` open (see ensureNotInUse), and copies of the program
// cannot open it until compaction ends. The copy is written beside `out`
// (as "OUT.compacting", which an interrupted compaction may leave and the
// next one removes) and renamed to it at the end: `out` appears whole or not
// at all. An existing `out` is refused, so that no database is ever
// overwritten.
//
// Throws InUseError when `in` is in use; Error when `in` is no readable Jet 4
// database, `password` is not its password (it must be given when it has
// one), `out` exists or cannot be written, or a table cannot be rebuilt.
void compactDatabase(const std::string& in, const std::string& out,
                     std::u16string_view password = {});

}  // namespace jet
