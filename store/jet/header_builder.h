#pragma once

#include "header.h"
#include "page_file.h"

namespace jet {

// The header page (page 0) of a new Jet 4 database: the inverse of
// readHeader. Throws Error for a password longer than 20 characters.
Page buildHeader(const DatabaseHeader& header);

// The creation date's whole days as a 32-bit number: the second mask of the
// password, which readHeader and buildHeader both apply.
std::uint32_t passwordDateMask(const Date& created);

}  // namespace jet
