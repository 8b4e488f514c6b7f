#include "store/write_scope.h"

#include "store/data_error.h"
#include "store/recordset.h"

namespace store {

WriteScope::WriteScope(Recordset& recordset) {
    jet::Database* database = recordset.writableDatabase();
    if (database == nullptr)
        return;
    asDataError([&] { scope_.emplace(*database); });
}

void WriteScope::commit() {
    if (!scope_)
        return;
    asDataError([&] { scope_->commit(); });
}

}  // namespace store
