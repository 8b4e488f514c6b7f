#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/jet/value.h"
#include "store/workbook/workbook.h"

namespace workbook {

// A sheet, or a named range, read as a table the way the Excel ODBC and Jet
// drivers read it with MaxScanRows=8:
//
// - The range is the named range's rectangle, or for a sheet the used range:
//   from the first to the last row and column that hold a value (a blank
//   cell holds none; an empty text does). Rows after the last one holding a
//   value in the range are dropped.
// - With a header row (HDR=YES, the default) the range's first row names the
//   columns: a text as it is, a number by its digits ("4", "2.5"), a boolean
//   as TRUE or FALSE; a blank, an empty text or an error gives "F" and the
//   column's 1-based position in the range ("F1", "F2" ...). The rows that
//   follow are the data. Without one (HDR=NO) every row is data and the
//   columns are F1 ... Fn.
// - Each column's type is decided from its first eight data rows: the most
//   frequent kind among the cells holding a number, a non-empty text or a
//   boolean; a tie goes to number (then text); no such cell at all gives text.
// - Values: numbers as Double, texts as Text, booleans as Boolean. A cell
//   that does not fit its column's type, an error and a missing cell read as
//   Null; an empty text in a text column reads as an empty text.
// - A sheet without any value is one column F1 without rows.
// - A range of more than 2^20 cells (rows times columns) throws
//   WorkbookError (Damaged): no menu comes near it.
struct SheetTable {
    std::vector<std::u16string> columnNames;
    std::vector<std::vector<jet::Value>> rows;
};

// `range` is the named range; nothing for the sheet's used range.
SheetTable readSheetTable(const Sheet& sheet, const std::optional<CellRange>& range,
                          bool headerRow);

}  // namespace workbook
