#pragma once

#include <string_view>

#include "statement.h"

namespace sql {

// Parses one statement of the SQL the system issues: SELECT [DISTINCT] with
// columns, `*` and aggregates over one table, WHERE, GROUP BY, HAVING and
// ORDER BY; DELETE [*] FROM with WHERE; CREATE TABLE. Keywords in any case,
// blanks and line breaks anywhere between tokens ("select*" included), text
// in single quotes with '' for a quote, dates as #month/day/year#, names in
// [ ] or in back quotes holding any character ("`'Kasım Menüsü$'`"). Throws
// sql::Error naming the position and the word not understood.
Statement parse(std::u16string_view text);

}  // namespace sql
