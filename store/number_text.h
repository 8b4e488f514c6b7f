#pragma once

#include <optional>
#include <string>
#include <string_view>

// Numbers in text as a Turkish Windows reads and writes them, whatever the
// locale of the machine we run on: "," before the decimals, "." between the
// thousands. The data layer converts field values with these rules, and the
// program's IsNumeric and its joining of numbers to texts follow them too.

namespace store {

// A number kept exactly as decimal digits: digits × 10^exponent, signed.
struct DecimalNumber {
    bool negative = false;
    std::string digits;  // '0' to '9', leading zeros allowed; empty is zero
    long long exponent = 0;

    // The shortest digits that read back as the same double. REQUIRES: finite.
    static DecimalNumber of(double value);

    // The nearest double; an infinity when it is too large for one, zero
    // when too small.
    double toDouble() const;
    // The whole count of 10^-scale that is nearest, halves to even, as
    // digits with no leading zeros ("0" for zero); nothing when that count
    // has more than `maxDigits` digits.
    std::optional<std::string> scaled(int scale, std::size_t maxDigits) const;
};

// The system's number parser on a Turkish Windows, behind the runtime's
// IsNumeric and its conversion of a text to a number. Accepted, as a whole:
// - blanks (space, tab, line breaks, no-break space) before and after;
// - one "+" or "-" before or after the number, or parentheses around it
//   (a negative number);
// - the currency symbol "TL" or "₺" before or after a decimal number;
// - digits with "." anywhere after the first digit (the grouping is not
//   checked: "1.5" is 15, "1.000" is 1000) and at most one ",": "1,5", ",5"
//   and "5," are numbers, "." and "," are not;
// - an exponent, E or e only, with one optional sign and at least one
//   digit, not after a currency symbol;
// - or "&H" with hexadecimal or "&O" with octal digits, at most 32 bits,
//   read as the runtime's literals: up to four hexadecimal digits (octal up
//   to 177777) a 16-bit Integer, so "&HFFFF" is -1, else a 32-bit Long.
// Nothing for anything else: "", blanks only, "12a", "-", "1 2", and a
// number too large for a Double ("1e400").
std::optional<DecimalNumber> readNumber(std::u16string_view text);

// A Double written as the runtime's CStr writes it on a Turkish Windows: at
// most 15 significant digits, rounded; no thousands separator; "," before
// the decimals; no decimals on whole numbers; "-" for negatives, and -0 as
// "0". Numbers of 1E+15 and more, and of less than 0.0001, in exponent form:
// "1E+15", "1,23456789012346E+15", "1E-05" (at least two exponent digits).
// Infinity and NaN, which the runtime cannot make, come out as its Turkish
// spellings "1,#INF", "-1,#INF" and "-1,#IND".
std::u16string numberText(double value);

}  // namespace store
