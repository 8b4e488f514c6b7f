#pragma once

#include <cstddef>
#include <cstdint>

namespace jet {

// RC4 over a buffer in place. Jet masks part of its header with a fixed key,
// and an encoded database masks every page with the database key xor the page
// number; both are applied (and undone) by the same operation.
void rc4Apply(std::uint32_t key, std::uint8_t* buffer, std::size_t length);

}  // namespace jet
