#pragma once

#include <string>
#include <vector>

namespace jet {

class PageSource;

// Checks a database file as jetcheck does and returns each problem found, in
// words that name the page, table or index; empty when the file is sound:
// - every page is claimed by one owner at most (a table's definition, data
//   and index pages), and no claimed page is marked free;
// - usage maps decode and name pages of the right kind;
// - every row of every table decodes, long values and moved rows included;
// - a user table's row count is its number of live rows;
// - every index holds exactly one entry for each row it should hold, with
//   that row's key, in key order.
// Throws Error only when the file cannot be read as a database at all.
std::vector<std::string> checkIntegrity(const PageSource& file);

}  // namespace jet
