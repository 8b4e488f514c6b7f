#pragma once

#include <cstdint>
#include <string>

#include "store/jet/error.h"

namespace store {

// The one failure that the data layer gives its callers: a connection string
// not understood, a file missing, damaged or behind another password, an
// operation on a connection in the wrong state, a statement that the SQL
// layer or the engine refuses, a value a field cannot take. The message says
// what and where. A jet::Error, so that code which catches the engine's
// failures catches these as well.
class DataError : public jet::Error {
public:
    // The provider's numbers (HRESULTs) that the run-time error report shows.
    static constexpr std::int32_t kCommandFailed = -2147217900;  // 0x80040E14
    static constexpr std::int32_t kValueRefused = -2147217887;   // 0x80040E21

    // The provider's words for a value that a field cannot take.
    static constexpr const char* kMultipleStepText =
        "Multiple-step operation generated errors. Check each status value.";

    explicit DataError(const std::string& message, std::int32_t number = kCommandFailed)
        : jet::Error(message), number_(number) {}

    std::int32_t number() const { return number_; }

private:
    std::int32_t number_;
};

// Runs `work` and gives what the engine refuses to the caller as a DataError.
template <class Work>
decltype(auto) asDataError(Work&& work) {
    try {
        return work();
    } catch (const DataError&) {
        throw;
    } catch (const jet::Error& error) {
        throw DataError(error.what());
    }
}

}  // namespace store
