#include "usage_map_writer.h"

#include <cstring>
#include <string>
#include <vector>

#include "data_page.h"
#include "error.h"
#include "format.h"
#include "write_statement.h"

namespace jet {
namespace {

namespace u = format::usage;

constexpr std::uint32_t kGlobalMapPointer = format::usage::kFreePagesMap;

// The bytes of the map row, inside the statement's copy of its page.
struct MapRow {
    std::uint8_t* bytes;
    std::size_t size;
};

MapRow mapRow(WriteStatement& statement, std::uint32_t pointer) {
    Page& page = statement.change(pointerPage(pointer));
    const DataPage dataPage(page, pointerPage(pointer));
    const RowSlot slot = dataPage.slot(pointerRow(pointer));
    if (slot.end - slot.start < 5) {
        throw Error("the usage map in row " + std::to_string(pointerRow(pointer)) + " of page " +
                    std::to_string(pointerPage(pointer)) + " is too short");
    }
    return MapRow{page.data() + slot.start, static_cast<std::size_t>(slot.end - slot.start)};
}

std::uint32_t u32At(const std::uint8_t* bytes) {
    std::uint32_t value;
    std::memcpy(&value, bytes, 4);
    return value;
}

void setBit(std::uint8_t* bitmap, std::uint64_t bit, bool on) {
    const auto mask = static_cast<std::uint8_t>(1u << (bit % 8));
    if (on) {
        bitmap[bit / 8] |= mask;
    } else {
        bitmap[bit / 8] &= static_cast<std::uint8_t>(~mask);
    }
}

bool getBit(const std::uint8_t* bitmap, std::uint64_t bit) {
    return (bitmap[bit / 8] & (1u << (bit % 8))) != 0;
}

std::uint32_t newMapPage(WriteStatement& statement) {
    const std::uint32_t number = allocatePage(statement);
    Page& page = statement.change(number);
    page[0] = format::kPageUsageMap;
    page[1] = 0x01;
    return number;
}

// Sets a bit of a map by reference, making its usage map page when missing.
void setReferenceBit(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page,
                     bool on) {
    const std::size_t slot = page / u::kPagesPerMapPage;
    {
        const MapRow row = mapRow(statement, pointer);
        if (1 + 4 * (slot + 1) > row.size) {
            throw Error("page " + std::to_string(page) + " lies beyond the reach of the usage map " +
                        "in row " + std::to_string(pointerRow(pointer)) + " of page " +
                        std::to_string(pointerPage(pointer)));
        }
        if (u32At(row.bytes + 1 + 4 * slot) == 0 && !on) return;
    }
    std::uint32_t bitmapPage = u32At(mapRow(statement, pointer).bytes + 1 + 4 * slot);
    if (bitmapPage == 0) {
        bitmapPage = newMapPage(statement);
        // Taking a page may have changed the statement's pages; look the row up again.
        std::memcpy(mapRow(statement, pointer).bytes + 1 + 4 * slot, &bitmapPage, 4);
    }
    Page& bitmap = statement.change(bitmapPage);
    if (bitmap[0] != format::kPageUsageMap) {
        throw Error("page " + std::to_string(bitmapPage) + " should be a usage map page");
    }
    setBit(bitmap.data() + u::kMapPageBitmapOffset, page % u::kPagesPerMapPage, on);
}

// Turns an inline map into a map by reference holding the same pages.
void convertToReference(WriteStatement& statement, std::uint32_t pointer) {
    std::vector<std::uint32_t> pages;
    {
        const MapRow row = mapRow(statement, pointer);
        const std::uint32_t start = u32At(row.bytes + 1);
        for (std::size_t bit = 0; bit < (row.size - 5) * 8; ++bit) {
            if (getBit(row.bytes + 5, bit)) pages.push_back(static_cast<std::uint32_t>(start + bit));
        }
        std::memset(row.bytes, 0, row.size);
        row.bytes[0] = u::kReferenceMap;
    }
    for (const std::uint32_t page : pages) setReferenceBit(statement, pointer, page, true);
}

void changeUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page, bool on) {
    const MapRow row = mapRow(statement, pointer);
    if (row.bytes[0] == u::kInlineMap) {
        const std::uint32_t start = u32At(row.bytes + 1);
        const std::uint64_t bits = (row.size - 5) * 8;
        if (page >= start && page - start < bits) {
            setBit(row.bytes + 5, page - start, on);
            return;
        }
        if (!on) return;  // a page outside the window is not in the map
        convertToReference(statement, pointer);
    } else if (row.bytes[0] != u::kReferenceMap) {
        throw Error("the usage map in row " + std::to_string(pointerRow(pointer)) + " of page " +
                    std::to_string(pointerPage(pointer)) + " is of unknown kind");
    }
    setReferenceBit(statement, pointer, page, on);
}

}  // namespace

void addToUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page) {
    changeUsageMap(statement, pointer, page, true);
}

void removeFromUsageMap(WriteStatement& statement, std::uint32_t pointer, std::uint32_t page) {
    changeUsageMap(statement, pointer, page, false);
}

std::uint32_t allocatePage(WriteStatement& statement) {
    const std::uint32_t page = statement.append();
    const MapRow row = mapRow(statement, kGlobalMapPointer);
    if (row.bytes[0] != u::kInlineMap) {
        // A global map by reference: clear the page's bit where a map page covers it.
        const std::size_t slot = page / u::kPagesPerMapPage;
        if (1 + 4 * (slot + 1) <= row.size && u32At(row.bytes + 1 + 4 * slot) != 0) {
            setReferenceBit(statement, kGlobalMapPointer, page, false);
        }
        return page;
    }
    std::uint32_t start = u32At(row.bytes + 1);
    const std::uint64_t bits = (row.size - 5) * 8;
    if (page >= start + bits) {
        // Slide the window so that it ends past the new page; pages that fall
        // off its start count as used, pages past the end of the file as free.
        const std::uint32_t newStart = static_cast<std::uint32_t>(page - page % 8);
        std::vector<std::uint8_t> bitmap((row.size - 5), 0);
        for (std::uint64_t bit = 0; bit < bits; ++bit) {
            const std::uint64_t number = newStart + bit;
            const bool wasFree = number >= start && number - start < bits
                                     ? getBit(row.bytes + 5, number - start)
                                     : number > page;
            setBit(bitmap.data(), bit, wasFree);
        }
        std::memcpy(row.bytes + 1, &newStart, 4);
        std::memcpy(row.bytes + 5, bitmap.data(), bitmap.size());
        start = newStart;
    }
    if (page >= start) setBit(row.bytes + 5, page - start, false);
    return page;
}

void releasePage(WriteStatement& statement, std::uint32_t page) {
    const MapRow row = mapRow(statement, kGlobalMapPointer);
    if (row.bytes[0] == u::kInlineMap) {
        const std::uint32_t start = u32At(row.bytes + 1);
        if (page >= start && page - start < (row.size - 5) * 8)
            setBit(row.bytes + 5, page - start, true);
        return;
    }
    const std::size_t slot = page / u::kPagesPerMapPage;
    if (1 + 4 * (slot + 1) <= row.size && u32At(row.bytes + 1 + 4 * slot) != 0) {
        setReferenceBit(statement, kGlobalMapPointer, page, true);
    }
}

}  // namespace jet
