#pragma once

#include <string>

#include "database.h"

namespace jet {

// Writes a copy of the database's file, byte for byte, at `target`, taken
// while the lock file's statement lock is held for reading: no copy of this
// program writes meanwhile, so the copy holds whole statements only. A
// statement that a crashed writer left unfinished is undone first when the
// database is open for writing; opened for reading alone, such a file is not
// copied.
//
// The bytes go to `target` + ".partial" first, are flushed to disk, and only
// then take the name `target`, which is never replaced: a copy that stops
// half-way leaves no file of that name. Throws Error when `target` exists
// (a file or a folder), when the file cannot be read, and when the copy
// cannot be written or flushed; nothing is left behind then.
//
// REQUIRES: not called inside a write or write scope of `source` (the copy
// would hold the file as the last commit left it, not what the scope did).
void copyDatabase(const Database& source, const std::string& target);

}  // namespace jet
