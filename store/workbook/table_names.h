#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "store/workbook/sheet_table.h"
#include "store/workbook/workbook.h"

namespace workbook {

// The tables of a workbook as the Jet provider lists them: each worksheet
// as its name and '$' ("Sayfa1$"), in single quotes when the name holds
// anything but letters (of any script), digits and '_' ("'Kasım Menüsü$'",
// a quote inside doubled); then each global named range by its name
// ("Menu"). In the workbook's order.
std::vector<std::u16string> tableNames(const Workbook& book);

// The table that `name` names, read as readSheetTable reads it: a sheet as
// "Sayfa1$" or "'Sayfa1$'", a named range by its name, both matched as
// sql::sameName matches names. Throws WorkbookError (TableNotFound) for
// any other name.
SheetTable readTable(const Workbook& book, std::u16string_view name, bool headerRow);

}  // namespace workbook
