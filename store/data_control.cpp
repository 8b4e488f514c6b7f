#include "store/data_control.h"

#include <algorithm>
#include <utility>

#include "store/sql/characters.h"

namespace store {
namespace {

// A record source of one word is a table: the control reads it whole. So
// is a name in back quotes or brackets, which may hold any character
// ("`Sayfa1$`", a workbook's sheet).
std::u16string sourceQuery(const std::u16string& source) {
    const bool tableName = !source.empty() && std::all_of(source.begin(), source.end(), [](char16_t c) {
        return sql::isNameChar(c);
    });
    if (tableName) return u"select * from [" + source + u"]";
    const bool quotedName = source.size() > 2 && ((source.front() == u'`' && source.back() == u'`') ||
                                                  (source.front() == u'[' && source.back() == u']'));
    return quotedName ? u"select * from " + source : source;
}

}  // namespace

void DataControl::setConnectionString(std::string text) {
    connectionString = std::move(text);
    if (connection_.isOpen()) connection_.Close();
}

void DataControl::Refresh() {
    if (recordset_.isOpen()) {
        recordset_.leaveRow();
        recordset_.close();
    }
    if (!connection_.isOpen()) connection_.Open(connectionString);
    recordset_.onMoveComplete = [this] {
        if (onMoveComplete) onMoveComplete();
    };
    recordset_.onWillChangeRecord = [this] {
        if (onWillChangeRecord) onWillChangeRecord();
    };
    recordset_.open(sourceQuery(recordSource), connection_, cursorType, lockType);
}

}  // namespace store
