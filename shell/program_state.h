#pragma once

#include <memory>

#include <QString>

#include "store/connection.h"
#include "store/recordset.h"

namespace shell {

// The program's version: shown as major.minor.revision.
inline constexpr int kVersionMajor = 1;
inline constexpr int kVersionMinor = 0;
inline constexpr int kVersionRevision = 15;
QString versionText();

// The shared connection of the school's file and its scratch record set.
// Each user creates them when they are Nothing, opens them, does its work,
// closes them and sets them to Nothing again (reset()).
extern std::unique_ptr<store::Connection> baglanti;
extern std::unique_ptr<store::Recordset> kayit;

// The second pair: the connection of the roll-call program's file, and a
// second scratch record set (the month menu print opens it on baglanti).
// Their users create, close and set them to Nothing in the same way.
extern std::unique_ptr<store::Connection> baglanti2;
extern std::unique_ptr<store::Recordset> kayit2;

// A newer version was announced; closing the main window starts the
// updater.
extern bool yenisurumvar;

// Creates baglanti when it is Nothing and opens it on the relative data
// source. Every failure is swallowed: the caller finds out when its own
// query fails.
void baglantiac();

// AYAR's OKUL, the school's name, read on baglanti opened on "kvl.mdb" in
// the program's folder, with kayit: every statement is passed over when it
// fails, and both are closed and set to Nothing afterwards. `unread` when
// the name could not be read.
jet::Value readSchoolName(jet::Value unread);

}  // namespace shell
