#pragma once

#include <QString>
#include <QStringView>

// Numbers in text as the original program's runtime read and wrote them on
// a Turkish Windows, independent of the locale of the machine we run on.

namespace kit {

// The runtime's Val: the number at the start of a text, with "." as the
// decimal point whatever the locale.
// - Blanks, tabs, carriage returns and line feeds are skipped anywhere, also
//   inside the number: " 1 2 3" is 123.
// - Decimal: an optional "+" or "-", digits with at most one ".", then an
//   optional exponent: E, e, D or d, one optional sign, digits.
// - "&H" and "&O" (either case) read hexadecimal and octal digits. As with
//   the runtime's literals, up to four hexadecimal digits are a 16-bit
//   Integer and up to eight a 32-bit Long, so "&HFFFF" is -1 and "&H8000"
//   is -32768, while "&H10000" is 65536; octal alike by value (up to 0xFFFF
//   an Integer). "&" followed by anything else is 0.
// - Reading stops at the first character that does not fit; "", "abc",
//   "-" and "1,5" (that is 1) need no special case.
// Throws std::overflow_error (the runtime's error 6, "Overflow") when the
// number does not fit a Double, or a hexadecimal or octal number more than
// 32 bits. Type suffixes such as "%" and "&" after a number are not
// interpreted; the reading simply stops there.
double Val(QStringView text);

// The runtime's IsNumeric for a text, on a Turkish Windows. The runtime
// hands the text to the system's number parser with the user's locale:
// decimal separator ",", thousands separator ".", currency symbol "TL"
// (or "₺", which later Windows versions use).
// True when the whole text is one number in that form:
// - blanks (space, tab, line breaks, no-break space) before and after;
// - one "+" or "-" before or after the number, or parentheses around it;
// - the currency symbol before or after a decimal number;
// - digits with "." anywhere after the first digit (the separator's
//   grouping is not checked: "1.5" is the number 15, "1.000" is 1000) and
//   at most one ",": "1,5", ",5" and "5," are numbers, "." and "," are not;
// - an exponent, E or e only (the parser knows no D), with one optional
//   sign and at least one digit, not after a currency symbol;
// - or "&H" with hexadecimal or "&O" with octal digits, at most 32 bits.
// False for "", blanks only, "12a", "-", "1 2", and a number too large for a
// Double ("1e400"), because the runtime's conversion behind it fails then.
bool IsNumeric(QStringView text);

// A Double written as the runtime writes it when it joins a number to a
// text on a Turkish Windows: at most 15 significant digits, rounded; no
// thousands separator; "," before the decimals; no decimals on whole
// numbers; "-" for negatives, and -0 as "0". Numbers of 1E+15 and more, and
// of less than 0.0001, in exponent form: "1E+15", "1,23456789012346E+15",
// "1E-05" (at least two exponent digits). So 12345678901 gives
// "12345678901" and 123456789012345 gives "123456789012345". Infinity and
// NaN, which the runtime cannot make, come out as its Turkish spellings
// "1,#INF", "-1,#INF" and "-1,#IND".
QString plainNumber(double value);

}  // namespace kit
