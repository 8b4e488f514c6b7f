#pragma once

#include <string>

namespace jet::testing {

// Reads all that the engine can read from a file: header, catalog, every
// table's definition and every row with its values. Throws jet::Error for a
// damaged or foreign file; anything else escaping is a fault of the engine.
// Used by the robustness tests and the fuzzer.
void readEverything(const std::string& path);

}  // namespace jet::testing
