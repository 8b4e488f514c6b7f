#include "header.h"

#include <cstring>
#include <string_view>

#include "bytes.h"
#include "error.h"
#include "format.h"
#include "header_builder.h"
#include "page_file.h"
#include "rc4.h"

namespace jet {
namespace {

std::string describeVersion(std::uint8_t version) {
    switch (version) {
        case format::kVersionJet3:
            return "a Jet 3 database (Access 97)";
        case 0x02:
            return "an ACE database (Access 2007, .accdb)";
        case 0x03:
            return "an ACE database (Access 2010, .accdb)";
        case 0x04:
            return "an ACE database (Access 2013, .accdb)";
        case 0x05:
            return "an ACE database (Access 2016, .accdb)";
        case 0x06:
            return "an ACE database (Access 2019, .accdb)";
        default:
            return "a database of unknown version " + std::to_string(version);
    }
}

}  // namespace

DatabaseHeader readHeader(const PageFile& file) {
    namespace h = format::header;
    Page page{};
    const std::size_t got = file.readPrefix(page.data(), page.size());
    const std::string_view signature(reinterpret_cast<const char*>(page.data()), 4);
    const std::string_view jetName(reinterpret_cast<const char*>(page.data() + h::kFormatNameOffset),
                                   15);
    const bool isJet = jetName == "Standard Jet DB";
    const bool isAce = jetName == "Standard ACE DB";
    if (got < 0x20 || signature != std::string_view("\x00\x01\x00\x00", 4) || !(isJet || isAce)) {
        throw Error(file.path() + " is not an Access database: it does not begin with the " +
                    "signature of an Access file" +
                    (got == 0 ? " (the file is empty)" : ""));
    }
    const std::uint8_t version = page[h::kVersionOffset];
    if (version != format::kVersionJet4 || isAce) {
        throw Error(file.path() + " is " + describeVersion(version) +
                    "; only Access 2000 and 2002-2003 databases (Jet 4) can be opened");
    }
    if (got < page.size()) {
        throw Error(file.path() + " is cut short: its header page has only " +
                    std::to_string(got) + " of " + std::to_string(page.size()) + " bytes");
    }

    rc4Apply(h::kMaskKey, page.data() + h::kMaskedOffset, h::kMaskedLength);
    const ByteView bytes(page.data(), page.size());

    DatabaseHeader header;
    header.version = version;
    header.codePage = bytes.u16(h::kCodePageOffset);
    header.encodingKey = bytes.u32(h::kDatabaseKeyOffset);
    header.sortOrder = bytes.u16(h::kSortOrderOffset);
    header.created = Date{bytes.f64(h::kCreationDateOffset)};

    // Jet 4 masks the password a second time with the creation date's whole
    // days, taken as a 32-bit number.
    const std::uint32_t dateMask = passwordDateMask(header.created);
    std::u16string password;
    for (std::size_t i = 0; i < h::kPasswordLength; i += 2) {
        const auto maskByte = [&](std::size_t k) {
            return static_cast<std::uint8_t>(dateMask >> (8 * (k % 4)));
        };
        const std::uint8_t lowByte = page[h::kPasswordOffset + i] ^ maskByte(i);
        const std::uint8_t highByte = page[h::kPasswordOffset + i + 1] ^ maskByte(i + 1);
        password.push_back(static_cast<char16_t>(lowByte | (highByte << 8)));
    }
    while (!password.empty() && password.back() == u'\0') password.pop_back();
    header.password = password;
    return header;
}

}  // namespace jet
