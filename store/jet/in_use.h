#pragma once

#include <memory>
#include <string>

#include "error.h"

namespace jet {

class LockFile;

// A database that someone has open, and that may therefore not be replaced
// or rebuilt now.
class InUseError : public Error {
public:
    explicit InUseError(const std::string& message) : Error(message) {}
};

// Makes sure that nobody has the database at `path` open, and keeps copies of
// this program from opening it while the returned lock file lives (its
// session lock is held exclusively). Throws InUseError when a copy of this
// program or a Jet user has it open, Error when its lock file cannot be made.
std::shared_ptr<LockFile> ensureNotInUse(const std::string& path);

}  // namespace jet
