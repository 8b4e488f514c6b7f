#include "long_value.h"

#include <algorithm>
#include <set>
#include <string>

#include "data_page.h"
#include "error.h"
#include "format.h"
#include "page_file.h"

namespace jet {
namespace {

namespace l = format::lval;

std::string where(std::uint32_t pointer) {
    return "row " + std::to_string(pointerRow(pointer)) + " of page " +
           std::to_string(pointerPage(pointer));
}

// The bytes of the row a long value pointer names; the page stays in `page`.
ByteView longValueRow(const PageSource& file, std::uint32_t pointer, Page& page) {
    file.read(pointerPage(pointer), page);
    const DataPage dataPage(page, pointerPage(pointer));
    return dataPage.rowBytes(dataPage.slot(pointerRow(pointer)));
}

}  // namespace

Bytes readLongValue(const PageSource& file, ByteView field) {
    if (field.size() < l::kReferenceSize) {
        throw Error("a memo or OLE reference of " + std::to_string(field.size()) +
                    " bytes is shorter than 12 bytes");
    }
    const std::uint32_t header = field.u32(0);
    const std::size_t length = header & l::kLengthMask;
    const std::uint32_t pointer = field.u32(4);

    if ((header & l::kInline) != 0) {
        const ByteView data = field.from(l::kReferenceSize);
        if (data.size() < length) {
            throw Error("an inline memo or OLE value claims " + std::to_string(length) +
                        " bytes but holds " + std::to_string(data.size()));
        }
        return Bytes(data.data(), data.data() + length);
    }

    Page page{};
    if ((header & l::kSinglePage) != 0) {
        const ByteView data = longValueRow(file, pointer, page);
        if (data.size() < length) {
            throw Error("the memo or OLE value in " + where(pointer) + " claims " +
                        std::to_string(length) + " bytes but holds " +
                        std::to_string(data.size()));
        }
        return Bytes(data.data(), data.data() + length);
    }

    // A chain of rows, each beginning with the pointer to the next.
    Bytes value;
    // The claimed length is not trusted for the reservation: at most what the file holds.
    value.reserve(std::min<std::uint64_t>(length, std::uint64_t{file.pageCount()} * format::kPageSize));
    std::set<std::uint32_t> seen;
    std::uint32_t next = pointer;
    while (value.size() < length) {
        if (next == 0) {
            throw Error("a memo or OLE value of " + std::to_string(length) +
                        " bytes ends after " + std::to_string(value.size()) + " bytes");
        }
        if (!seen.insert(next).second) {
            throw Error("the chain of a memo or OLE value loops back to " + where(next));
        }
        const ByteView row = longValueRow(file, next, page);
        if (row.size() < 4) {
            throw Error("the memo or OLE part in " + where(next) + " is too short");
        }
        const ByteView data = row.from(4);
        const std::size_t take = std::min(data.size(), length - value.size());
        value.insert(value.end(), data.data(), data.data() + take);
        next = row.u32(0);
    }
    return value;
}

}  // namespace jet
