#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "store/jet/value.h"

// Dates in text as a Turkish Windows reads and writes them, whatever the
// locale of the machine we run on: day first.

namespace store {

// A date read day first, with blanks around it allowed: day, month and year
// joined by "/", "." or "-" ("5/11/2026", "05.11.2026"; a year of one or two
// digits is 1930 to 2029), or year, month and day with a year of four
// digits first ("2026-11-05"); optionally followed by a time of day "12:30"
// or "12:30:00"; or a time of day alone, which is on day zero (30.12.1899).
// Nothing for a text that is no such date or names no real day ("31/2/2026").
std::optional<jet::Date> readDate(std::u16string_view text);

// The short form of a Turkish Windows: "05.11.2026", "05.11.2026 12:30:00"
// when there is a time of day, and a time alone, "12:30:00", on day zero.
std::u16string dateText(jet::Date date);

}  // namespace store
