// lock_probe DATABASE hold MILLISECONDS   takes the statement lock of the
//     database's lock file for writing, prints "held", keeps it that long
//     and lets go.
// lock_probe DATABASE try   tries to take it for writing for 300 ms: prints
//     "free" and exits 0 when it could, "busy" and why, and exits 3 when another
//     process held it all that time.
// lock_probe DATABASE users   prints the Jet users that have the database
//     open, one line each: "user SLOT COMPUTER SECURITY"; "nobody" when none.
// Each exits 2 on any other failure. scripts/test-windows runs it built
// for Linux and for Windows (under wine) on one database, to show that each
// sees the other's locks.

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "store/jet/error.h"
#include "store/jet/jet_users.h"
#include "store/jet/lock_file.h"

int main(int argc, char** argv) {
    const std::string action = argc >= 3 ? argv[2] : "";
    if (!((argc == 4 && action == "hold") ||
          (argc == 3 && (action == "try" || action == "users")))) {
        std::fputs("usage: lock_probe DATABASE hold MILLISECONDS | try | users\n", stderr);
        return 2;
    }
    try {
        if (action == "users") {
            const std::vector<jet::JetUser> users = jet::connectedJetUsers(argv[1]);
            for (const jet::JetUser& user : users) {
                std::printf("user %d %s %s\n", user.slot, user.computerName.c_str(),
                            user.securityName.c_str());
            }
            if (users.empty())
                std::puts("nobody");
            return 0;
        }
        if (action == "try") {
            jet::setLockTimeouts({std::chrono::milliseconds(300), std::chrono::milliseconds(300)});
        }
        const std::shared_ptr<jet::LockFile> locks = jet::LockFile::open(argv[1], true);
        if (action == "hold") {
            const jet::LockFile::Hold writing = locks->holdForWriting();
            std::puts("held");
            std::fflush(stdout);
            std::this_thread::sleep_for(std::chrono::milliseconds(std::atol(argv[3])));
            return 0;
        }
        try {
            const jet::LockFile::Hold writing = locks->holdForWriting();
        } catch (const jet::Error& error) {
            std::printf("busy (%s)\n", error.what());
            return 3;
        }
        std::puts("free");
        return 0;
    } catch (const jet::Error& error) {
        std::fprintf(stderr, "lock_probe: %s\n", error.what());
        return 2;
    }
}
