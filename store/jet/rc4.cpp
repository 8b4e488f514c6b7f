#include "rc4.h"

#include <array>
#include <utility>

namespace jet {

void rc4Apply(std::uint32_t key, std::uint8_t* buffer, std::size_t length) {
    const std::array<std::uint8_t, 4> keyBytes = {
        static_cast<std::uint8_t>(key), static_cast<std::uint8_t>(key >> 8),
        static_cast<std::uint8_t>(key >> 16), static_cast<std::uint8_t>(key >> 24)};
    std::array<std::uint8_t, 256> state;
    for (std::size_t i = 0; i < state.size(); ++i) state[i] = static_cast<std::uint8_t>(i);
    std::uint8_t j = 0;
    for (std::size_t i = 0; i < state.size(); ++i) {
        j = static_cast<std::uint8_t>(j + state[i] + keyBytes[i % keyBytes.size()]);
        std::swap(state[i], state[j]);
    }
    std::uint8_t x = 0;
    std::uint8_t y = 0;
    for (std::size_t n = 0; n < length; ++n) {
        x = static_cast<std::uint8_t>(x + 1);
        y = static_cast<std::uint8_t>(y + state[x]);
        std::swap(state[x], state[y]);
        buffer[n] ^= state[static_cast<std::uint8_t>(state[x] + state[y])];
    }
}

}  // namespace jet
