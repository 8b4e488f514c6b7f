#include "store/data_control.h"

#include <algorithm>

#include "store/sql/characters.h"

namespace store {
namespace {

// A record source of one word is a table: the control reads it whole.
std::u16string sourceQuery(const std::u16string& source) {
    const bool tableName = !source.empty() && std::all_of(source.begin(), source.end(), [](char16_t c) {
        return sql::isNameChar(c);
    });
    return tableName ? u"select * from [" + source + u"]" : source;
}

}  // namespace

void DataControl::Refresh() {
    if (recordset_.isOpen()) {
        recordset_.leaveRow();
        recordset_.close();
    }
    if (!connection_.isOpen()) connection_.Open(connectionString);
    recordset_.onMoveComplete = [this] {
        if (onMoveComplete) onMoveComplete();
    };
    recordset_.open(sourceQuery(recordSource), connection_, cursorType, lockType);
}

}  // namespace store
