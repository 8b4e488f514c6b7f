#pragma once

#include <QString>

#include "store/jet/table_definition.h"
#include "store/jet/value.h"

namespace kit {

// What a bound box or a grid cell shows for a value, as on a Turkish
// system: Null as nothing, numbers plain with a decimal comma, dates day
// first ("05.11.2025", "05.11.2025 12:30:00", a time alone as "12:30:00").
QString displayText(const jet::Value& value);

// What a user's text in a bound box or grid cell becomes in a column of the
// type. An empty text is Null, except in a text column. Throws DataError for
// a text that is no value of the type ("12a" for a number).
jet::Value valueFromText(const QString& text, jet::ColumnType type);

}  // namespace kit
