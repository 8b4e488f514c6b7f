#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "store/connection.h"
#include "store/recordset.h"

namespace store {

// The original's data control (Adodc): a connection string, a record source
// (a table name or a query) and the record set it keeps open for as long as
// its window lives. Windows show the record set through bound boxes and
// grids; the caption is the text of its navigation bar.
class DataControl {
public:
    std::string connectionString;  // as the window's design gives it
    std::u16string recordSource;   // a table name or a query
    CursorType cursorType = CursorType::Static;
    LockType lockType = LockType::Optimistic;
    std::u16string caption;

    // Called after each change of the record set's current row, Refresh
    // included.
    std::function<void()> onMoveComplete;
    // Called before an edited or new row of the record set is written.
    std::function<void()> onWillChangeRecord;

    // A connection string set at run time: the connection goes, and the next
    // Refresh opens the new one. The record set stays until then.
    void setConnectionString(std::string text);

    // Runs the record source again: a new record set, the first row current,
    // filter and sort gone. Opens the connection on first use. A pending edit
    // of the old record set is written first. Throws DataError.
    void Refresh();

    // REQUIRES: Refresh() has run.
    Recordset& recordset() { return recordset_; }
    const Recordset& recordset() const { return recordset_; }

private:
    Connection connection_;
    Recordset recordset_;
};

}  // namespace store
