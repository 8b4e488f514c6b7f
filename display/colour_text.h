#pragma once

#include <QString>

// The two ways the display page's colours are written: the colour number of
// the colour dialog and of the swatches (red in the low byte, &HBBGGRR) and
// the page's HTML colour, six hexadecimal digits RRGGBB.

namespace display {

// A colour number, given as decimal text, as an HTML colour: its
// hexadecimal digits in upper case, "0" put in front up to six, then digits
// 5 and 6, 3 and 4, 1 and 2. 255 gives "FF0000".
QString renkhtml(const QString& colourNumber);

// An HTML colour as the text of a colour number: "&H" then characters 5 and
// 6, 3 and 4, 1 and 2. A text of fewer than six characters is first made
// six long by "0" put at its END, and the caller's text is changed with it;
// the padding runs the other way than in renkhtml, and both stay as they
// are. "FF0000" gives "&H0000FF".
QString htmlrenk(QString& htmlColour);

}  // namespace display
