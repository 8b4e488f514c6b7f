#include "index_leaf_builder.h"

#include <cstring>
#include <string>

#include "error.h"
#include "format.h"

namespace jet {

namespace x = format::index;

Page buildIndexLeaf(std::uint32_t owner, const std::vector<IndexEntry>& entries) {
    Page page{};
    page[0] = format::kPageIndexLeaf;
    page[1] = 0x01;
    std::memcpy(page.data() + x::kOwnerOffset, &owner, 4);
    std::size_t end = 0;  // of the entries written, in the entry area
    const std::size_t room = format::kPageSize - x::kEntriesOffset;
    for (const IndexEntry& entry : entries) {
        const std::size_t size = entry.key.size() + x::kRowPointerSize;
        if (end + size > room) {
            throw Error("the index entries of the table on page " + std::to_string(owner) +
                        " do not fit one index page");
        }
        std::uint8_t* at = page.data() + x::kEntriesOffset + end;
        std::memcpy(at, entry.key.data(), entry.key.size());
        at += entry.key.size();
        // The row pointer is big-endian so that entries sort as plain bytes.
        at[0] = static_cast<std::uint8_t>(entry.row.page >> 16);
        at[1] = static_cast<std::uint8_t>(entry.row.page >> 8);
        at[2] = static_cast<std::uint8_t>(entry.row.page);
        at[3] = static_cast<std::uint8_t>(entry.row.row);
        end += size;
        page[x::kEntryMaskOffset + end / 8] |= static_cast<std::uint8_t>(1u << (end % 8));
    }
    const auto free = static_cast<std::uint16_t>(room - end);
    std::memcpy(page.data() + x::kFreeSpaceOffset, &free, 2);
    return page;
}

}  // namespace jet
