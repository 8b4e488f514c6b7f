#pragma once

#include "store/jet/error.h"

namespace store {

// The one failure that the data layer gives its callers: a connection string
// not understood, a file missing, damaged or behind another password, an
// operation on a connection in the wrong state, a statement that the SQL
// layer or the engine refuses. The message says what and where. A
// jet::Error, so that code which catches the engine's failures catches
// these as well.
class DataError : public jet::Error {
public:
    using jet::Error::Error;
};

}  // namespace store
