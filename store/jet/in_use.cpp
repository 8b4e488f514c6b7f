#include "in_use.h"

#include <vector>

#include "jet_users.h"
#include "lock_file.h"

namespace jet {

// The one place that decides whether a database is in use: by a copy of this
// program (its session lock in "FILE-lock", taken here exclusively, so that
// none opens it meanwhile) or by Jet (a user slot locked in the ".ldb"). Jet
// checks come second so that no copy of ours can slip in after them.
std::shared_ptr<LockFile> ensureNotInUse(const std::string& path) {
    std::shared_ptr<LockFile> alone = LockFile::openAlone(path);
    if (!alone)
        throw InUseError("the database " + path + " is open in another copy of the program");
    const std::vector<JetUser> users = connectedJetUsers(path);
    if (!users.empty()) {
        throw InUseError("the database " + path + " is open in a Jet program on the computer \"" +
                         users.front().computerName + "\" (its .ldb has a user)");
    }
    return alone;
}

}  // namespace jet
