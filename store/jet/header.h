#pragma once

#include <cstdint>
#include <string>

#include "value.h"

namespace jet {

class PageFile;

// What the header page (page 0) says about the database.
struct DatabaseHeader {
    std::uint8_t version = 0;         // format::kVersionJet4 for the files we read
    std::uint16_t codePage = 0;       // of the database, for sorting and old text
    std::uint32_t encodingKey = 0;    // non-zero: the pages are RC4-encoded
    std::uint16_t sortOrder = 0;      // collation of new text columns: 0x409 General
    Date created;                     // creation date, also the password's mask
    std::u16string password;          // the database password, empty for none
};

// Reads and unmasks the header page. Refuses, with an error that names what
// was found, anything that is not a Jet 4 database: a Jet 3 file of Access 97,
// an ACE file of Access 2007 and later, a file that is no database at all.
DatabaseHeader readHeader(const PageFile& file);

}  // namespace jet
