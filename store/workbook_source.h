#pragma once

#include <filesystem>
#include <string_view>
#include <vector>

#include "store/source.h"
#include "store/workbook/workbook.h"

namespace store {

// An Excel 97-2003 workbook (.xls) as the Excel drivers show it: each sheet
// a table "Sayfa1$", each global named range a table (see
// workbook::tableNames and workbook::readSheetTable). Read once, when
// opened; the file is never written.
class WorkbookSource : public Source {
public:
    // Throws workbook::WorkbookError (a DataError) for a file that is no
    // readable workbook. `headerRow`: the first row names the columns.
    WorkbookSource(const std::filesystem::path& path, bool headerRow);

    // The tables in the workbook's order; none is a system table.
    std::vector<Table> tables() const override;

    // SELECT * or SELECT columns (with aliases) FROM one table; record sets
    // on it are read-only (no base table). WHERE, ORDER BY, GROUP BY,
    // DISTINCT and aggregates throw sql::Error, as does any other statement;
    // a table that is not there throws WorkbookError (TableNotFound).
    sql::ExecuteResult execute(std::u16string_view statement) override;

private:
    workbook::Workbook book_;
    bool headerRow_;
};

}  // namespace store
