#pragma once

#include <string>

#include "store/data_error.h"

namespace workbook {

// A workbook that cannot be read, or a table it does not hold. A DataError,
// so that a connection passes it on as it is; the kind lets a window say
// what went wrong in its own words, the message says it for a support
// person.
class WorkbookError : public store::DataError {
public:
    enum class Kind {
        NotAWorkbook,       // no compound file at all (a text, a picture, ...)
        NewerFormat,        // an Excel 2007 or later workbook (.xlsx, a ZIP)
        OlderFormat,        // Excel 95 (BIFF5) or older
        PasswordProtected,  // encrypted: cannot be read without its password
        Damaged,            // a compound file or BIFF stream that does not hold together
        TableNotFound,      // no sheet or named range of that name
    };

    WorkbookError(Kind kind, const std::string& message) : DataError(message), kind_(kind) {}

    Kind kind() const { return kind_; }

private:
    Kind kind_;
};

}  // namespace workbook
