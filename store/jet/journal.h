#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "page_file.h"

namespace jet {

// The rollback journal of one write statement, in the file beside the
// database named by journalPath(). Before the statement changes any page,
// the journal holds the old contents of every page it will change and the
// file's old length, and is flushed to disk. Once the changed pages are on
// disk the journal is removed: its removal is the statement's commit. A
// journal found later belongs to a statement that never finished, and
// rollBack() puts the file back as it was before that statement.
class RollbackJournal {
public:
    static std::string journalPath(const std::string& databasePath);

    // Writes and flushes the journal: the old page count of the file and the
    // old contents of `originals` (page number to contents).
    static void write(const std::string& databasePath, std::uint32_t originalPageCount,
                      const std::map<std::uint32_t, Page>& originals);

    // Removes the journal and makes the removal durable.
    static void remove(const std::string& databasePath);

    // REQUIRES: the caller holds the file's write lock. When a journal lies
    // beside the database, restores the pages and the length it records,
    // flushes the file and removes the journal; returns whether it did. A
    // journal cut short by a crash while it was written is removed without
    // effect: no page had been changed yet.
    static bool rollBack(PageFile& file);
};

}  // namespace jet
