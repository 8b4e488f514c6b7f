#pragma once

#include "store/jet/table_definition.h"
#include "store/jet/value.h"

namespace store {

// The value a field of `column` holds once `value` is assigned to it: the
// value converted to the column's type as the Jet provider converts it on a
// Turkish Windows (see number_text.h and date_text.h for text), so that what
// the record set keeps is what the file will hold.
// - Null stays Null.
// - Byte, Integer, Long Integer: numbers rounded, halves to even (2,5 is 2,
//   3,5 is 4); True is -1; a date is its day count, rounded alike.
// - Single, Double, Currency (four decimals, halves to even), Decimal (the
//   column's scale and precision): from numbers and number texts, exactly
//   as far as the type holds them.
// - Date/Time: from a text read day first, from a number its day count.
// - Text, Memo: numbers as the runtime's CStr writes them ("1,5", "3"),
//   True and False as "True" and "False", dates in the short form
//   "05.11.2026"; a Text column takes no more characters than its length.
// - Yes/No: a number other than 0 is True; also the texts "True" and
//   "False" in any case, and number texts.
// - Binary, OLE Object, Replication ID: bytes alone, Binary up to its
//   length, a Replication ID of 16.
// Throws DataError with the provider's words and number for a refused value
// (DataError::kMultipleStepText, kValueRefused): a value of another kind that
// cannot become one of the column's type, or one out of its range.
jet::Value convertForColumn(const jet::Value& value, const jet::Column& column);

}  // namespace store
