#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "store/jet/database.h"
#include "store/sql/executor.h"

namespace store {

class ConnectionString;

// What a connection stands on: a database file now, a workbook whose
// sheets are tables ("Sayfa1$") later. A source lists its tables and runs
// statements of the system's SQL on them.
class Source {
public:
    struct Table {
        std::u16string name;
        bool system = false;  // a table of the source's own bookkeeping
    };

    virtual ~Source() = default;

    // Every table, in the source's own order.
    virtual std::vector<Table> tables() const = 0;

    // Runs one statement. Throws jet::Error (sql::Error included) for what
    // is not understood or refused.
    virtual sql::ExecuteResult execute(std::u16string_view statement) = 0;
};

// A Jet 4 database file.
class JetSource : public Source {
public:
    // Opens the file for reading and writing, or for reading alone when
    // `readOnly` or when the file may not be written. Throws DataError for a
    // file that is missing or no Jet 4 database, and for a password that is
    // not the database's own (an empty one included; a password given for
    // a database without one is let through, as Jet does).
    JetSource(const std::string& path, std::u16string_view password, bool readOnly);

    std::vector<Table> tables() const override;
    sql::ExecuteResult execute(std::u16string_view statement) override;

    jet::Database& database() { return *database_; }

private:
    std::unique_ptr<jet::Database> database_;
};

}  // namespace store
