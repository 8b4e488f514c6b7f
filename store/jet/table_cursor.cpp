#include "table_cursor.h"

#include <string>

#include "data_page.h"
#include "error.h"
#include "row_decoder.h"
#include "text.h"
#include "usage_map.h"

namespace jet {
namespace {

// A moved row's pointer may lead to a row moved again; Jet never chains
// more than once, so a longer chain is damage.
constexpr int kMaxOverflowHops = 4;

}  // namespace

TableCursor::TableCursor(const PageSource& file, const TableDefinition& table)
    : file_(file), table_(table), pages_(readUsageMap(file, table.usageMap)) {}

bool TableCursor::loadPage(std::size_t index) {
    file_.read(pages_[index], page_);
    if (page_[0] != format::kPageData) return false;
    const DataPage dataPage(page_, pages_[index]);
    if (dataPage.owner() != table_.page) return false;
    rowCount_ = dataPage.rowCount();
    nextRow_ = 0;
    return true;
}

ByteView TableCursor::resolve(std::uint16_t row) {
    const DataPage home(page_, pages_[pageIndex_]);
    RowSlot slot = home.slot(row);
    currentMoved_ = slot.overflow;
    if (!slot.overflow) return home.rowBytes(slot);

    std::uint32_t pointer = home.rowBytes(slot).u32(0);
    for (int hop = 0; hop < kMaxOverflowHops; ++hop) {
        file_.read(pointerPage(pointer), overflowPage_);
        const DataPage target(overflowPage_, pointerPage(pointer));
        if (target.owner() != table_.page) {
            throw Error("row " + std::to_string(row) + " of page " +
                        std::to_string(pages_[pageIndex_]) + " points to page " +
                        std::to_string(pointerPage(pointer)) + " of another table");
        }
        slot = target.slot(pointerRow(pointer));
        if (!slot.overflow) return target.rowBytes(slot);
        pointer = target.rowBytes(slot).u32(0);
    }
    throw Error("row " + std::to_string(row) + " of page " + std::to_string(pages_[pageIndex_]) +
                " is moved more than " + std::to_string(kMaxOverflowHops) + " times");
}

bool TableCursor::next() {
    if (!started_) {
        started_ = true;
        pageIndex_ = 0;
        while (pageIndex_ < pages_.size() && !loadPage(pageIndex_)) ++pageIndex_;
    }
    while (pageIndex_ < pages_.size()) {
        while (nextRow_ < rowCount_) {
            const std::uint16_t row = nextRow_++;
            const RowSlot slot = DataPage(page_, pages_[pageIndex_]).slot(row);
            // A row flagged deleted without the moved flag is the data of a
            // moved row: it is reached through its pointer, not here.
            if (slot.deleted) continue;
            current_ = RowId{pages_[pageIndex_], row};
            currentBytes_ = resolve(row);
            return true;
        }
        ++pageIndex_;
        while (pageIndex_ < pages_.size() && !loadPage(pageIndex_)) ++pageIndex_;
    }
    return false;
}

void TableCursor::values(std::vector<Value>& out) const {
    try {
        decodeRow(file_, table_, currentBytes_, out);
    } catch (const Error& error) {
        throw Error("row " + std::to_string(current_.row) + " of page " +
                    std::to_string(current_.page) + " of table " + toUtf8(table_.name) +
                    " is damaged: " + error.what());
    }
}

}  // namespace jet
