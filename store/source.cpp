#include "source.h"

#include "store/data_error.h"
#include "store/jet/os_file.h"

namespace store {

JetSource::JetSource(const std::string& path, std::u16string_view password, bool readOnly) {
    // Read alone first: the password is checked before the file is opened
    // for writing, which may roll back a crashed writer's statement.
    try {
        database_ = std::make_unique<jet::Database>(path, jet::PageFile::Mode::ReadOnly);
        const std::u16string& expected = database_->header().password;
        if (!expected.empty() && expected != password) {
            throw DataError("not a valid password for the database " + path);
        }
        if (!readOnly && jet::os::isWritable(path)) {
            database_.reset();
            database_ = std::make_unique<jet::Database>(path, jet::PageFile::Mode::ReadWrite);
        }
        // A catalog that does not read means a damaged file: say so now
        // rather than at the first query.
        database_->catalog();
    } catch (const DataError&) {
        throw;
    } catch (const jet::Error& error) {
        throw DataError("cannot open the database " + path + ": " + error.what());
    }
}

std::vector<Source::Table> JetSource::tables() const {
    std::vector<Table> tables;
    for (const jet::CatalogEntry& entry : database_->catalog()) {
        if (entry.isTable()) {
            tables.push_back({entry.name, entry.isSystemTable()});
        }
    }
    return tables;
}

sql::ExecuteResult JetSource::execute(std::u16string_view statement) {
    return sql::execute(*database_, statement);
}

}  // namespace store
