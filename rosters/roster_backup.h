#pragma once

#include <filesystem>
#include <stdexcept>

#include <QDateTime>
#include <QString>

#include "store/jet/database.h"

namespace rosters {

// How many copies of the school's file the roster import keeps beside it.
inline constexpr int kKeptBackups = 5;

// The name of the copy taken at `moment`: "kvl-yedek-YYYYMMDD-HHMMSS.mdb",
// so that names sort as the moments do.
QString backupName(const QDateTime& moment);

// The copy could not be written. what() is the clerk's explanation, in
// Turkish (UTF-8).
class BackupError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Writes a copy of the school's file beside it, named by the clock's
// present moment, before the rosters are replaced; then deletes the oldest
// copies so that the new one and the four newest before it are left (a copy
// that cannot be deleted stays). Returns the copy's path. Throws BackupError
// when the copy cannot be written; nothing is deleted then.
std::filesystem::path backUpSchoolFile(const jet::Database& school);

}  // namespace rosters
