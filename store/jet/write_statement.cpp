#include "write_statement.h"

#include <string>

#include "error.h"
#include "journal.h"

namespace jet {

WriteStatement::WriteStatement(PageFile& file, LockFile* locks)
    : file_(file),
      locks_(locks),
      lock_(locks != nullptr ? locks->holdForWriting() : LockFile::Hold()),
      originalPageCount_(0),
      pageCount_(0) {
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
    // Page 0 holds the header and, in Jet 3 at least, the bytes in which Jet
    // marks its users' commits under way (see jet_locking.md): no write of
    // ours touches it.
    if (number == 0)
        throw Error("a write to " + file_.path() + " would change its header page");
    Page& page = const_cast<Page&>(cached(number));
    if (savepoint_ && number < savepoint_->pageCount && savepoint_->before.count(number) == 0) {
        savepoint_->before.emplace(number, page);
        if (changed_.count(number) == 0)
            savepoint_->unchangedBefore.insert(number);
    }
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
    try {
        for (const std::uint32_t number : changed_) file_.write(number, pages_.at(number));
        file_.sync();
    } catch (const Error&) {
        // Put back what was written before others read it; what this cannot
        // undo, the journal left behind undoes at the next write.
        try {
            RollbackJournal::rollBack(file_);
        } catch (const Error&) {
        }
        throw;
    }
    RollbackJournal::remove(file_.path());
    if (locks_ != nullptr)
        locks_->raiseCommitCount();
    // A statement commits once; what it changed is now the file's.
    originals_.clear();
    changed_.clear();
    originalPageCount_ = pageCount_;
    savepoint_.reset();
}

void WriteStatement::setSavepoint() { savepoint_ = Savepoint{pageCount_, {}, {}}; }

void WriteStatement::releaseSavepoint() { savepoint_.reset(); }

void WriteStatement::rollBackToSavepoint() {
    if (!savepoint_)
        return;
    for (auto& [number, page] : savepoint_->before) {
        pages_[number] = page;
        if (savepoint_->unchangedBefore.count(number) != 0) {
            changed_.erase(number);
            originals_.erase(number);
        }
    }
    while (pageCount_ > savepoint_->pageCount) {
        --pageCount_;
        pages_.erase(pageCount_);
        changed_.erase(pageCount_);
    }
    savepoint_.reset();
}

}  // namespace jet
