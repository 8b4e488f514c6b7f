#pragma once

#include <optional>

#include "store/jet/database.h"

namespace store {

class Recordset;

// Makes the writes of a routine that loops over rows (updates, deletes or
// inserts of a record set, one after another) one durable write of the
// database: one journal and one set of flushes, all or nothing on a crash.
// A write in the loop that fails is undone alone and the loop's handler goes
// on as it would: the scope keeps what succeeded, and commits it when it
// goes, also when a failure ends the routine early. It keeps other copies of
// the program from the file while it lives, so it spans no question to the
// user.
class WriteScope {
public:
    // A record set of no database file (a workbook's) writes nothing: the
    // scope does nothing.
    explicit WriteScope(Recordset& recordset);

    // Makes what the scope holds durable now; throws DataError when the
    // file cannot be written.
    void commit();

private:
    std::optional<jet::Database::WriteScope> scope_;
};

}  // namespace store
