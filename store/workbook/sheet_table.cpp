#include "sheet_table.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "store/jet/text.h"
#include "store/workbook/workbook_error.h"

namespace workbook {
namespace {

constexpr std::size_t kScanRows = 8;
// A menu is some hundreds of cells; a sheet whose used range reaches far
// beyond any menu (a stray cell at IV65536) is refused rather than spread
// into millions of values.
constexpr std::uint64_t kCellLimit = std::uint64_t{1} << 20;

enum class ColumnKind { Number, Text, Boolean };

// The used range of the sheet, or nothing when no cell holds a value.
std::optional<CellRange> usedRange(const Sheet& sheet) {
    std::optional<CellRange> range;
    for (std::uint32_t row = 0; row < sheet.rows.size(); ++row) {
        const auto& cells = sheet.rows[row];
        for (std::uint32_t column = 0; column < cells.size(); ++column) {
            if (!cells[column].has_value())
                continue;
            if (!range) {
                range = CellRange{row, row, column, column};
            }
            range->lastRow = row;
            range->firstColumn = std::min(range->firstColumn, column);
            range->lastColumn = std::max(range->lastColumn, column);
        }
    }
    return range;
}

std::u16string numberText(double number) {
    char buffer[32];
    if (std::isfinite(number) && number == std::trunc(number) && std::fabs(number) < 1e15) {
        std::snprintf(buffer, sizeof buffer, "%.0f", number);
    } else {
        std::snprintf(buffer, sizeof buffer, "%.15g", number);
    }
    return {buffer, buffer + std::char_traits<char>::length(buffer)};
}

std::u16string positionalName(std::size_t position) {
    std::u16string name = u"F";
    for (const char c : std::to_string(position + 1))
        name.push_back(static_cast<char16_t>(c));
    return name;
}

std::u16string headerName(const std::optional<CellValue>& cell, std::size_t position) {
    if (cell) {
        if (const auto* text = std::get_if<std::u16string>(&*cell); text && !text->empty()) {
            return *text;
        }
        if (const auto* number = std::get_if<double>(&*cell))
            return numberText(*number);
        if (const auto* boolean = std::get_if<bool>(&*cell))
            return *boolean ? u"TRUE" : u"FALSE";
    }
    return positionalName(position);
}

ColumnKind decideKind(const Sheet& sheet, std::uint32_t firstDataRow, std::uint32_t lastRow,
                      std::uint32_t column) {
    std::array<std::size_t, 3> counts{};  // by ColumnKind
    for (std::uint32_t row = firstDataRow; row <= lastRow && row - firstDataRow < kScanRows;
         ++row) {
        const std::optional<CellValue>& cell = sheet.cell(row, column);
        if (!cell)
            continue;
        if (std::holds_alternative<double>(*cell)) {
            ++counts[static_cast<std::size_t>(ColumnKind::Number)];
        } else if (const auto* text = std::get_if<std::u16string>(&*cell)) {
            if (!text->empty())
                ++counts[static_cast<std::size_t>(ColumnKind::Text)];
        } else if (std::holds_alternative<bool>(*cell)) {
            ++counts[static_cast<std::size_t>(ColumnKind::Boolean)];
        }
    }
    const std::size_t number = counts[0], text = counts[1], boolean = counts[2];
    if (number == 0 && text == 0 && boolean == 0)
        return ColumnKind::Text;
    if (number >= text && number >= boolean)
        return ColumnKind::Number;
    return text >= boolean ? ColumnKind::Text : ColumnKind::Boolean;
}

jet::Value valueOf(const std::optional<CellValue>& cell, ColumnKind kind) {
    if (!cell)
        return {};
    switch (kind) {
        case ColumnKind::Number:
            if (const auto* number = std::get_if<double>(&*cell))
                return jet::Value::real(*number);
            break;
        case ColumnKind::Text:
            if (const auto* text = std::get_if<std::u16string>(&*cell)) {
                return jet::Value::text(*text);
            }
            break;
        case ColumnKind::Boolean:
            if (const auto* boolean = std::get_if<bool>(&*cell)) {
                return jet::Value::boolean(*boolean);
            }
            break;
    }
    return {};
}

}  // namespace

SheetTable readSheetTable(const Sheet& sheet, const std::optional<CellRange>& range,
                          bool headerRow) {
    SheetTable table;
    std::optional<CellRange> area = range ? range : usedRange(sheet);
    if (area) {
        // Rows past the last one holding a value are no data.
        std::uint32_t last = area->firstRow;
        const std::uint32_t end =
            std::min<std::uint32_t>(area->lastRow, static_cast<std::uint32_t>(sheet.rows.size()));
        for (std::uint32_t row = area->firstRow; row <= end && row < sheet.rows.size(); ++row) {
            for (std::uint32_t column = area->firstColumn; column <= area->lastColumn; ++column) {
                if (sheet.cell(row, column).has_value())
                    last = row;
            }
        }
        area->lastRow = last;
    }
    if (!area) {
        table.columnNames.push_back(positionalName(0));
        return table;
    }
    const std::uint32_t columns = area->lastColumn - area->firstColumn + 1;
    const std::uint64_t cells = std::uint64_t{columns} * (area->lastRow - area->firstRow + 1);
    if (cells > kCellLimit) {
        throw WorkbookError(WorkbookError::Kind::Damaged,
                            "the sheet " + jet::toUtf8(sheet.name) + " spans " +
                                std::to_string(cells) + " cells, more than the " +
                                std::to_string(kCellLimit) + " a table of a workbook may hold");
    }
    const std::uint32_t firstDataRow = headerRow ? area->firstRow + 1 : area->firstRow;
    std::vector<ColumnKind> kinds;
    for (std::uint32_t c = 0; c < columns; ++c) {
        const std::uint32_t column = area->firstColumn + c;
        table.columnNames.push_back(headerRow ? headerName(sheet.cell(area->firstRow, column), c)
                                              : positionalName(c));
        kinds.push_back(decideKind(sheet, firstDataRow, area->lastRow, column));
    }
    for (std::uint32_t row = firstDataRow; row <= area->lastRow; ++row) {
        std::vector<jet::Value>& values = table.rows.emplace_back();
        values.reserve(columns);
        for (std::uint32_t c = 0; c < columns; ++c) {
            values.push_back(valueOf(sheet.cell(row, area->firstColumn + c), kinds[c]));
        }
    }
    return table;
}

}  // namespace workbook
