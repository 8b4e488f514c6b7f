#pragma once

#include "bytes.h"
#include "value.h"

namespace jet {

class PageSource;

// Reads a memo or OLE value whole from its 12-byte reference (and, for a
// value stored inline, the bytes that follow it in the row). A value is kept
// inline, in one row of a long value page, or in a chain of such rows each
// starting with the pointer to the next. Throws Error for a reference or a
// chain that is damaged (bad pointer, loop, wrong length).
Bytes readLongValue(const PageSource& file, ByteView field);

}  // namespace jet
