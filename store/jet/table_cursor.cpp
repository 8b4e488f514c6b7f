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

// The bytes of row `row` of the data page `homePage`, whose slot is `slot`,
// followed to where a moved row's pointer sends it. `overflow` receives the
// page the data lies on when it is not the home page.
ByteView resolveRow(const PageSource& file, const TableDefinition& table, const DataPage& homePage,
                    std::uint16_t row, RowSlot slot, Page& overflow, bool& moved) {
    const std::uint32_t homeNumber = homePage.number();
    moved = slot.overflow;
    if (!slot.overflow)
        return homePage.rowBytes(slot);

    std::uint32_t pointer = homePage.rowBytes(slot).u32(0);
    for (int hop = 0; hop < kMaxOverflowHops; ++hop) {
        file.read(pointerPage(pointer), overflow);
        const DataPage target(overflow, pointerPage(pointer));
        if (target.owner() != table.page) {
            throw Error("row " + std::to_string(row) + " of page " + std::to_string(homeNumber) +
                        " points to page " + std::to_string(pointerPage(pointer)) +
                        " of another table");
        }
        slot = target.slot(pointerRow(pointer));
        if (!slot.overflow)
            return target.rowBytes(slot);
        pointer = target.rowBytes(slot).u32(0);
    }
    throw Error("row " + std::to_string(row) + " of page " + std::to_string(homeNumber) +
                " is moved more than " + std::to_string(kMaxOverflowHops) + " times");
}

void decodeRowOf(const PageSource& file, const TableDefinition& table, RowId id, ByteView bytes,
                 std::vector<Value>& out, const ColumnSelection& columns, TextValues& texts) {
    try {
        decodeRow(file, table, bytes, out, columns, &texts);
    } catch (const Error& error) {
        throw Error("row " + std::to_string(id.row) + " of page " + std::to_string(id.page) +
                    " of table " + toUtf8(table.name) + " is damaged: " + error.what());
    }
}

}  // namespace

TableCursor::TableCursor(const PageSource& file, const TableDefinition& table)
    : file_(file), table_(table), pages_(readUsageMap(file, table.usageMap)) {}

bool TableCursor::loadPage(std::size_t index) {
    if (index < readFrom_ || index >= readFrom_ + readCount_) {
        // The run of pages that follow pages_[index] in the file, within it.
        const std::uint32_t first = pages_[index];
        const std::uint32_t end = file_.pageCount();
        std::size_t count = 1;
        while (count < kPagesReadTogether && index + count < pages_.size() &&
               pages_[index + count] == first + count && first + count < end) {
            ++count;
        }
        readPages_.resize(kPagesReadTogether);
        file_.readPages(first, count, readPages_.data());
        readFrom_ = index;
        readCount_ = count;
    }
    page_ = &readPages_[index - readFrom_];
    const Page& page = *page_;
    if (page[0] != format::kPageData)
        return false;
    const DataPage dataPage(page, pages_[index]);
    if (dataPage.owner() != table_.page)
        return false;
    rowCount_ = dataPage.rowCount();
    nextRow_ = 0;
    return true;
}

bool TableCursor::next() {
    if (!started_) {
        started_ = true;
        pageIndex_ = 0;
        while (pageIndex_ < pages_.size() && !loadPage(pageIndex_))
            ++pageIndex_;
    }
    while (pageIndex_ < pages_.size()) {
        while (nextRow_ < rowCount_) {
            const std::uint16_t row = nextRow_++;
            const DataPage page(*page_, pages_[pageIndex_]);
            const RowSlot slot = page.slot(row);
            // A row flagged deleted without the moved flag is the data of a
            // moved row: it is reached through its pointer, not here.
            if (slot.deleted)
                continue;
            current_ = RowId{pages_[pageIndex_], row};
            currentBytes_ =
                resolveRow(file_, table_, page, row, slot, overflowPage_, currentMoved_);
            return true;
        }
        ++pageIndex_;
        while (pageIndex_ < pages_.size() && !loadPage(pageIndex_))
            ++pageIndex_;
    }
    return false;
}

void TableCursor::values(std::vector<Value>& out, const ColumnSelection& columns) const {
    decodeRowOf(file_, table_, current_, currentBytes_, out, columns, texts_);
}

RowReader::RowReader(const PageSource& file, const TableDefinition& table)
    : file_(file), table_(table) {}

bool RowReader::read(RowId row, std::vector<Value>& out, const ColumnSelection& columns) {
    if (row.page != pageNumber_) {
        if (row.page == 0 || row.page >= file_.pageCount())
            return false;
        file_.read(row.page, page_);
        pageNumber_ = row.page;
        pageIsTable_ =
            page_[0] == format::kPageData && DataPage(page_, row.page).owner() == table_.page;
    }
    if (!pageIsTable_)
        return false;
    const DataPage page(page_, row.page);
    if (row.row >= page.rowCount())
        return false;
    const RowSlot slot = page.slot(row.row);
    if (slot.deleted)
        return false;
    bool moved = false;
    ByteView bytes = resolveRow(file_, table_, page, row.row, slot, overflowPage_, moved);
    decodeRowOf(file_, table_, row, bytes, out, columns, texts_);
    return true;
}

bool readRow(const PageSource& file, const TableDefinition& table, RowId row,
             std::vector<Value>& out) {
    return RowReader(file, table).read(row, out);
}

}  // namespace jet
