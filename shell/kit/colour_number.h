#pragma once

#include <cstdint>

#include <QColor>

// The platform's colour number: a Long holding red in its low byte, then
// green, then blue, so 255 is pure red and its hexadecimal reads &HBBGGRR.

namespace kit {

// The colour of a number. Only 0 to &HFFFFFF are colours; any other number
// throws std::invalid_argument ("Invalid property value"), as a colour
// property refuses it.
QColor colourOfNumber(std::int32_t number);

// The number of a colour.
std::int32_t numberOfColour(const QColor& colour);

}  // namespace kit
