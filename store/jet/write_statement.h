#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "page_file.h"

namespace jet {

// The pages one write statement reads and changes. It holds the file's write
// lock from construction to destruction and reads every page afresh from the
// file, so it sees what another writer committed before it. Changes stay in
// memory until commit(): the journal receives the old contents of the changed
// pages and is flushed, then the pages are written and flushed, then the
// journal is removed. A statement dropped without commit() changes nothing.
class WriteStatement : public PageSource {
public:
    // REQUIRES: file opened ReadWrite. Rolls back an unfinished statement
    // that a crashed writer left behind.
    explicit WriteStatement(PageFile& file);

    std::uint32_t pageCount() const override { return pageCount_; }
    void read(std::uint32_t number, Page& page) const override;

    // The page's contents as the statement sees them, to change in place.
    Page& change(std::uint32_t number);
    // A new zeroed page at the end of the file.
    std::uint32_t append();

    bool changed() const { return !changed_.empty(); }
    void commit();

private:
    const Page& cached(std::uint32_t number) const;

    PageFile& file_;
    PageFile::WriteLock lock_;
    std::uint32_t originalPageCount_;
    std::uint32_t pageCount_;
    mutable std::map<std::uint32_t, Page> pages_;  // pages read or changed by the statement
    std::map<std::uint32_t, Page> originals_;      // old contents of changed existing pages
    std::set<std::uint32_t> changed_;
};

}  // namespace jet
