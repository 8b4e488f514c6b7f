#pragma once

#include <memory>
#include <string>
#include <vector>

#include "os_file.h"

namespace jet {

// Microsoft Jet's locking information file beside a database ("kvl.ldb"
// beside "kvl.mdb"), in which every program that has the database open in
// shared mode takes a user slot. What is known of it, and from where, is
// written down in jet_locking.md.

// One user in the locking information file.
struct JetUser {
    int slot = 0;              // 0 to 254; its lock is the byte 0x10000001 + slot
    std::string computerName;  // as stored: ANSI bytes up to the first NUL
    std::string securityName;  // "Admin" unless the program uses Jet's security
};

// The locking information file's path: the database's with ".ldb" for its
// extension.
std::string ldbPath(const std::string& databasePath);

// The users that have the database open now: the slots whose lock someone
// holds, with the names written in them, in the order of their slots. Our
// own slot counts (Jet's list of users shows everybody). Empty when there is
// no locking information file. Throws Error when it cannot be read.
std::vector<JetUser> connectedJetUsers(const std::string& databasePath);

// This process's place among the database's Jet users: a user slot held
// while the object lives, with this computer's name and the security name
// "Admin" written in it, as a Jet program writes its own.
class JetUserSlot {
public:
    // Takes the first free slot of the locking information file, making the
    // file when it is missing. Null when the file can be neither made nor
    // opened for writing (a folder where nobody may write: no Jet program can
    // share the database there either). Throws Error when all 255 slots stay
    // held.
    static std::unique_ptr<JetUserSlot> take(const std::string& databasePath);

    // Lets go of the slot; the last user out removes the file.
    ~JetUserSlot();
    JetUserSlot(const JetUserSlot&) = delete;
    JetUserSlot& operator=(const JetUserSlot&) = delete;

    int slot() const { return slot_; }

private:
    JetUserSlot(std::string path, os::File file, int slot)
        : path_(std::move(path)), file_(std::move(file)), slot_(slot) {}

    std::string path_;  // of the locking information file
    os::File file_;
    int slot_;
};

}  // namespace jet
