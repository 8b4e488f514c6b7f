#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace workbook {

// An error value of a cell (#DIV/0!, #N/A, ...), by its BIFF code.
struct CellError {
    std::uint8_t code = 0;
    friend bool operator==(const CellError&, const CellError&) = default;
};

// What a cell holds: a number, a text (possibly empty), a boolean or an
// error. A formula cell holds its last computed result.
using CellValue = std::variant<double, std::u16string, bool, CellError>;

// A worksheet: its cells by row, then by column (both from 0). Rows are as
// long as their last cell; a cell without a value (blank, or never written)
// is empty.
struct Sheet {
    std::u16string name;
    bool visible = true;
    std::vector<std::vector<std::optional<CellValue>>> rows;

    // The cell at (row, column), or nothing.
    const std::optional<CellValue>& cell(std::size_t row, std::size_t column) const;
};

// A rectangle of cells, bounds included.
struct CellRange {
    std::uint32_t firstRow = 0;
    std::uint32_t lastRow = 0;
    std::uint32_t firstColumn = 0;
    std::uint32_t lastColumn = 0;
};

// A workbook-wide name of a rectangle on one worksheet ("Menu" over
// Sayfa1!A1:F121).
struct DefinedName {
    std::u16string name;
    std::size_t sheet = 0;  // index into Workbook::sheets
    CellRange range;
};

// The worksheets of an Excel 97-2003 workbook (BIFF8) in the workbook's
// order, and its global names of cell ranges. Chart sheets, macro sheets,
// built-in names (print areas ...), names local to a sheet and names of
// formulas are left out.
struct Workbook {
    std::vector<Sheet> sheets;
    std::vector<DefinedName> names;
};

// Reads a workbook from the bytes of its file. Throws WorkbookError:
// NotAWorkbook, NewerFormat (.xlsx), OlderFormat (BIFF5 and before),
// PasswordProtected, Damaged.
Workbook readWorkbook(std::vector<std::uint8_t> fileBytes);

// Reads the file, which is opened for reading alone. Throws WorkbookError
// as above, and NotAWorkbook for a file that cannot be read.
Workbook readWorkbookFile(const std::filesystem::path& path);

}  // namespace workbook
