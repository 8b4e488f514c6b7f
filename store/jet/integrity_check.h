#pragma once

#include <string>
#include <vector>

namespace jet {

class PageSource;

// What a check of a database file found.
struct IntegrityReport {
    // Damage: each a state that Access never leaves in a file, in words that
    // name the page, table or index.
    std::vector<std::string> problems;
    // What could not be checked, or wastes space without misleading any
    // reader, and is therefore not called damage: index keys this engine
    // cannot compute (another sort order, characters it does not key), pages
    // nothing uses outside the reach of the map of free pages.
    std::vector<std::string> notes;
};

// Checks the whole file:
// - every page is of a known type, and free in the map of free pages or
//   used by one owner: the header, a table's definition, rows, long values,
//   index, or a usage map; no page is both free and used;
// - every usage map decodes and names pages inside the file;
// - every live row decodes; moved rows point to their data on a page of the
//   table that is not free, long values to long value rows, chains end and
//   their lengths add up;
// - a user table's row count is its number of live rows;
// - every real index holds its pages only, entries in key order, one entry
//   for each row it should hold, with the key the row's values give.
// Every fault is a problem of the report, an unreadable catalog included
// (then nothing else is checked); a read error of the page source propagates.
IntegrityReport checkIntegrityInDetail(const PageSource& file);

// The problems of checkIntegrityInDetail; empty when the file is sound.
std::vector<std::string> checkIntegrity(const PageSource& file);

}  // namespace jet
