#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>

#include "lock_file.h"
#include "page_file.h"

namespace jet {

// The pages one write statement reads and changes. It holds the database's
// lock for writing from construction to destruction and reads every page
// afresh from the file, so it sees what another writer committed before it.
// Changes stay in memory until commit(): the journal receives the old
// contents of the changed pages and is flushed, then the pages are written
// and flushed, then the journal is removed and the lock file's commit
// counter raised. A statement dropped without commit() changes nothing.
//
// Several statements can share one write statement (a write scope): each
// runs inside a savepoint, and one that fails is undone alone.
class WriteStatement : public PageSource {
public:
    // REQUIRES: file opened ReadWrite. Rolls back an unfinished statement
    // that a crashed writer left behind. `locks` may be null: nobody else
    // can reach the file.
    WriteStatement(PageFile& file, LockFile* locks);

    std::uint32_t pageCount() const override { return pageCount_; }
    void read(std::uint32_t number, Page& page) const override;

    // The page's contents as the statement sees them, to change in place.
    Page& change(std::uint32_t number);
    // A new zeroed page at the end of the file.
    std::uint32_t append();

    bool changed() const { return !changed_.empty(); }
    void commit();

    // Marks the state to which rollBackToSavepoint() returns; one at a time.
    void setSavepoint();
    void releaseSavepoint();
    // Undoes every change since the savepoint, and releases it.
    void rollBackToSavepoint();

private:
    struct Savepoint {
        std::uint32_t pageCount = 0;
        std::map<std::uint32_t, Page> before;  // pages of before the savepoint, as they were then
        std::set<std::uint32_t> unchangedBefore;  // those of them the statement had not changed
    };

    const Page& cached(std::uint32_t number) const;

    PageFile& file_;
    LockFile* locks_;
    LockFile::Hold lock_;
    std::uint32_t originalPageCount_;
    std::uint32_t pageCount_;
    mutable std::map<std::uint32_t, Page> pages_;  // pages read or changed by the statement
    std::map<std::uint32_t, Page> originals_;      // old contents of changed existing pages
    std::set<std::uint32_t> changed_;
    std::optional<Savepoint> savepoint_;
};

}  // namespace jet
