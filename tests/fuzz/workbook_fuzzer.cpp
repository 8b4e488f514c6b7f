// libFuzzer target: any bytes, taken as a workbook, must give an error or
// tables, never a crash, a hang or a read outside a buffer.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "store/jet/error.h"
#include "store/workbook/table_names.h"
#include "store/workbook/workbook.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const workbook::Workbook book = workbook::readWorkbook({data, data + size});
        for (const std::u16string& name : workbook::tableNames(book)) {
            workbook::readTable(book, name, true);
            workbook::readTable(book, name, false);
        }
    } catch (const jet::Error&) {
    }
    return 0;
}
