#include "store/write_scope.h"

#include "store/data_error.h"
#include "store/recordset.h"

namespace store {

WriteScope::WriteScope(Recordset& recordset) {
    jet::Database* database = recordset.writableDatabase();
    if (database == nullptr)
        return;
    try {
        scope_.emplace(*database);
    } catch (const DataError&) {
        throw;
    } catch (const jet::Error& error) {
        throw DataError(error.what());
    }
}

void WriteScope::commit() {
    if (!scope_)
        return;
    try {
        scope_->commit();
    } catch (const DataError&) {
        throw;
    } catch (const jet::Error& error) {
        throw DataError(error.what());
    }
}

}  // namespace store
