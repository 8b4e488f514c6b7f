#pragma once

#include <vector>

#include <QString>

namespace engine {

// The modules of a Code 128 symbol with the code set chosen automatically,
// quiet zones left out; empty for a text Code 128 cannot carry.
std::vector<bool> code128Modules(const QString& text);

}  // namespace engine
