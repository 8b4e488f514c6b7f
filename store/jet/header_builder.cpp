#include "header_builder.h"

#include <cstring>

#include "error.h"
#include "format.h"
#include "rc4.h"

namespace jet {

std::uint32_t passwordDateMask(const Date& created) {
    const double days = created.oleDays;
    return (days > -2147483648.0 && days < 2147483648.0)
               ? static_cast<std::uint32_t>(static_cast<std::int32_t>(days))
               : 0;
}

Page buildHeader(const DatabaseHeader& header) {
    namespace h = format::header;
    if (header.password.size() * 2 > h::kPasswordLength) {
        throw Error("a database password has at most 20 characters, not " +
                    std::to_string(header.password.size()));
    }
    Page page{};
    page[h::kMagicOffset + 1] = 0x01;
    std::memcpy(page.data() + h::kFormatNameOffset, "Standard Jet DB", 15);
    page[h::kVersionOffset] = header.version;
    std::memcpy(page.data() + h::kCodePageOffset, &header.codePage, 2);
    std::memcpy(page.data() + h::kDatabaseKeyOffset, &header.encodingKey, 4);
    std::memcpy(page.data() + h::kSortOrderOffset, &header.sortOrder, 2);
    std::memcpy(page.data() + h::kCreationDateOffset, &header.created.oleDays, 8);
    // The password, unused characters zero, masked by the date's days; the
    // masked block then hides it a second time.
    const std::uint32_t mask = passwordDateMask(header.created);
    for (std::size_t i = 0; i < h::kPasswordLength; ++i) {
        const char16_t c = i / 2 < header.password.size() ? header.password[i / 2] : u'\0';
        const auto plain = static_cast<std::uint8_t>(i % 2 == 0 ? c : c >> 8);
        page[h::kPasswordOffset + i] = plain ^ static_cast<std::uint8_t>(mask >> (8 * (i % 4)));
    }
    rc4Apply(h::kMaskKey, page.data() + h::kMaskedOffset, h::kMaskedLength);
    return page;
}

}  // namespace jet
