#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/jet/database.h"
#include "store/jet/table_cursor.h"
#include "store/jet/value.h"
#include "store/sql/filter.h"

namespace store {

class Connection;
class Source;

enum class CursorType { Keyset = 1, Static = 3 };
enum class LockType { Optimistic = 3 };

// The rows of one query with a current row, as the original data layer's
// record set gives them: moved through, filtered and sorted on the client
// side, edited through an edit buffer and written back to the row each came
// from, after checking that the row still holds what was read. A value
// assigned to a field becomes one of the column's type at once (see
// convertForColumn), and after a write the record set keeps the row as the
// file holds it, so that the check compares like with like.
//
// A record set keeps the source of the connection it was opened on for as
// long as it stays open: it reads and writes back its rows after the
// connection is closed or gone.
//
// Keyset (code) and static (data control) record sets behave alike here:
// both hold the rows the query gave when it ran.
class Recordset {
public:
    // AbsolutePosition when there is no current row.
    static constexpr long kPositionUnknown = -1;

    // Runs the SQL text. A statement that returns no rows (the "delete*"
    // texts) runs and leaves the record set closed. Throws DataError.
    void open(std::u16string_view sql, Connection& connection,
              CursorType cursor = CursorType::Keyset, LockType lock = LockType::Optimistic,
              long options = -1);
    bool isOpen() const { return open_; }
    void close();

    long recordCount() const;  // under the present filter
    long absolutePosition() const;
    bool bof() const;
    bool eof() const;

    // Leaving a row writes its pending edit first. MoveFirst and MoveLast
    // fail on an empty record set.
    void moveFirst();
    void moveNext();
    void movePrevious();
    void moveLast();

    const std::vector<std::u16string>& fieldNames() const { return columnNames_; }
    const std::vector<jet::ColumnType>& fieldTypes() const { return columnTypes_; }
    // The ordinal of a field, its name matched as every name is (Adi finds
    // ADI, yıl finds YIL). Fails for a name the source lacks.
    std::size_t ordinalOf(std::u16string_view name) const;
    // Fails for a name the source lacks, and when there is no current row.
    jet::Value field(std::u16string_view name) const;
    jet::Value field(std::size_t ordinal) const;
    // Converts the value to the column's type (see convertForColumn); a
    // value refused there throws DataError and leaves the row as it was.
    void setField(std::u16string_view name, const jet::Value& value);
    void setField(std::size_t ordinal, const jet::Value& value);

    // The original's AbsolutePosition assignment: makes the row at 1-based
    // position current, writing the pending edit of the row it leaves.
    void setAbsolutePosition(long position);
    // A value of the row at 1-based position under the present filter and
    // sort, without moving: what a grid paints. The current row shows its
    // edit buffer.
    jet::Value valueAt(long position, std::size_t ordinal) const;

    // What leaving the current row does to its pending edit: writes it, or
    // drops a new row none of whose fields was assigned. Refresh and a
    // window going down call it.
    void leaveRow();

    void addNew();
    // Writes the edit or the new row in one statement of the engine, which
    // first checks that the row still holds what was read, then reads the
    // row back. Throws DataError when another program changed or deleted
    // the row, jet::Error when the engine refuses the row.
    void update();
    void cancelUpdate();
    void remove();  // the original's Delete
    bool editing() const { return edit_ != Edit::None; }
    bool addingNew() const { return edit_ == Edit::Add; }
    // Changes whenever the rows in view change: a filter, a sort, an open, a
    // row added or deleted. Grids compare it to know when to repaint whole.
    unsigned long viewVersion() const { return viewVersion_; }

    // A text narrows the rows and moves to the first; an invalid text fails
    // and leaves the old filter. clearFilter() is the original's Filter = 0.
    void setFilter(std::u16string_view text);
    void clearFilter();
    const std::u16string& filter() const { return filterText_; }
    // "SINIF ASC", "tarih asc, ad desc": a stable order on the client side.
    void setSort(std::u16string_view text);

    // The database file its rows are written back to; null when they come
    // from no database file or the record set was never opened.
    jet::Database* writableDatabase() const;

    // Called after each change of the current row: a move, a new filter or
    // sort, an open. Bound boxes and grids follow the record set through it.
    std::function<void()> onMoveComplete;
    // The original's WillChangeRecord: called when an edited or new row is
    // about to be written, while its edit buffer can still be assigned to.
    // What it assigns is written with the row.
    std::function<void()> onWillChangeRecord;

private:
    struct Row {
        std::vector<jet::Value> values;  // as last read or written
        std::optional<jet::RowId> id;    // where the row lives, for rows of one table
        bool deleted = false;
    };
    enum class Edit { None, Change, Add };

    void requireOpen() const;
    void requireCurrent() const;
    void rebuildView();
    void moved();
    std::vector<jet::Value> readUnchanged(const jet::PageSource& file,
                                          const jet::TableDefinition& table, const Row& row) const;
    std::vector<jet::Value> withEdit(std::vector<jet::Value> tableValues) const;
    std::vector<jet::Value> fieldValues(const std::vector<jet::Value>& tableValues) const;
    jet::Database& database() const;

    std::shared_ptr<Source> source_;  // of the connection opened on; null while closed
    bool open_ = false;
    std::vector<std::u16string> columnNames_;
    std::vector<jet::ColumnType> columnTypes_;
    std::u16string baseTable_;       // the one table the rows map to, or empty: read-only
    jet::TableDefinition baseDefinition_;  // of baseTable_, as read at the open
    std::vector<int> tableColumn_;   // result column -> the table's column, -1 for none
    std::vector<Row> rows_;          // every row the query gave, added rows after them
    std::vector<std::size_t> view_;  // rows_ under the filter and sort, in order
    long position_ = 0;              // index into view_; -1 before the first, view_.size() after the last
    bool currentDeleted_ = false;    // the current row was deleted and left the view
    std::u16string filterText_;
    std::optional<sql::Filter> filter_;
    sql::Filter::Binding filterBinding_;  // filter_ checked against the columns
    std::vector<std::pair<std::size_t, bool>> sort_;  // column, ascending
    Edit edit_ = Edit::None;
    bool newRowTouched_ = false;  // a field of the new row was assigned
    unsigned long viewVersion_ = 0;
    std::vector<jet::Value> buffer_;  // the edit buffer of the current or new row
};

}  // namespace store
