#pragma once

#include "store/jet/value.h"

namespace shell {

// The scrambled password of the settings row (AYAR.SIFRE), read on a
// connection of the caller's own, not the shared one, to the file beside the
// program ("KVL.mdb"); Null when none was ever stored. Throws DataError when
// the file cannot be opened or read.
jet::Value storedPassword();

}  // namespace shell
