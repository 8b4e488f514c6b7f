#include "shell/kit/colour_number.h"

#include <stdexcept>

namespace kit {

QColor colourOfNumber(std::int32_t number) {
    if (number < 0 || number > 0xFFFFFF)
        throw std::invalid_argument("Invalid property value");
    return {number & 0xFF, (number >> 8) & 0xFF, (number >> 16) & 0xFF};
}

std::int32_t numberOfColour(const QColor& colour) {
    return colour.red() | (colour.green() << 8) | (colour.blue() << 16);
}

}  // namespace kit
