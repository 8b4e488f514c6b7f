#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "bytes.h"
#include "table_definition.h"
#include "value.h"

namespace jet {

class PageSource;

// Which of a table's columns to read, by their index in
// TableDefinition::columns; an empty selection reads every column.
using ColumnSelection = std::vector<bool>;

// The texts of a table's Text columns met so far, by column and stored
// bytes, so that the rows of one scan share one copy of each text that
// recurs (a meal's name, a class, a year). A column keeps a bounded number
// of texts: one of many different texts stores each of them anew.
class TextValues {
public:
    // The value of the stored bytes of column `column` (a Text column).
    Value text(std::size_t column, ByteView stored);

private:
    static constexpr std::size_t kTextsPerColumn = 16384;

    struct BytesHash {
        using is_transparent = void;
        std::size_t operator()(std::string_view bytes) const {
            return std::hash<std::string_view>()(bytes);
        }
    };
    using Texts = std::unordered_map<std::string, Value, BytesHash, std::equal_to<>>;
    std::vector<Texts> columns_;  // by index in TableDefinition::columns
};

// Turns the stored bytes of one row into values, in the order of
// TableDefinition::columns. A row holds its column count, the fixed-length
// values, the variable-length values, their offset table (stored backwards,
// with the end of the data as last entry), the count of variable columns and
// the null mask, in that order. Columns added after the row was written, and
// columns whose null bit is clear, are Null; a Boolean is its null bit.
// Throws Error when the row's offsets do not fit its bytes.
//
// With `columns`, only the columns it selects are decoded and the others
// are Null, for readers that need a few columns of many rows. With `texts`,
// texts come from it and are shared with the rows decoded before.
void decodeRow(const PageSource& file, const TableDefinition& table, ByteView row,
               std::vector<Value>& values, const ColumnSelection& columns = {},
               TextValues* texts = nullptr);

}  // namespace jet
