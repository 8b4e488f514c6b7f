#include "write_statement.h"

#include <string>

#include "error.h"
#include "journal.h"

namespace jet {

WriteStatement::WriteStatement(PageFile& file)
    : file_(file), lock_(file), originalPageCount_(0), pageCount_(0) {
    RollbackJournal::rollBack(file_);
    originalPageCount_ = file_.pageCount();
    pageCount_ = originalPageCount_;
}

const Page& WriteStatement::cached(std::uint32_t number) const {
    auto found = pages_.find(number);
    if (found != pages_.end()) return found->second;
    if (number >= pageCount_) {
        throw Error("page " + std::to_string(number) + " lies beyond the end of " + file_.path() +
                    " (" + std::to_string(pageCount_) + " pages): the file is damaged");
    }
    Page& page = pages_[number];
    file_.read(number, page);
    return page;
}

void WriteStatement::read(std::uint32_t number, Page& page) const { page = cached(number); }

Page& WriteStatement::change(std::uint32_t number) {
    Page& page = const_cast<Page&>(cached(number));
    if (number < originalPageCount_ && changed_.count(number) == 0) {
        originals_.emplace(number, page);
    }
    changed_.insert(number);
    return page;
}

std::uint32_t WriteStatement::append() {
    const std::uint32_t number = pageCount_++;
    pages_[number].fill(0);
    changed_.insert(number);
    return number;
}

void WriteStatement::commit() {
    if (changed_.empty()) return;
    RollbackJournal::write(file_.path(), originalPageCount_, originals_);
    for (const std::uint32_t number : changed_) file_.write(number, pages_.at(number));
    file_.sync();
    RollbackJournal::remove(file_.path());
    // A statement commits once; what it changed is now the file's.
    originals_.clear();
    changed_.clear();
    originalPageCount_ = pageCount_;
}

}  // namespace jet
