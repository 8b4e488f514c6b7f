#pragma once

#include <stdexcept>
#include <string>

namespace jet {

// Every failure of the engine: a damaged or foreign file, a name that is not
// there, a value that cannot be stored. The message says what was wrong and
// where (file, page, offset, table), in words a support person can act on.
class Error : public std::runtime_error {
public:
    explicit Error(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace jet
